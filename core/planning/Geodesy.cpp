#include "core/planning/Geodesy.h"

#include <numbers>

#include <GeographicLib/Geocentric.hpp>

#include "core/platform/Degrees.h"

namespace fieldcore {
namespace {

bool IsWithin(double value, double lowest, double highest)
{
    return value >= lowest && value <= highest; // false for NaN
}

// The library throws only for impossible shapes, and these are none.
GeographicLib::Geocentric EarthOf(Ellipsoid ellipsoid)
{
    const EllipsoidShape shape = ShapeOf(ellipsoid);
    return {shape.semiMajorAxisM, shape.flattening};
}

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

EllipsoidShape ShapeOf(Ellipsoid ellipsoid) noexcept
{
    switch (ellipsoid) {
    case Ellipsoid::Wgs84:
        return {6378137.0, 1.0 / 298.257223563};
    case Ellipsoid::Bessel1841:
        return {6377397.155, 1.0 / 299.152813};
    case Ellipsoid::Grs80:
        break;
    }
    return {6378137.0, 1.0 / 298.257222101};
}

bool IsPlace(const GeodeticPosition& position) noexcept
{
    constexpr double kPi = std::numbers::pi;
    return IsWithin(position.latitudeRad, -kPi / 2, kPi / 2) &&
           IsWithin(position.longitudeRad, -2 * kPi, 2 * kPi) &&
           IsWithin(position.heightM, kLowestHeightM, kHighestHeightM);
}

std::optional<Ecef> EcefOfGeodetic(const GeodeticPosition& position, Ellipsoid ellipsoid) noexcept
{
    if (!IsPlace(position)) {
        return std::nullopt;
    }
    Ecef point;
    EarthOf(ellipsoid).Forward(DegreesOf(position.latitudeRad), DegreesOf(position.longitudeRad),
                               position.heightM, point.x, point.y, point.z);
    return point;
}

std::optional<GeodeticPosition> GeodeticOfEcef(const Ecef& point, Ellipsoid ellipsoid) noexcept
{
    double latitudeDeg = 0.0;
    double longitudeDeg = 0.0;
    double heightM = 0.0;
    EarthOf(ellipsoid).Reverse(point.x, point.y, point.z, latitudeDeg, longitudeDeg, heightM);
    if (!IsWithin(latitudeDeg, -90.0, 90.0) || !IsWithin(longitudeDeg, -180.0, 180.0) ||
        !IsWithin(heightM, kLowestHeightM, kHighestHeightM)) {
        return std::nullopt;
    }
    return GeodeticPosition{RadiansOf(latitudeDeg), RadiansOf(longitudeDeg), heightM};
}

std::optional<GeodeticPosition> Jgd2000OfTokyo(const GeodeticPosition& onBessel) noexcept
{
    return Shifted(onBessel, Ellipsoid::Bessel1841, Ellipsoid::Grs80, 1.0);
}

std::optional<GeodeticPosition> TokyoOfJgd2000(const GeodeticPosition& onGrs80) noexcept
{
    return Shifted(onGrs80, Ellipsoid::Grs80, Ellipsoid::Bessel1841, -1.0);
}

} // namespace fieldcore
