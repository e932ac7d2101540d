#include "core/tilt/CalibrationRun.h"

#include <algorithm>

namespace fieldcore {

namespace {

// States of the calibration as the sensor reports them.
constexpr int kCompleted = 1;
constexpr int kRunning = 2;

} // namespace

void CalibrationRun::Start()
{
    if (m_state != State::Waiting) {
        return;
    }
    if (m_command == nullptr) {
        m_fault = CommandFault::NotOpen;
        m_state = State::Failed;
        return;
    }
    m_heardAt = m_command->GetClock().Steady();
    if (m_command->StartTiltCalibration() == 0) {
        m_fault = m_command->Fault();
        if (m_fault == CommandFault::Cancelled) {
            BeginCancelling(); // the receiver may have heard it
        } else if (m_state == State::Waiting) {
            m_state = State::Failed;
        }
    } else if (m_state == State::Waiting) { // it may be cancelled while the answer is waited for
        m_state = State::Running;
    }
}

void CalibrationRun::Tick()
{
    if ((m_state != State::Running && m_state != State::Cancelling) || m_command->IsBusy()) {
        return;
    }
    const Clock& clock = m_command->GetClock();
    if (m_state == State::Cancelling && clock.Steady() - m_cancelledAt >= kCancelTime) {
        m_state = State::Aborted;
        return;
    }
    if (m_state == State::Cancelling && !m_isCancelTold) {
        TellCancel();
    }
    TiltReading reading;
    if (m_command->RequestTiltReading(reading) == 1 && reading.calibrationValid) {
        m_heardAt = clock.Steady();
        Judge(reading);
    } else {
        m_fault = m_command->Fault();
        if (ClassOf(m_fault) == FaultClass::Gone || clock.Steady() - m_heardAt >= kSilence) {
            m_state = m_state == State::Cancelling ? State::Aborted : State::Failed;
        } else if (m_fault == CommandFault::Cancelled) {
            BeginCancelling();
        }
    }
    TiltCalibration record;
    if (m_state == State::Running && m_command->RequestTiltCalibration(record) == 1) {
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
    if (IsOver() || m_state == State::Cancelling) {
        return;
    }
    const bool isBusy = m_command != nullptr && m_command->IsBusy();
    if (m_state == State::Waiting && !isBusy) {
        m_state = State::Aborted;
        return;
    }
    BeginCancelling();
    if (!isBusy) {
        TellCancel();
    }
}

void CalibrationRun::BeginCancelling()
{
    if (m_state != State::Cancelling) {
        m_state = State::Cancelling;
        m_cancelledAt = m_command->GetClock().Steady();
    }
}

void CalibrationRun::TellCancel()
{
    m_isCancelTold = m_command->CancelTiltCalibration() == 1;
}

LastCalibrationRun CalibrationRun::Result() const
{
    // A screen that is torn down does not wait until the receiver has stopped.
    const bool isAborted = m_state == State::Aborted || m_state == State::Cancelling;
    return {isAborted, m_state == State::Failed};
}

} // namespace fieldcore
