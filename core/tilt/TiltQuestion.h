#pragma once

#include "core/link/Command.h"
#include "core/link/Questions.h"

#include <chrono>

namespace fieldcore {

/// What came of asking a tilt sensor.
enum class TiltState
{
    NotAsked,   ///< or given up
    NoReceiver, ///< no port is open
    Silent,     ///< nothing comes that can be read
    NotBuiltIn, ///< the receiver does not know the question: it has no sensor
    Absent,     ///< there is a reading, and it says that the sensor is not there
    Heard,      ///< there is a reading
};

/// Asks for a reading, and for the calibration record behind one that came. Both go into what is
/// known of the receiver: CCommand::Heard().
[[nodiscard]] TiltState AskTilt(CCommand& command, bool withRecord);

/// Whether a question that ended so is asked again at its usual pace.
[[nodiscard]] inline bool IsAnswered(TiltState state)
{
    return state != TiltState::Silent;
}

/// As one that is drawn: an older reading is not believed.
inline constexpr std::chrono::seconds kTiltStaleAge{2};
inline constexpr Rhythm kBubbleRhythm{std::chrono::milliseconds(200), std::chrono::seconds(8)};
inline constexpr Rhythm kTiltRhythm{std::chrono::seconds(1), std::chrono::seconds(8)};

} // namespace fieldcore
