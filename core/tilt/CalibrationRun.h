#pragma once

#include "core/link/Command.h"
#include "core/tilt/CalibrationStatus.h"

#include <chrono>

namespace fieldcore {

/// One calibration of the tilt sensor, from the command that starts it to its end. It acts only in
/// Start() and Tick(); each blocks for two exchanges at most. The thread of the command channel.
///
/// The receiver says when it is over. A run that it stays silent about for kSilence has failed, and
/// a cancelled one is over after kCancelTime whatever the receiver says.
class CalibrationRun
{
public:
    static constexpr std::chrono::milliseconds kInterval{500}; ///< between two ticks
    static constexpr std::chrono::seconds kSilence{10};
    static constexpr std::chrono::seconds kCancelTime{10};

    enum class State
    {
        Waiting, ///< not started
        Running,
        Cancelling,
        Done,
        Failed,
        Aborted,
    };

    /// @param command  may be null: every run fails then. Must outlive the object
    explicit CalibrationRun(CCommand* command) : m_command(command) {}

    /// A receiver that does not take the command makes the run fail.
    void Start();
    /// Asks how far it is. Nothing happens while another exchange is under way, or before the start
    /// or after the end.
    void Tick();
    /// Ends the run. While an exchange is under way the receiver is told with the next tick, and
    /// again with every tick until it has acknowledged. Whoever cancels an exchange of the run, by
    /// way of the host, cancels the run.
    void Cancel();

    [[nodiscard]] State GetState() const { return m_state; }
    [[nodiscard]] bool IsOver() const { return m_state >= State::Done; }
    [[nodiscard]] int ProgressPercent() const { return m_percent; } ///< 0 to 100
    /// Aborted and failed as the status shows them afterwards. A run that was cancelled and is not
    /// over yet counts as aborted.
    [[nodiscard]] LastCalibrationRun Result() const;
    /// Why the receiver did not take the start, or fell silent.
    [[nodiscard]] CommandFault Fault() const { return m_fault; }

private:
    void BeginCancelling();
    void TellCancel();
    void Judge(const TiltReading& reading);

    CCommand* const m_command;
    State m_state = State::Waiting;
    int m_percent = 0;
    Clock::Duration m_heardAt{};
    Clock::Duration m_cancelledAt{};
    bool m_isCancelTold = false;
    CommandFault m_fault = CommandFault::None;
};

} // namespace fieldcore
