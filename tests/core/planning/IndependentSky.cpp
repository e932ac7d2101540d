#include "tests/core/planning/IndependentSky.h"

#include <cmath>
#include <numbers>

namespace fieldcore::testing {

namespace {

using Real = long double;

constexpr Real kPi = std::numbers::pi_v<Real>;

struct Vector
{
    Real x, y, z;
};

Real Dot(const Vector& a, const Vector& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector Cross(const Vector& a, const Vector& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vector Unit(const Vector& a)
{
    const Real length = std::sqrt(Dot(a, a));
    return {a.x / length, a.y / length, a.z / length};
}

Vector TurnedAboutZ(const Vector& v, Real angle)
{
    return {v.x * std::cos(angle) - v.y * std::sin(angle),
            v.x * std::sin(angle) + v.y * std::cos(angle), v.z};
}

Vector TurnedAboutX(const Vector& v, Real angle)
{
    return {v.x, v.y * std::cos(angle) - v.z * std::sin(angle),
            v.y * std::sin(angle) + v.z * std::cos(angle)};
}

/// E - e sin E grows with E, so the root lies between M - e and M + e.
Real EccentricAnomaly(Real m, Real e)
{
    Real low = m - e;
    Real high = m + e;
    for (int i = 0; i < 80; ++i) {
        const Real middle = (low + high) / 2;
        (middle - e * std::sin(middle) < m ? low : high) = middle;
    }
    return (low + high) / 2;
}

} // namespace

IndependentPlace PlaceOf(const AlmanacRecord& record, double tkS, const Observer& observer)
{
    const Real gm = 3.986005e14L;
    const Real earthRate = 7.2921151467e-5L;
    const Real a = Real{record.sqrtA} * record.sqrtA;
    const Real e = record.eccentricity;
    const Real m = record.m0 * kPi + std::sqrt(gm / a) / a * tkS;
    const Real anomaly = EccentricAnomaly(m, e);
    const Vector inPlane{a * (std::cos(anomaly) - e), a * std::sqrt(1 - e * e) * std::sin(anomaly),
                         0};
    const Real node =
        record.omega0 * kPi + record.omegaDot * kPi * tkS - earthRate * (Real{tkS} + record.toaS);
    const Vector satellite = TurnedAboutZ(
        TurnedAboutX(TurnedAboutZ(inPlane, record.omega * kPi), record.inclination * kPi), node);

    // The ellipsoid's normal is up; b / a squared is (1 - f) squared.
    const Real axis = 6378137.0L;
    const Real squeeze = (1 - 1 / 298.257222101L) * (1 - 1 / 298.257222101L);
    const Real lat = observer.latitudeRad;
    const Real lon = observer.longitudeRad;
    const Vector up{std::cos(lat) * std::cos(lon), std::cos(lat) * std::sin(lon), std::sin(lat)};
    const Real scale =
        axis / std::sqrt(std::cos(lat) * std::cos(lat) + squeeze * std::sin(lat) * std::sin(lat));
    const Real h = observer.heightM;
    const Vector d{satellite.x - (scale + h) * up.x, satellite.y - (scale + h) * up.y,
                   satellite.z - (scale * squeeze + h) * up.z};
    const Vector east = Unit(Cross({0, 0, 1}, up));
    const Vector north = Cross(up, east);
    Real azimuth = std::atan2(Dot(d, east), Dot(d, north));
    if (azimuth < 0) {
        azimuth += 2 * kPi;
    }
    // From the angle to the zenith: as good at the zenith as elsewhere.
    const Vector across = Cross(d, up);
    const Real elevation = std::atan2(Dot(d, up), std::sqrt(Dot(across, across)));
    return {{static_cast<double>(satellite.x), static_cast<double>(satellite.y),
             static_cast<double>(satellite.z)},
            static_cast<double>(azimuth),
            static_cast<double>(elevation)};
}

} // namespace fieldcore::testing
