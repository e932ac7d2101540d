#include "core/planning/NominalConstellation.h"

#include "core/orbits/SystemTime.h"
#include "core/planning/AlmanacOrbit.h"
#include "core/platform/Calendar.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace fieldcore {

namespace {

constexpr double kSemicircleDeg = 180.0;
constexpr double kAxisM = 26'559'800.0;
constexpr double kInclinationDeg = 55.0;

/// 1993-07-01 00:00 UTC, a Thursday, in GPS time, which was 9 s ahead.
constexpr int kEpochWeek = 703;
constexpr double kEpochSowS = 4 * kDayS + 9.0;
/// 18h 36m 14.4s: where Greenwich stood against the equinox.
constexpr double kGreenwichDeg = (18.0 + 36.0 / 60.0 + 14.4 / 3600.0) * 15.0;

/// The oblateness of the earth and its equatorial radius, m: WGS84.
constexpr double kJ2 = 1.08263e-3;
constexpr double kEarthRadiusM = 6'378'137.0;

constexpr std::size_t kPlanes = 6;
/// Right ascension of the node, planes A to F, degrees.
constexpr double kNodeDeg[kPlanes] = {272.847, 332.847, 32.847, 92.847, 152.847, 212.847};
/// Argument of latitude, degrees: a row for each slot, a column for each plane. The last two rows
/// are the middles of the widest gaps.
constexpr double kArgumentDeg[][kPlanes] = {
    {268.126, 80.956, 111.876, 135.226, 197.046, 238.886},
    {161.786, 173.336, 11.796, 265.446, 302.596, 345.226},
    {11.676, 309.976, 339.666, 35.136, 66.066, 105.206},
    {41.806, 204.376, 241.556, 167.356, 333.686, 135.346},
    {101.796, 15.466, 176.716, 330.291, 131.556, 45.216},
    {214.956},
};

/// @return an angle of as many turns as it may be in -1 to 1
double Semicircles(double angleRad)
{
    return std::remainder(angleRad, 2.0 * std::numbers::pi) / std::numbers::pi;
}

double Radians(double degrees)
{
    return degrees / kSemicircleDeg * std::numbers::pi;
}

/// Of a circular orbit, rad/s: -3/2 n J2 (R / a)^2 cos i, the secular drift of the node.
double NodeDrift(double meanMotion)
{
    const double ratio = kEarthRadiusM / kAxisM;
    return -1.5 * meanMotion * kJ2 * ratio * ratio * std::cos(Radians(kInclinationDeg));
}

} // namespace

std::vector<AlmanacRecord> NominalConstellation(int count, int week, std::uint32_t toaS)
{
    const double meanMotion = std::sqrt(kGm / (kAxisM * kAxisM * kAxisM)); // rad/s
    const double nodeDrift = NodeDrift(meanMotion);
    const double sinceEpochS = (week - kEpochWeek) * kWeekS + (toaS - kEpochSowS);
    const auto size = static_cast<std::size_t>(std::clamp(count, 0, kNominalSatellites));
    std::vector<AlmanacRecord> records(size);
    for (std::size_t i = 0; i < size; ++i) {
        const double nodeAtEpoch = Radians(kNodeDeg[i % kPlanes] - kGreenwichDeg);
        const double nodeAtToa = nodeAtEpoch + (nodeDrift - kEarthRate) * sinceEpochS;
        const double argument = Radians(kArgumentDeg[i / kPlanes][i % kPlanes]);
        AlmanacRecord& record = records[i];
        record.prn = static_cast<std::uint8_t>(i + 1);
        record.timeStamp = static_cast<std::uint32_t>(week) * 604'800U + toaS;
        record.week = static_cast<std::int16_t>(week);
        record.toaS = toaS;
        record.sqrtA = std::sqrt(kAxisM);
        record.inclination = kInclinationDeg / kSemicircleDeg;
        record.omegaDot = nodeDrift / std::numbers::pi;
        record.omega0 = Semicircles(nodeAtToa + kEarthRate * toaS);
        // No perigee in a circle: counted from the node, the anomaly is the argument of latitude.
        record.m0 = Semicircles(argument + meanMotion * sinceEpochS);
    }
    return records;
}

std::vector<AlmanacRecord> NominalAlmanac(Clock::UtcTime now)
{
    using std::chrono::weeks;
    constexpr std::int64_t kStepS = 4096; // of reference times
    const auto since = std::chrono::duration_cast<std::chrono::seconds>(now - kGpsEpoch);
    const std::int64_t inWeek = (since % weeks(1)).count() / kStepS * kStepS;
    return NominalConstellation(kNominalSatellites, static_cast<int>(since / weeks(1)),
                                static_cast<std::uint32_t>(inWeek));
}

std::vector<NavigationRecord> NominalMessages(double gpsS)
{
    struct Kind
    {
        GnssSystem system;
        int satellites;
        double a, i0;
    };
    constexpr Kind kKinds[] = {{GnssSystem::Gps, 32, 2.656e7, 0.96},
                               {GnssSystem::Glonass, 24, 2.551e7, 1.13},
                               {GnssSystem::Galileo, 27, 2.96e7, 0.98},
                               {GnssSystem::BeiDou, 43, 2.79e7, 0.96},
                               {GnssSystem::Qzss, 4, 4.216e7, 0.71}};
    std::vector<NavigationRecord> records;
    for (const Kind& kind : kKinds) {
        for (int number = 1; number <= kind.satellites; ++number) {
            NavigationRecord record;
            record.satellite = {kind.system, static_cast<std::uint8_t>(number)};
            record.systemS = SystemSeconds(kind.system, gpsS);
            KeplerOrbit orbit;
            SetEarthOf(kind.system, orbit);
            orbit.referenceS = gpsS;
            orbit.toeS = std::fmod(record.systemS, kWeekS);
            orbit.a = kind.a;
            orbit.eccentricity = 0.01;
            orbit.i0 = kind.i0;
            orbit.omega0 = (number % 3 - 1) * 2.1;
            orbit.m0 = std::remainder(number * 2.4, 2.0 * std::numbers::pi);
            orbit.cuc = orbit.cus = orbit.cic = orbit.cis = 1e-6;
            orbit.crc = orbit.crs = 100.0;
            record.orbit = orbit;
            if (kind.system == GnssSystem::Glonass) {
                const Ecef at = PositionOf(orbit, gpsS).value_or(Ecef{});
                const Ecef next = PositionOf(orbit, gpsS + 1.0).value_or(Ecef{});
                const Ecef velocity{next.x - at.x, next.y - at.y, next.z - at.z};
                record.orbit = StateVector{gpsS, at, velocity, {}};
            }
            records.push_back(record);
        }
    }
    return records;
}

} // namespace fieldcore
