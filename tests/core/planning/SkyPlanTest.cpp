#include "core/planning/SkyPlan.h"

#include "core/orbits/NavigationText.h"
#include "core/orbits/SystemTime.h"
#include "core/planning/ObservationPlan.h"
#include "tests/core/orbits/Messages.h"
#include "tests/core/planning/SampleSky.h"

#include <chrono>
#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

Constellations Known()
{
    Constellations known;
    known.Add(ReadNavigation(testing::Messages()).records);
    return known;
}

TEST(SkyPlan, HasTheDilutionsOfAGeometryByHand)
{
    // Four around the horizon, one overhead and one below: the sums of squares are 2 each, so the
    // position's dilution is the root of 3/2 whatever the clocks, since each group has its mean in
    // the middle.
    const std::vector<Ecef> cross{{1, 0, 0},  {-1, 0, 0}, {0, 1, 0},
                                  {0, -1, 0}, {0, 0, 1},  {0, 0, -1}};
    const DopValues one = DilutionOf(cross, std::vector<std::size_t>(6, 0));
    EXPECT_NEAR(one.pdop, std::sqrt(1.5), 1e-12);
    EXPECT_NEAR(one.tdop, std::sqrt(1.0 / 6.0), 1e-12);
    EXPECT_NEAR(one.gdop, std::sqrt(1.5 + 1.0 / 6.0), 1e-12);
    const DopValues two = DilutionOf(cross, std::vector<std::size_t>{0, 0, 0, 0, 2, 2});
    EXPECT_NEAR(two.pdop, std::sqrt(1.5), 1e-12);
    EXPECT_NEAR(two.tdop, std::sqrt(0.25 + 0.5), 1e-12);
    // One satellite with a clock of its own tells only that clock: a unit of range, and half a unit
    // of each of its sums.
    std::vector<Ecef> withOne = cross;
    withOne.push_back({0.6, 0.0, 0.8});
    const DopValues three = DilutionOf(withOne, std::vector<std::size_t>{0, 0, 0, 0, 2, 2, 4});
    EXPECT_NEAR(three.pdop, std::sqrt(1.5), 1e-12);
    EXPECT_NEAR(three.tdop, std::sqrt(0.25 + 0.5 + 1.5), 1e-12);
    // Not to be solved: four of four systems, and all in one plane.
    const auto few = std::span(cross).first(4);
    EXPECT_TRUE(std::isinf(DilutionOf(few, std::vector<std::size_t>{0, 1, 2, 3}).pdop));
    EXPECT_TRUE(std::isinf(DilutionOf(few, std::vector<std::size_t>(4, 0)).pdop));
    EXPECT_EQ(DilutionOf(few.first(3), std::vector<std::size_t>(3, 0)).gdop, 16.0);
}

TEST(SkyPlan, SeesWhatStandsOverTheSite)
{
    ObservationPlan plan;
    plan.SetElMaskDeg(10);
    plan.SetConstellations(Known());
    plan.SetSystems(*ParseSystems("GREC"));
    plan.Period() = {2020y / 6 / 25, 19, 1};
    plan.Compute();
    // E11, G05 and R09 are there, C05, C08 and C12; no J01, which was not asked for.
    ASSERT_EQ(plan.Satellites().size(), 6U);
    EXPECT_EQ(plan.Satellites().front().Text(), "G05");
    EXPECT_EQ(plan.Satellites().back().Text(), "C12");
    const LocalFrame frame(plan.Calc().GetObserver());
    int seen = 0;
    for (int k = 0; k <= plan.Division(); ++k) {
        // 19 h in Japan is 10 h UTC, and 18 s more by GPS time.
        const double gpsS = GpsSecondsOfUtc(std::chrono::sys_days(2020y / 6 / 25) + 10h + k * 5min);
        int count = 0;
        for (int index = 0; index < 6; ++index) {
            const auto place =
                plan.GetConstellations()
                    .Position(plan.Satellites()[static_cast<std::size_t>(index)], gpsS)
                    .value();
            const EastNorthUp enu = frame.ToLocal(place);
            const SkyDirection expected = enu.ToDirection(enu.Range());
            const auto direction = plan.DirectionAt(index, k);
            ASSERT_EQ(direction.has_value(), expected.elevationRad >= 10 * std::numbers::pi / 180);
            if (direction) {
                EXPECT_NEAR(direction->elevationRad, expected.elevationRad, 1e-12);
                EXPECT_NEAR(std::remainder(direction->azimuthRad - expected.azimuthRad,
                                           2 * std::numbers::pi),
                            0.0, 1e-12);
                ++count;
            }
        }
        EXPECT_EQ(plan.View().count[static_cast<std::size_t>(k)], count);
        seen += count;
    }
    EXPECT_GT(seen, 0);
}

TEST(SkyPlan, LeavesThePlanOfGpsAloneAsItIs)
{
    ObservationPlan plain;
    plain.Calc().LoadAlmanac(testing::SampleFile());
    plain.Period() = {2022y / 3 / 10, 9, 4};
    plain.Compute();

    ObservationPlan plan;
    plan.Calc().LoadAlmanac(testing::SampleFile());
    plan.Calc().SetUse(4, 0);
    plan.SetConstellations(Known());
    plan.SetSystems(*ParseSystems("GJ"), true);
    plan.Period() = plain.Period();
    plan.Compute();
    EXPECT_FALSE(plan.IsGpsAlone());
    // 30 of the almanac less the one that is switched off, and J01.
    ASSERT_EQ(plan.Satellites().size(), 30U);
    EXPECT_EQ(plan.Satellites()[4].Text(), "G06");
    // The same orbits, but for 18 leap seconds, in which a satellite moves by a sixth of a degree.
    const auto before = plain.DirectionAt(5, 3);
    const auto after = plan.DirectionAt(4, 3);
    ASSERT_EQ(before.has_value(), after.has_value());
    if (before) {
        EXPECT_NEAR(before->elevationRad, after->elevationRad, 0.005);
    }

    plan.Calc().SetUse(4, 2);
    plan.SetSystems(*ParseSystems("G"));
    plan.Compute();
    EXPECT_EQ(plan.Satellites().size(), 32U);
    EXPECT_EQ(plan.View().visible, plain.View().visible);
    for (int k = 0; k < plan.Division(); ++k) {
        EXPECT_EQ(plan.CountAt(k), plain.CountAt(k));
        EXPECT_EQ(plan.DopAt(PlanGraph::Gdop, k), plain.DopAt(PlanGraph::Gdop, k));
    }
}

TEST(SkyPlan, TakesAnAlmanacsWeekInTheNearestCycle)
{
    AlmanacRecord record = testing::SampleSatellite(7);
    constexpr double kWeekS = 604800.0;
    const double now = 2200 * kWeekS;
    EXPECT_EQ(MessageOf(record, now)->ReferenceS(), 2200 * kWeekS + 405504);
    record.week = 2200 - 2048;
    EXPECT_EQ(MessageOf(record, now)->ReferenceS(), 2200 * kWeekS + 405504);
    record.prn = 194;
    EXPECT_EQ(MessageOf(record, now)->satellite.Text(), "J02");
    for (const std::uint8_t nobody : {std::uint8_t{0}, std::uint8_t{33}, std::uint8_t{120}}) {
        record.prn = nobody;
        EXPECT_FALSE(MessageOf(record, now)) << int{nobody};
    }
}

} // namespace
} // namespace fieldcore
