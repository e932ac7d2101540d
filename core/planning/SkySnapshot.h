#pragma once

#include "core/planning/ObservationPlan.h"

#include <chrono>
#include <vector>

namespace fieldcore {

/// A satellite above the horizon.
struct SkySatellite
{
    SatelliteId satellite;
    SkyDirection direction; ///< azimuth 0 to 2 pi, elevation 0 or more
    bool isVisible = false; ///< usable: not below the mask nor behind the curtain
};

/// All healthy satellites of the plan's systems above the horizon of its site at one time of its
/// period, those that mask or curtain hide among them, in order.
/// @param plan        its Calc() with the period of the last Compute()
/// @param sinceStart  of the period; may lie outside of it
[[nodiscard]] std::vector<SkySatellite> SkyAt(const ObservationPlan& plan,
                                              std::chrono::seconds sinceStart);

} // namespace fieldcore
