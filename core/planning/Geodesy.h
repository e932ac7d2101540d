#pragma once

#include <optional>

#include "core/orbits/Ecef.h"

namespace fieldcore {

/// The ellipsoids of Japan's datums and of GPS.
enum class Ellipsoid
{
    Grs80,      ///< JGD2000, JGD2011
    Wgs84,      ///< GPS
    Bessel1841, ///< Tokyo datum
};

/// An ellipsoid of revolution.
struct EllipsoidShape
{
    double semiMajorAxisM; ///< a, m
    double flattening;     ///< f
};

/// GRS80: Moritz, Geodetic Reference System 1980. WGS84: NIMA TR8350.2. Bessel: the values by which
/// Japan's Survey Act defined it until 2002.
[[nodiscard]] EllipsoidShape ShapeOf(Ellipsoid ellipsoid) noexcept;

/// A place by its geodetic coordinates on some ellipsoid.
struct GeodeticPosition
{
    double latitudeRad = 0.0;  ///< -pi/2 to pi/2, north positive
    double longitudeRad = 0.0; ///< east positive; results lie within -pi to pi
    double heightM = 0.0;      ///< above the ellipsoid
};

/// Heights between which the conversions work: from below any mine to beyond any GNSS orbit.
inline constexpr double kLowestHeightM = -1e5;
inline constexpr double kHighestHeightM = 1e8;

/// Whether the coordinates are numbers within the ranges above, with a longitude from -2 pi to
/// 2 pi.
[[nodiscard]] bool IsPlace(const GeodeticPosition& position) noexcept;

/// Earth-fixed coordinates of a place. There and back again differs by less than 2e-8 m up to
/// the height of the orbits.
/// @return nothing unless IsPlace()
[[nodiscard]] std::optional<Ecef> EcefOfGeodetic(const GeodeticPosition& position,
                                                 Ellipsoid ellipsoid) noexcept;

/// Geodetic coordinates of an earth-fixed point.
/// @return nothing if the point is not finite or its height is out of range, as the earth's centre
[[nodiscard]] std::optional<GeodeticPosition> GeodeticOfEcef(const Ecef& point,
                                                             Ellipsoid ellipsoid) noexcept;

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
