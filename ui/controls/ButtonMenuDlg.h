#pragma once

#include "ui/controls/Dialog.h"

#include <QVector>

class QGridLayout;

namespace fieldcore {

class CIconButton;

/// A menu of large buttons in three columns; the arrow keys go from one to the next in any
/// direction. User-interface thread only.
class CButtonMenuDlg : public Dialog
{
    Q_OBJECT

public:
    /// What GetMenuIndex() answers when nothing was chosen.
    static constexpr int kNothing = -1;
    static constexpr int kColumns = 3;

    /// @param caption  over the buttons
    explicit CButtonMenuDlg(const QString& caption, QWidget* parent = nullptr);

    /// Adds a button after the others.
    /// @param icon  name of one of the drawn icons
    /// @return its index, counted from 0; the button can be switched off with EnableButton()
    int AddButton(const QString& icon, const QString& label);
    void EnableButton(int index, bool enabled);

    /// The button that was chosen, after DoModal() has returned kOk; else kNothing.
    [[nodiscard]] int GetMenuIndex() const { return m_chosen; }

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    bool OnInitDialog() override;

private:
    QGridLayout* m_grid; // owned by the dialog, as are the buttons
    QVector<CIconButton*> m_buttons;
    int m_chosen = kNothing;
};

} // namespace fieldcore
