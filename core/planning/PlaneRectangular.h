#pragma once

#include <optional>

#include "core/planning/Geodesy.h"

namespace fieldcore {

/// The zones of Japan's plane rectangular coordinate system, numbered from 1 (I) to 19 (XIX).
inline constexpr int kFirstPlaneZone = 1;
inline constexpr int kLastPlaneZone = 19;

/// Farthest that a point may lie from its zone's origin in x and in y, metres. A zone is meant
/// for some 130 km to either side of its meridian; beyond this no use is imaginable.
inline constexpr double kPlaneReachM = 1e6;

struct PlanePosition
{
    double xM = 0.0; ///< north of the zone's origin
    double yM = 0.0; ///< east of the zone's meridian
};

struct PlaneProjection
{
    PlanePosition position;
    /// Meridian convergence: grid north as seen from true north, clockwise positive, so positive
    /// east of the meridian. The direction of true north on the map sheet is its negative.
    double convergenceRad = 0.0;
    double scaleFactor = 0.0; ///< plane length over length on the ellipsoid
};

/// Where the zone has x = 0 and y = 0; height 0.
/// @return nothing if there is no such zone
[[nodiscard]] std::optional<GeodeticPosition> PlaneOrigin(int zone) noexcept;

/// Plane coordinates of a place: transverse Mercator with 0.9999 on the zone's meridian. The
/// height does not enter. Exact to some nanometres.
/// @param ellipsoid  Grs80 for JGD2000 and JGD2011, Bessel1841 for the Tokyo datum; the position
/// is on the same one
/// @return nothing if there is no such zone, if a coordinate is out of range or not a number, or
/// if the place is out of the zone's reach
[[nodiscard]] std::optional<PlaneProjection>
PlaneOfGeodetic(int zone, const GeodeticPosition& position,
                Ellipsoid ellipsoid = Ellipsoid::Grs80) noexcept;

/// The place that has these plane coordinates; height 0.
/// @return nothing if there is no such zone or the point is out of its reach or not a number
[[nodiscard]] std::optional<GeodeticPosition>
GeodeticOfPlane(int zone, PlanePosition position, Ellipsoid ellipsoid = Ellipsoid::Grs80) noexcept;

} // namespace fieldcore
