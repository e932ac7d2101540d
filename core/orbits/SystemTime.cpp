#include "core/orbits/SystemTime.h"

#include "core/platform/Calendar.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace fieldcore {

namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;

constexpr double kBeiDouBehindS = 14.0;        // as many leap seconds as there were when it began
constexpr double kMoscowAheadS = 3.0 * 3600.0; // of UTC

/// The days with which a leap second ends, IERS Bulletin C. There has been none since.
constexpr std::array kLeapDays{
    sys_days(1981y / 7 / 1), sys_days(1982y / 7 / 1), sys_days(1983y / 7 / 1),
    sys_days(1985y / 7 / 1), sys_days(1988y / 1 / 1), sys_days(1990y / 1 / 1),
    sys_days(1991y / 1 / 1), sys_days(1992y / 7 / 1), sys_days(1993y / 7 / 1),
    sys_days(1994y / 7 / 1), sys_days(1996y / 1 / 1), sys_days(1997y / 7 / 1),
    sys_days(1999y / 1 / 1), sys_days(2006y / 1 / 1), sys_days(2009y / 1 / 1),
    sys_days(2012y / 7 / 1), sys_days(2015y / 7 / 1), sys_days(2017y / 1 / 1),
};

double SinceEpoch(sys_days day)
{
    return static_cast<double>(std::chrono::seconds(day - kGpsEpoch).count());
}

/// GPS time less UTC at an instant of UTC.
double LeapSeconds(double utcS)
{
    return static_cast<double>(std::count_if(
        kLeapDays.begin(), kLeapDays.end(), [=](sys_days day) { return SinceEpoch(day) <= utcS; }));
}

double UtcSeconds(double gpsS)
{
    const double early = gpsS - LeapSeconds(gpsS); // a leap second too early at worst
    return gpsS - LeapSeconds(early);
}

} // namespace

double GpsSeconds(GnssSystem system, double systemS) noexcept
{
    switch (system) {
    case GnssSystem::BeiDou:
        return systemS + kBeiDouBehindS;
    case GnssSystem::Glonass: {
        const double utc = systemS - kMoscowAheadS;
        return utc + LeapSeconds(utc);
    }
    case GnssSystem::Gps:
    case GnssSystem::Galileo:
    case GnssSystem::Qzss:
    case GnssSystem::Sbas:
        break;
    }
    return systemS;
}

double SystemSeconds(GnssSystem system, double gpsS) noexcept
{
    switch (system) {
    case GnssSystem::BeiDou:
        return gpsS - kBeiDouBehindS;
    case GnssSystem::Glonass:
        return UtcSeconds(gpsS) + kMoscowAheadS;
    case GnssSystem::Gps:
    case GnssSystem::Galileo:
    case GnssSystem::Qzss:
    case GnssSystem::Sbas:
        break;
    }
    return gpsS;
}

double GpsSecondsOfUtc(std::chrono::sys_seconds utc) noexcept
{
    const auto seconds = static_cast<double>((utc - kGpsEpoch).count());
    return seconds + LeapSeconds(seconds);
}

std::chrono::sys_seconds UtcOfGpsSeconds(double gpsS) noexcept
{
    return kGpsEpoch + std::chrono::seconds(std::llround(UtcSeconds(gpsS)));
}

} // namespace fieldcore
