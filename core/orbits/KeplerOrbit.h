#pragma once

#include "core/orbits/Ecef.h"
#include "core/orbits/SatelliteId.h"

#include <optional>

namespace fieldcore {

/// Earth's gravitational parameter GM, m^3/s^2, and rate of rotation, rad/s: IS-GPS-200,
/// 20.3.3.4.3. Newer values exist; users of GPS orbits are told to keep these.
inline constexpr double kGm = 3.986005e14;
inline constexpr double kEarthRate = 7.2921151467e-5;
/// The same for Galileo (Galileo OS SIS ICD, Table 58) and BeiDou (BDS-SIS-ICD, Table 5-11), and
/// BeiDou's own rate of rotation.
inline constexpr double kGmNewer = 3.986004418e14;
inline constexpr double kEarthRateBeiDou = 7.2921150e-5;

/// Eccentric anomaly of a mean anomaly @p m, rad, for 0 <= @p e < 1, within 1e-8 rad: Newton's
/// steps from @p m on.
/// @return nothing if they do not settle, as for an m that is not finite
[[nodiscard]] std::optional<double> EccentricAnomaly(double m, double e) noexcept;

/// Orbit of a satellite as it is broadcast, with all that an ephemeris adds to an almanac: plain
/// values, so that whoever wants to compute many at once can. An almanac's has zeros there.
/// Angles and rates are radians and radians per second.
struct KeplerOrbit
{
    double referenceS = 0.0; ///< toe, seconds of GPS time since 1980-01-06
    double toeS = 0.0;       ///< toe as broadcast, seconds of the system's own week
    double gm = kGm;         ///< of the system, m^3/s^2
    double earthRate = kEarthRate;
    double a = 0.0;            ///< semi-major axis, m
    double eccentricity = 0.0; ///< 0 <= e < 1
    double i0 = 0.0;           ///< inclination at toe
    double omega0 = 0.0;       ///< longitude of the ascending node at the week's start
    double omega = 0.0;        ///< argument of perigee
    double m0 = 0.0;           ///< mean anomaly at toe
    double omegaDot = 0.0;     ///< rate of right ascension
    double deltaN = 0.0;       ///< correction of the mean motion
    double iDot = 0.0;         ///< rate of inclination
    // Amplitudes of the corrections with twice the argument of latitude: rad, and m for the radius.
    double cuc = 0.0, cus = 0.0, cic = 0.0, cis = 0.0;
    double crc = 0.0, crs = 0.0;
    bool isGeostationary = false; ///< BeiDou's, whose elements refer to a tilted frame of their own
};

/// GM and rate of rotation by which @p system means its elements.
void SetEarthOf(GnssSystem system, KeplerOrbit& orbit) noexcept;

/// Earth-fixed position at @p gpsS, seconds of GPS time since 1980-01-06. The frames of the systems
/// agree within decimetres.
/// @return metres; nothing if the elements are no orbit: one is not finite, e is not within
/// 0 <= e < 1, or Kepler's equation does not settle
///
/// IS-GPS-200, Table 20-IV, which Galileo, QZSS and BeiDou share; for BeiDou's geostationary
/// satellites BDS-SIS-ICD, 5.2.4.12. Departs from them on purpose: the time since toe is not folded
/// into half a week, because a plan may lie weeks away.
[[nodiscard]] std::optional<Ecef> PositionOf(const KeplerOrbit& orbit, double gpsS) noexcept;

} // namespace fieldcore
