#include "core/tilt/CalibrationCheck.h"

#include "core/tilt/Bubble.h"

#include <utility>

namespace fieldcore {

void CalibrationCheck::Arm(CCommand* command, bool isArmed)
{
    m_command = command;
    m_isArmed = isArmed;
}

bool CalibrationCheck::Disarm()
{
    return std::exchange(m_isArmed, false) && m_command != nullptr;
}

bool CalibrationCheck::Look(CCommand& command)
{
    TiltReading reading;
    return command.RequestTiltReading(reading) == 1 && NeedsCalibration(reading);
}

} // namespace fieldcore
