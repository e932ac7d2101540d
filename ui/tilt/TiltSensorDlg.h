#pragma once

#include "core/tilt/BubblePoll.h"
#include "ui/controls/BackgroundQuestion.h"
#include "ui/controls/Dialog.h"

#include <atomic>
#include <memory>

namespace fieldcore {

class BubbleView;

/// The electronic bubble: a small window above all others that shows five times a second how the
/// receiver's pole leans. It takes no focus when it is shown, and there is one at most in a
/// program. User-interface thread only.
///
/// While it is hidden it asks nothing. The rectangle it was in and the antenna height outlive it.
class TiltSensorDlg : public Dialog
{
    Q_OBJECT

public:
    static constexpr int kTemplateId = 21046;
    static constexpr int kPollTimer = 1;

    /// Shows the window, and makes the receiver send its tilt; makes the window first if there is
    /// none. Nobody waits for the receiver: it is told in the background.
    /// @param command  not owned; must outlive the window
    /// @param parent   of a window that is made
    /// @param anchor   a window that is made appears in the lower right corner of this one, unless
    ///                 there has been one before; may be null
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

    /// What it shows; the receiver is asked by the timer.
    [[nodiscard]] BubbleView* View() const { return m_view; }

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;
    void OnDestroy() override;
    void OnTimer(int id) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    TiltSensorDlg(CCommand* command, QWidget* parent);
    ~TiltSensorDlg() override;

    void TellSensor(CCommand* command, bool isStart);
    void ShowBubble();

    CCommand* const m_command;
    BubblePoll m_poll;
    /// The receiver's port that the sensor was started at; negative: not known. What the receiver
    /// is still to be told outlives the window.
    const std::shared_ptr<std::atomic<int>> m_port = std::make_shared<std::atomic<int>>(-1);
    std::unique_ptr<BackgroundQuestion> m_question; // while it is visible
    BubbleView* m_view;                             // owned by the dialog
};

} // namespace fieldcore
