#include "core/tilt/CalibrationRun.h"

#include <algorithm>

namespace fieldcore {

namespace {

// States of the calibration as the sensor reports them.
constexpr int kCompleted = 1;
constexpr int kRunning = 2;

} // namespace

void CalibrationRun::Tick(CCommand& asking)
{
    const Clock::Duration now = asking.GetClock().Steady();
    if (m_state == State::Cancelling && now - m_cancelledAt.value_or(now) >= kCancelTime) {
        m_state = State::Aborted;
    } else if (m_state == State::Waiting) {
        m_heardAt = now;
        Start(asking);
    } else if (!IsOver()) {
        Follow(asking);
    }
    if (m_state == State::Cancelling && !m_cancelledAt) {
        m_cancelledAt = now;
    }
}

void CalibrationRun::Start(CCommand& asking)
{
    if (asking.StartTiltCalibration() == 1) {
        m_state = State::Running;
        return;
    }
    m_fault = asking.Fault();
    // The receiver may have heard what somebody has cancelled.
    m_state = m_fault == CommandFault::Cancelled ? State::Cancelling : State::Failed;
}

void CalibrationRun::Follow(CCommand& asking)
{
    if (MustTell()) {
        m_isCancelTold = asking.CancelTiltCalibration() == 1;
    }
    TiltReading reading;
    const bool isRead = asking.RequestTiltReading(reading) == 1;
    const Clock::Duration now = asking.GetClock().Steady();
    if (isRead && reading.calibrationValid) {
        m_heardAt = now;
        Judge(reading);
    } else {
        m_fault = asking.Fault();
        const FaultClass fault = ClassOf(m_fault);
        const bool isSilent = fault != FaultClass::Cancelled && now - m_heardAt >= kSilence;
        if (fault == FaultClass::Gone || isSilent) {
            m_state = m_state == State::Cancelling ? State::Aborted : State::Failed;
        }
    }
    TiltCalibration record;
    if (m_state == State::Running && asking.RequestTiltCalibration(record) == 1) {
        m_percent = std::clamp(record.progressPercent, m_percent, 100); // it never goes back
    }
}

void CalibrationRun::Judge(const TiltReading& reading)
{
    if (reading.calibrationState == kRunning) {
        return;
    }
    if (m_state == State::Cancelling) {
        m_state = State::Aborted;
    } else if (reading.calibrationState == kCompleted) {
        m_percent = 100;
        m_state = State::Done;
    } else {
        m_state = State::Failed;
    }
}

void CalibrationRun::Cancel()
{
    if (m_state == State::Waiting) {
        m_state = State::Aborted;
    } else if (!IsOver()) {
        m_state = State::Cancelling;
    }
}

LastCalibrationRun CalibrationRun::Result() const
{
    // A screen that is torn down does not wait until the receiver has stopped.
    const bool isAborted = m_state == State::Aborted || m_state == State::Cancelling;
    return {isAborted, m_state == State::Failed};
}

} // namespace fieldcore
