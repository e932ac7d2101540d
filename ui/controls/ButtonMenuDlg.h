#pragma once

#include "ui/controls/Dialog.h"

#include <QFont>
#include <QVector>

#include <tuple>

class QGridLayout;
class QScrollArea;

namespace fieldcore {

class CIconButton;

/// A menu of large buttons in columns, which share its room between them; the arrow keys go from
/// one to the next in any direction. A dialog that closes with the choice, or a part of a window.
/// User-interface thread only.
class CButtonMenuDlg : public Dialog
{
    Q_OBJECT

public:
    /// What GetMenuIndex() answers when nothing was chosen.
    static constexpr int kNothing = -1;
    static constexpr int kColumns = 3; ///< unless Arrange() was asked for fewer

    /// @param caption  its title
    explicit CButtonMenuDlg(const QString& caption, QWidget* parent = nullptr);

    /// Makes the menu a part of the window that it is put into, instead of a window of its own: it
    /// stays open, and Chosen() tells what was pressed. Before it is first shown.
    void Embed();

    /// Adds a button after the others.
    /// @param icon  name of one of the drawn icons
    /// @return its index, counted from 0; the button can be switched off with EnableButton()
    int AddButton(const QString& icon, const QString& label);
    void EnableButton(int index, bool enabled);

    /// Arranges the buttons in three columns, or in two where they stand at the side and
    /// @p height has room for them. Where the room is short all the same they are less high.
    /// @param height  of the place that the menu stands in, logical pixels
    /// @return the least that the buttons need, logical pixels; with less they scroll
    QSize Arrange(int height, bool isAtSide);

    /// The button that was chosen last; kNothing before, and where the dialog was cancelled.
    [[nodiscard]] int GetMenuIndex() const { return m_chosen; }

    void reject() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// @param index  of the button that was pressed
    void Chosen(int index);

protected:
    bool OnInitDialog() override;

private:
    void LayOut();
    void ShowLow(bool isLow);

    QGridLayout* m_grid; // owned by the dialog, as is all that follows
    QScrollArea* m_scroll;
    QPushButton* m_close;
    QVector<CIconButton*> m_buttons;
    int m_columns = kColumns;
    int m_margin = 0; // at each side of the buttons
    int m_chosen = kNothing;
    std::tuple<int, bool, QFont> m_arranged; // for what
};

} // namespace fieldcore
