#pragma once

#include "core/planning/Dop.h"
#include "simulator/GpsTime.h"
#include "simulator/Scenario.h"

#include <vector>

namespace fieldcore::simulator {

/// What stands over the receiver at one moment.
struct Sky
{
    std::vector<Satellite> satellites; ///< in view; one without any signal is not tracked
    LocalDop dop;                      ///< of the tracked ones; kDopNone: no position
};
/// What the wire has for no dilution.
inline constexpr double kDopNone = 99.9;

/// Whether it has any signal.
[[nodiscard]] bool IsTracked(const Satellite& satellite);

/// The satellites of a sky. One without any signal is in view and not tracked.
[[nodiscard]] std::vector<Satellite> Listed(const Sky& sky, bool inView);

/// The almanacs that the receiver has: those that the scenario gives, and of the others the first
/// of the nominal constellation, as many as it says. Their reference time is the last multiple of
/// 4096 s, as satellites send it.
[[nodiscard]] std::vector<Almanac> AlmanacsAt(const Scenario& scenario, const GpsTime& now);

/// How high the scenario's obstructions reach at @p azimuthDeg, degrees; 0 where there is none.
[[nodiscard]] double ObstructionDeg(const Scenario& scenario, double azimuthDeg);

/// The sky at @p now. GPS satellites move unless the scenario places one itself: each stands where
/// its orbit has it from the scenario's place, with a signal that grows with its elevation, and is
/// tracked from the mask on where nothing obstructs. All 31 nominal ones do, also those whose
/// almanac the receiver does not have yet; an unhealthy one does not. Satellites of other systems
/// are where the scenario places them. What the antenna does not hear is not tracked.
/// @param elapsedS  receiver's seconds since it started: how the antenna is by then
[[nodiscard]] Sky SkyAt(const Scenario& scenario, const GpsTime& now, double elapsedS = 0.0);

} // namespace fieldcore::simulator
