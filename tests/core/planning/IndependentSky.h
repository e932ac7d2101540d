#pragma once

#include "core/planning/AlmanacRecord.h"
#include "core/planning/LocalFrame.h"

#include <cmath>
#include <numbers>

namespace fieldcore::testing {

inline double Dot(const Ecef& a, const Ecef& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Ecef Cross(const Ecef& a, const Ecef& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline Ecef TurnedAboutZ(const Ecef& v, double angle)
{
    return {v.x * std::cos(angle) - v.y * std::sin(angle),
            v.x * std::sin(angle) + v.y * std::cos(angle), v.z};
}

inline Ecef TurnedAboutX(const Ecef& v, double angle)
{
    return {v.x, v.y * std::cos(angle) - v.z * std::sin(angle),
            v.y * std::sin(angle) + v.z * std::cos(angle)};
}

/// E - e sin E grows with E, so the root lies between M - e and M + e.
inline double AnomalyByHalving(double m, double e)
{
    double low = m - e;
    double high = m + e;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2;
        (middle - e * std::sin(middle) < m ? low : high) = middle;
    }
    return (low + high) / 2;
}

struct IndependentPlace
{
    Ecef position;
    double azimuthRad; ///< 0 to 2 pi
    double elevationRad;
};

/// Where a satellite stands, from the same published model by other means: Kepler's equation by
/// halving, the orbit as three rotations of a vector, and the angles from products with the axes of
/// the horizon.
/// @param tkS  seconds from toa
[[nodiscard]] inline IndependentPlace PlaceOf(const AlmanacRecord& record, double tkS,
                                              const Observer& observer)
{
    constexpr double kPi = std::numbers::pi;
    constexpr double kGravity = 3.986005e14;
    constexpr double kTurnRate = 7.2921151467e-5; // of the earth
    const double a = record.sqrtA * record.sqrtA;
    const double e = record.eccentricity;
    const double anomaly = AnomalyByHalving(record.m0 * kPi + std::sqrt(kGravity / a) / a * tkS, e);
    const Ecef inPlane{a * (std::cos(anomaly) - e), a * std::sqrt(1 - e * e) * std::sin(anomaly),
                       0};
    const double node =
        record.omega0 * kPi + record.omegaDot * kPi * tkS - kTurnRate * (tkS + record.toaS);
    const Ecef satellite = TurnedAboutZ(
        TurnedAboutX(TurnedAboutZ(inPlane, record.omega * kPi), record.inclination * kPi), node);

    // The ellipsoid's normal is up; b / a squared is (1 - f) squared.
    constexpr double kAxis = 6378137.0;
    constexpr double kSqueeze = (1 - 1 / 298.257222101) * (1 - 1 / 298.257222101);
    const double lat = observer.latitudeRad;
    const double lon = observer.longitudeRad;
    const Ecef up{std::cos(lat) * std::cos(lon), std::cos(lat) * std::sin(lon), std::sin(lat)};
    const double scale =
        kAxis / std::sqrt(std::cos(lat) * std::cos(lat) + kSqueeze * std::sin(lat) * std::sin(lat));
    const double h = observer.heightM;
    const Ecef d{satellite.x - (scale + h) * up.x, satellite.y - (scale + h) * up.y,
                 satellite.z - (scale * kSqueeze + h) * up.z};
    const Ecef east{-std::sin(lon), std::cos(lon), 0};
    const double azimuth = std::atan2(Dot(d, east), Dot(d, Cross(up, east)));
    // From the angle to the zenith: as good at the zenith as elsewhere.
    const Ecef across = Cross(d, up);
    return {satellite, azimuth < 0 ? azimuth + 2 * kPi : azimuth,
            std::atan2(Dot(d, up), std::sqrt(Dot(across, across)))};
}

} // namespace fieldcore::testing
