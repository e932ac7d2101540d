#include "simulator/StateReplies.h"

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

int TrackedSatellites(const Scenario& scenario, const Sky& sky)
{
    return scenario.trackedSatellites >= 0 ? scenario.trackedSatellites
                                           : static_cast<int>(Listed(sky, false).size());
}

Bytes StatusReply(const Scenario& scenario, const Sky& sky, int batteryPercent,
                  int freeMemoryTenths)
{
    DataWriter out;
    out.Digits(scenario.timeValid ? 1 : 0, 1).Digits(0, 1);
    out.Digits(TrackedSatellites(scenario, sky), 2);
    out.Digits(0, 3).Digits(batteryPercent, 3);
    out.Tenths(sky.dop.pdop, 4);
    out.Digits(scenario.fixKind, 1);
    out.Text(scenario.survey, 4);
    out.Digits(freeMemoryTenths, 2);
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

Bytes PositionReply(const Scenario& scenario, const Sky& sky, const GpsTime& time)
{
    DataWriter out;
    out.U8(static_cast<unsigned>(scenario.fixKind));
    out.U8(static_cast<unsigned>(TrackedSatellites(scenario, sky)));
    out.U32(static_cast<unsigned>(time.week)).U32(static_cast<std::uint64_t>(time.sowS));
    out.F32(sky.dop.pdop).F32(sky.dop.hdop).F32(sky.dop.vdop);
    out.F64(Radians(scenario.latitudeDeg)).F64(Radians(scenario.longitudeDeg));
    out.F64(scenario.heightM);
    return out.Frame(kPosition);
}

} // namespace fieldcore::simulator
