#pragma once

class QWidget;

namespace fieldcore {

class CCommand;

/// Looks once after connecting whether the tilt sensor must be calibrated, and offers to do it at
/// once. There is one in a program. User-interface thread only.
class TiltStatusChk
{
public:
    /// @param command  not owned; must outlive the check
    static void SetCheckCalib(CCommand* command, bool isArmed);
    /// Looks after a while. While an exchange is under way it waits for its end.
    /// @param window   under the question; without it nothing happens
    /// @param timerId  a timer of that window with the same number is started again
    static void SttCheckCalib(QWidget* window, int timerId, int delayMs);
    /// The look itself: at most one for every arming.
    static void TimerCheckProc(QWidget* window);
};

} // namespace fieldcore
