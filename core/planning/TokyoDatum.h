#pragma once

#include <optional>

#include "core/planning/Geodesy.h"

namespace fieldcore {

/// From the Tokyo datum (Bessel's ellipsoid, Japan's until 2002) to JGD2000 (GRS80) by the three
/// translations of the Geographical Survey Institute: what is added to the earth-fixed
/// coordinates of the old datum gives those of the new one.
///
/// The old network is distorted, so this is good to some metres across Japan: fit for finding a
/// mark again, not for setting one. The height is carried through the earth-fixed frame; old
/// heights are levelled ones, hence the height of a result is no better than they.
/// @return nothing if a coordinate is out of range or not a number, see EcefOfGeodetic()
[[nodiscard]] std::optional<GeodeticPosition>
Jgd2000OfTokyo(const GeodeticPosition& onBessel) noexcept;

/// The other way round.
[[nodiscard]] std::optional<GeodeticPosition>
TokyoOfJgd2000(const GeodeticPosition& onGrs80) noexcept;

} // namespace fieldcore
