#pragma once

#include "app/StatusStrip.h"

#include <QWidget>

#include <functional>
#include <utility>

class QBoxLayout;

namespace fieldcore {

class CButtonMenuDlg;
class CnMenuBar;
class Overview;

/// The window of the controller: status at the head, the buttons of the home page, the menu bar at
/// the foot. The receiver's values stand large beside the buttons in a wide window, below them in
/// one that is high enough. It decides nothing: what was chosen goes out as the number of its
/// words. User-interface thread only.
class MainWindow : public QWidget
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    /// Asked when the user wants to close the window. Empty: he may.
    void SetMayClose(std::function<bool()> mayClose) { m_mayClose = std::move(mayClose); }

    void ShowState(const HomeState& state);
    /// Whether the bubble is shown: the home page leaves room for it beside its buttons.
    void ShowBubble(bool isShown);
    /// In the lower right corner of this part the bubble covers nothing.
    [[nodiscard]] QWidget* BubbleAnchor() const;
    /// Marks the theme that is in use among the choices.
    void CheckTheme(Theme::Kind kind);

Q_SIGNALS:
    /// @param entry  of the home page or the menu bar: string-table number of its words
    void Chosen(int entry);

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void Arrange();

    StatusStrip* m_status; // owned by the window, as is all that follows
    CButtonMenuDlg* m_home;
    Overview* m_overview;
    QWidget* m_bubblePlace; // below the buttons
    QBoxLayout* m_body;
    CnMenuBar* m_menu;
    bool m_hasBubble = false;
    std::function<bool()> m_mayClose;
};

} // namespace fieldcore
