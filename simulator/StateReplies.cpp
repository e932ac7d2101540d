#include "simulator/Replies.h"

#include "core/platform/Degrees.h"

#include <algorithm>

#include <fmt/format.h>

namespace fieldcore::simulator {

namespace {

constexpr std::uint8_t kStatus = 0x09;
constexpr std::uint8_t kTime = 0x15;
constexpr std::uint8_t kSite = 0x31;
constexpr std::uint8_t kPosition = 0x35;

constexpr int kFirstPosition = 2; // single

} // namespace

int TrackedSatellites(const Scenario& scenario, const Sky& sky)
{
    return scenario.trackedSatellites >= 0 ? scenario.trackedSatellites
                                           : static_cast<int>(Listed(sky, false).size());
}

Solution SolutionAt(const Scenario& scenario, const Sky& sky, double elapsedS)
{
    Solution solution;
    solution.fixKind = ValueAt(scenario.laterFixes, elapsedS, scenario.fixKind);
    const bool hasPosition = solution.fixKind >= kFirstPosition;
    solution.dop = hasPosition ? sky.dop : LocalDop{kDopNone, kDopNone, kDopNone};
    const bool hadPosition =
        scenario.laterFixes.empty() || scenario.fixKind >= kFirstPosition ||
        std::any_of(scenario.laterFixes.begin(), scenario.laterFixes.end(), [&](const Step& step) {
            return step.fromS <= elapsedS && step.value >= kFirstPosition;
        });
    solution.knowsTime = scenario.timeValid && hadPosition;
    return solution;
}

Bytes StatusReply(const Scenario& scenario, const Sky& sky, const Solution& solution,
                  int batteryPercent, int freeMemoryTenths)
{
    DataWriter out;
    out.Digits(solution.knowsTime ? 1 : 0, 1).Digits(0, 1);
    out.Digits(TrackedSatellites(scenario, sky), 2);
    out.Digits(0, 3).Digits(batteryPercent, 3);
    out.Tenths(solution.dop.pdop, 4);
    out.Digits(solution.fixKind, 1);
    out.Text(scenario.survey, 4);
    out.Digits(freeMemoryTenths, 2);
    return out.Frame(kStatus);
}

Bytes TimeReply(const GpsTime& time, int utcOffsetS)
{
    DataWriter out;
    out.Digits(static_cast<long>(time.sowS), 7).Digits(time.week, 4);
    // The field has two characters; what does not fit makes the reply longer.
    const std::string offset = fmt::format("{:02}", utcOffsetS);
    out.Text(offset, offset.size());
    return out.Frame(kTime);
}

Bytes SiteReply(const Scenario& scenario)
{
    DataWriter out;
    out.U8(18).U8(0);
    out.F64(RadiansOf(scenario.latitudeDeg)).F64(RadiansOf(scenario.longitudeDeg));
    out.F64(scenario.heightM);
    return out.Frame(kSite);
}

Bytes PositionReply(const Scenario& scenario, const Sky& sky, const Solution& solution,
                    const GpsTime& time)
{
    DataWriter out;
    out.U8(static_cast<unsigned>(solution.fixKind));
    const bool hasPosition = solution.fixKind >= kFirstPosition;
    out.U8(hasPosition ? static_cast<unsigned>(TrackedSatellites(scenario, sky)) : 0U);
    out.U32(static_cast<unsigned>(time.week)).U32(static_cast<std::uint64_t>(time.sowS));
    out.F32(solution.dop.pdop).F32(solution.dop.hdop).F32(solution.dop.vdop);
    out.F64(RadiansOf(scenario.latitudeDeg)).F64(RadiansOf(scenario.longitudeDeg));
    out.F64(scenario.heightM);
    return out.Frame(kPosition);
}

} // namespace fieldcore::simulator
