#include "core/tilt/TiltQuestion.h"

namespace fieldcore {

TiltState AskTilt(CCommand& command, bool withRecord)
{
    TiltReading reading;
    if (command.RequestTiltReading(reading) == 0) {
        const CommandFault fault = command.Fault();
        if (ClassOf(fault) == FaultClass::Cancelled || ClassOf(fault) == FaultClass::Local) {
            return TiltState::NotAsked;
        }
        if (command.IsPortOpen() == 0) {
            return TiltState::NoReceiver;
        }
        return fault == CommandFault::Refused ? TiltState::NotBuiltIn : TiltState::Silent;
    }
    const Clock::Duration at = command.GetClock().Steady();
    command.Hear([&](Receiver& known) { known.tilt = {reading, at}; });
    TiltCalibration record;
    if (withRecord && command.RequestTiltCalibration(record) == 1) {
        command.Hear([&](Receiver& known) { known.calibration = {record, at}; });
    }
    return reading.sensorPresent ? TiltState::Heard : TiltState::Absent;
}

} // namespace fieldcore
