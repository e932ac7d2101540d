#pragma once

#include "core/planning/AlmanacOrbit.h"
#include "core/planning/LocalFrame.h"

#include <optional>

namespace fieldcore::bench {

/// Earth-fixed position, step by step as published: IS-GPS-200, 20.3.3.5.2.1, the equations of
/// Table 20-IV without the terms that an almanac does not carry. The yardstick of AlmanacOrbit.
/// @return metres; nothing if the elements are no orbit
[[nodiscard]] std::optional<Ecef> LiteralPosition(const KeplerElements& elements,
                                                  GpsEpoch epoch) noexcept;

/// SkyDirection of @p satellite by a 4 x 4 homogeneous transformation, step by step as published:
/// the yardstick of LocalFrame.
/// @return nothing if both stand in the same place
[[nodiscard]] std::optional<SkyDirection> LiteralDirection(const Observer& observer,
                                                           const Ecef& satellite) noexcept;

} // namespace fieldcore::bench
