#pragma once

#include "core/tilt/TiltSettings.h"
#include "ui/controls/BackgroundQuestion.h"
#include "ui/controls/Dialog.h"

#include <QPoint>
#include <QRect>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

class QLabel;
class QPushButton;

namespace fieldcore {

class BubbleView;

/// The electronic bubble: a small window above all others that shows five times a second how the
/// receiver's pole leans, in its title in numbers, too. A tap makes it large, with the numbers
/// below it, and small again; it is drawn about with the pointer. It takes no focus when it is
/// shown, and there is one at most in a program. It can be used while other pages are open, those
/// that take all input among them. User-interface thread only.
///
/// While it is hidden it asks nothing. The rectangle it was in and the antenna height outlive it.
class TiltSensorDlg : public Dialog
{
    Q_OBJECT

public:
    /// Numbers of the window and its timer.
    static constexpr int kTemplateId = 21046;
    static constexpr int kPollTimer = 1;

    /// Shows the window, and makes the receiver send its tilt; makes the window first if there is
    /// none. Nobody waits for the receiver: it is told in the background.
    /// @param command  not owned; must outlive the window
    /// @param parent   of a window that is made
    /// @param anchor   a window that is made appears where the one before was closed, else in the
    ///                 lower right corner of this one. Where a window that appears would cover
    ///                 buttons or fields of the anchor it goes to the next free place. May be null
    /// @return 1
    static int StartUp(CCommand* command, QWidget* parent, QWidget* anchor);
    /// Destroys the window.
    /// @return 1 if there was one, else 0
    static int ShutDown();
    /// @param showCommand  0 hides the window, any other number shows it
    static void WindowHide(int showCommand);
    /// @param heightM  of the antenna above the point; 0 or less: not known
    static void SetAntH(double heightM);
    [[nodiscard]] static int IsActive();
    [[nodiscard]] static int IsShow();

    /// The window; null if there is none.
    [[nodiscard]] static TiltSensorDlg* Instance();
    /// Forgets where it was, as in a program that has just started.
    static void ForgetPlace();

    /// What becomes of the window.
    enum class Event
    {
        Shown,
        Closed, ///< by the user
        Gone,   ///< hidden by the program, or destroyed
    };
    /// Told what becomes of the window. One for the program; empty: nobody.
    static void SetObserver(std::function<void(Event)> observer);

    /// Large, with the numbers below, or small.
    void SetLarge(bool isLarge);
    [[nodiscard]] bool IsLarge() const { return m_small.has_value(); }

    /// What it shows; the receiver is asked by the timer.
    [[nodiscard]] BubbleView* View() const { return m_view; }

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;
    void OnDestroy() override;
    void OnTimer(int id) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

private:
    TiltSensorDlg(CCommand* command, QWidget* parent);
    ~TiltSensorDlg() override;

    void TellSensor(CCommand* command, bool isStart);
    void ShowBubble();
    void ComeForward();

    CCommand* const m_command;
    TiltState m_state = TiltState::NotAsked;
    /// The receiver's port that the sensor was started at; negative: not known. What the receiver
    /// is still to be told outlives the window.
    const std::shared_ptr<std::atomic<int>> m_port = std::make_shared<std::atomic<int>>(-1);
    std::unique_ptr<BackgroundQuestion> m_question; // while it is visible
    std::optional<QRect> m_small;                   // where it was, while it is large
    QPoint m_pressedAt;
    bool m_isDragged = false;
    bool m_isComing = false; // in front of another page
    BubbleView* m_view;      // owned by the dialog, as are the next
    QLabel* m_numbers;
    QPushButton* m_smaller;
};

} // namespace fieldcore
