#include "core/tilt/CalibrationCheck.h"

#include "core/tilt/Bubble.h"

#include <utility>

namespace fieldcore {

void CalibrationCheck::Arm(CCommand* command, bool isArmed)
{
    m_command = command;
    m_isArmed = isArmed;
}

bool CalibrationCheck::MustWait() const
{
    return m_isArmed && m_command != nullptr && m_command->IsBusy();
}

bool CalibrationCheck::Look()
{
    if (!std::exchange(m_isArmed, false) || m_command == nullptr) {
        return false;
    }
    TiltReading reading;
    return m_command->RequestTiltReading(reading) == 1 && NeedsCalibration(reading);
}

} // namespace fieldcore
