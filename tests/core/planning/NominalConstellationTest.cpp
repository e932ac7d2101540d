#include "core/planning/NominalConstellation.h"

#include "core/planning/AlmanacOrbit.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

/// 1993-07-01 00:00 UTC: 4925 days and 9 leap seconds after 1980-01-06.
constexpr GpsEpoch kPublished{703, 345'609.0};

Ecef PositionAt(const AlmanacRecord& record, GpsEpoch epoch)
{
    const auto position = AlmanacOrbit(record).Position(epoch);
    EXPECT_TRUE(position);
    return position.value_or(Ecef{});
}

double Apart(const Ecef& a, const Ecef& b)
{
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

TEST(NominalConstellation, StandsAtTheEpochWhereTheStandardSays)
{
    // Right ascension of the node and argument of latitude, degrees.
    constexpr std::tuple<std::string_view, int, double, double> kRows[] = {
        {"A1", 1, 272.847, 268.126}, {"B1", 2, 332.847, 80.956},   {"C2", 9, 32.847, 11.796},
        {"D3", 16, 92.847, 35.136},  {"E4", 23, 152.847, 333.686}, {"F4", 24, 212.847, 135.346},
    };
    constexpr double kGreenwichDeg = 279.06; // 18h 36m 14.4s
    for (const auto& [slot, prn, nodeDeg, argumentDeg] : kRows) {
        SCOPED_TRACE(slot);
        // A circle, its highest point at the inclination, turned from the equinox to Greenwich.
        const double u = argumentDeg * kDegree;
        const double i = 55.0 * kDegree;
        const double node = (nodeDeg - kGreenwichDeg) * kDegree;
        const double along = std::cos(u);
        const double across = std::sin(u) * std::cos(i);
        constexpr double kRadiusM = 26'559'800.0;
        const Ecef expected{kRadiusM * (along * std::cos(node) - across * std::sin(node)),
                            kRadiusM * (along * std::sin(node) + across * std::cos(node)),
                            kRadiusM * std::sin(u) * std::sin(i)};
        const auto near = NominalConstellation(31, 703, 344'064);
        const AlmanacRecord& record = near[static_cast<std::size_t>(prn - 1)];
        EXPECT_EQ(record.prn, prn);
        EXPECT_EQ(record.health, 0);
        EXPECT_LT(Apart(PositionAt(record, kPublished), expected), 0.1) << "metres";
    }
}

TEST(NominalConstellation, IsTheSameMotionFromEveryReferenceTime)
{
    constexpr std::pair<int, std::uint32_t> kTimes[] = {
        {2410, 602'112}, // of the same week
        {2411, 0},
        {2462, 61'440},  // a year later
        {1367, 405'504}, // twenty years earlier
    };
    const auto now = NominalConstellation(31, 2410, 344'064);
    for (const auto& [week, toaS] : kTimes) {
        SCOPED_TRACE(week);
        const auto other = NominalConstellation(31, week, toaS);
        ASSERT_EQ(other.size(), now.size());
        for (std::size_t i = 0; i < now.size(); ++i) {
            // 0.1 m: the anomaly of twenty years, 1e5 rad, is rounded to some 1e-11.
            const GpsEpoch epoch{2410, 350'000.0};
            EXPECT_LT(Apart(PositionAt(now[i], epoch), PositionAt(other[i], epoch)), 0.1) << i;
        }
    }
}

TEST(NominalConstellation, FillsTheWidestGapOfEachPlane)
{
    // In one plane the arguments of latitude differ as the mean anomalies do.
    const auto all = NominalConstellation(31, 2410, 344'064);
    ASSERT_EQ(all.size(), 31U);
    for (std::size_t extra = 24; extra < all.size(); ++extra) {
        double ahead = 360.0;
        double behind = 360.0;
        for (std::size_t i = extra % 6; i < extra; i += 6) {
            const double turn = std::fmod((all[i].m0 - all[extra].m0) * 180.0 + 720.0, 360.0);
            ahead = std::min(ahead, turn);
            behind = std::min(behind, 360.0 - turn);
        }
        EXPECT_NEAR(ahead, behind, 1e-6) << "PRN " << extra + 1 << " is not in the middle";
        EXPECT_GT(ahead, 50.0) << "PRN " << extra + 1 << " is not in the widest gap";
    }
}

TEST(NominalConstellation, GivesAsManyAsAreAskedFor)
{
    EXPECT_EQ(NominalConstellation(-1, 2410, 0).size(), 0U);
    EXPECT_EQ(NominalConstellation(4, 2410, 0).size(), 4U);
    EXPECT_EQ(NominalConstellation(99, 2410, 0).size(), 31U);
}

} // namespace
} // namespace fieldcore
