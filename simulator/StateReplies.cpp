#include "simulator/StateReplies.h"

#include "simulator/SatelliteReplies.h"

#include <cmath>
#include <numbers>

namespace fieldcore::simulator {

namespace {

constexpr std::uint8_t kStatus = 0x09;
constexpr std::uint8_t kTime = 0x15;
constexpr std::uint8_t kSite = 0x31;
constexpr std::uint8_t kPosition = 0x35;

double Radians(double degrees)
{
    return degrees * std::numbers::pi / 180.0;
}

} // namespace

GpsTime ToGpsTime(Clock::UtcTime utc, int utcOffsetS)
{
    using namespace std::chrono;
    constexpr sys_days kEpoch{year(1980) / January / 6};
    constexpr double kWeekS = 604800.0;
    const duration<double> sinceEpoch = utc - kEpoch + seconds(utcOffsetS);
    const double week = std::floor(sinceEpoch.count() / kWeekS);
    return {static_cast<int>(week), sinceEpoch.count() - week * kWeekS};
}

int TrackedSatellites(const Scenario& scenario)
{
    return scenario.trackedSatellites >= 0 ? scenario.trackedSatellites
                                           : static_cast<int>(Listed(scenario, false).size());
}

Bytes StatusReply(const Scenario& scenario, int batteryPercent)
{
    DataWriter out;
    out.Digits(scenario.timeValid ? 1 : 0, 1).Digits(0, 1);
    out.Digits(TrackedSatellites(scenario), 2);
    out.Digits(0, 3).Digits(batteryPercent, 3);
    out.Tenths(scenario.pdop, 4);
    out.Digits(scenario.fixKind, 1);
    out.Text(scenario.survey, 4);
    out.Digits(scenario.freeMemoryTenths, 2);
    return out.Frame(kStatus);
}

Bytes TimeReply(const GpsTime& time, int utcOffsetS)
{
    DataWriter out;
    out.Digits(static_cast<long>(time.sowS), 7).Digits(time.week, 4).Digits(utcOffsetS, 2);
    return out.Frame(kTime);
}

Bytes SiteReply(const Scenario& scenario)
{
    DataWriter out;
    out.U8(18).U8(0);
    out.F64(Radians(scenario.latitudeDeg)).F64(Radians(scenario.longitudeDeg));
    out.F64(scenario.heightM);
    return out.Frame(kSite);
}

Bytes PositionReply(const Scenario& scenario, const GpsTime& time)
{
    DataWriter out;
    out.U8(static_cast<unsigned>(scenario.fixKind));
    out.U8(static_cast<unsigned>(TrackedSatellites(scenario)));
    out.U32(static_cast<unsigned>(time.week)).U32(static_cast<std::uint64_t>(time.sowS));
    out.F32(scenario.pdop).F32(scenario.hdop).F32(scenario.vdop);
    out.F64(Radians(scenario.latitudeDeg)).F64(Radians(scenario.longitudeDeg));
    out.F64(scenario.heightM);
    return out.Frame(kPosition);
}

} // namespace fieldcore::simulator
