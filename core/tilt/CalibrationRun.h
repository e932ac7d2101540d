#pragma once

#include "core/link/Command.h"
#include "core/tilt/CalibrationStatus.h"

#include <chrono>
#include <optional>

namespace fieldcore {

/// One calibration of the tilt sensor, from the command that starts it to its end. It acts only in
/// Tick(), which blocks for three exchanges at most. A value: who only shows it has a copy.
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

    /// Starts it, and asks with the next ticks how far it is. A receiver that does not take the
    /// start makes it fail. Nothing happens once it is over.
    /// @param asking  the face of the calling thread
    void Tick(CCommand& asking);
    /// Cancels it: the receiver is told with the next tick, and again with every tick until it has
    /// acknowledged. Whoever cancels the start, by way of the host, cancels the run.
    void Cancel();

    [[nodiscard]] State GetState() const { return m_state; }
    [[nodiscard]] bool IsOver() const { return m_state >= State::Done; }
    /// Cancelled, and the receiver has not acknowledged it yet.
    [[nodiscard]] bool MustTell() const { return m_state == State::Cancelling && !m_isCancelTold; }
    [[nodiscard]] int ProgressPercent() const { return m_percent; } ///< 0 to 100
    /// Aborted and failed as the status shows them afterwards. A run that was cancelled and is not
    /// over yet counts as aborted.
    [[nodiscard]] LastCalibrationRun Result() const;
    /// Why the receiver did not take the start, or fell silent.
    [[nodiscard]] CommandFault Fault() const { return m_fault; }

private:
    void Start(CCommand& asking);
    void Follow(CCommand& asking);
    void Judge(const TiltReading& reading);

    State m_state = State::Waiting;
    int m_percent = 0;
    Clock::Duration m_heardAt{};
    std::optional<Clock::Duration> m_cancelledAt; // seen by a tick
    bool m_isCancelTold = false;
    CommandFault m_fault = CommandFault::None;
};

} // namespace fieldcore
