#include "core/planning/TokyoDatum.h"

namespace fieldcore {
namespace {

// Metres, from Tokyo datum to JGD2000. EPSG registry, "Tokyo to JGD2000 (1)".
constexpr Ecef kShift{-146.414, 507.337, 680.507};

std::optional<GeodeticPosition> Shifted(const GeodeticPosition& position, Ellipsoid from,
                                        Ellipsoid to, double sign) noexcept
{
    const std::optional<Ecef> point = EcefOfGeodetic(position, from);
    if (!point) {
        return std::nullopt;
    }
    return GeodeticOfEcef(
        {point->x + sign * kShift.x, point->y + sign * kShift.y, point->z + sign * kShift.z}, to);
}

} // namespace

std::optional<GeodeticPosition> Jgd2000OfTokyo(const GeodeticPosition& onBessel) noexcept
{
    return Shifted(onBessel, Ellipsoid::Bessel1841, Ellipsoid::Grs80, 1.0);
}

std::optional<GeodeticPosition> TokyoOfJgd2000(const GeodeticPosition& onGrs80) noexcept
{
    return Shifted(onGrs80, Ellipsoid::Grs80, Ellipsoid::Bessel1841, -1.0);
}

} // namespace fieldcore
