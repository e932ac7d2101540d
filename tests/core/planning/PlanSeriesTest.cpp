// What every picture of a plan asks: samples, runs of tracks, the sky at one instant.

#include "core/planning/PlanSeries.h"
#include "core/planning/NominalConstellation.h"
#include "core/planning/SkySnapshot.h"
#include "tests/core/planning/SampleSky.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

/// A plan with @p satellites over 35 N 139 E, mask 15.
ObservationPlan PlanOf(int satellites, int startHour, int hours)
{
    ObservationPlan plan;
    plan.Calc().LoadAlmanac(testing::FileOf(NominalConstellation(satellites, 2445, 405504)));
    plan.SetElMaskDeg(15);
    plan.Period() = {2026y / std::chrono::November / 21, startHour, hours};
    plan.Compute();
    return plan;
}

TEST(PlanSeries, HasNoSampleWhereThereIsNoSolution)
{
    const ObservationPlan plan = PlanOf(9, 0, 24); // three to five are up
    int gaps = 0;
    for (int k = 0; k < plan.Division(); ++k) {
        const bool isEnough = plan.View().count[static_cast<std::size_t>(k) + 1] >= 4;
        gaps += isEnough ? 0 : 1;
        EXPECT_EQ(SampleAt(plan, PlanGraph::Pdop, k).has_value(), isEnough) << k;
        EXPECT_EQ(SampleAt(plan, PlanGraph::Count, k), plan.CountAt(k)); // none is a count, too
    }
    EXPECT_GT(gaps, 0);
    EXPECT_LT(gaps, plan.Division());
    EXPECT_EQ(SampleAt(plan, PlanGraph::Pdop, plan.Division()), std::nullopt);
    EXPECT_EQ(SampleAt(plan, PlanGraph::Pdop, -1), std::nullopt);
}

TEST(PlanSeries, FindsTheSampleOfATime)
{
    const ObservationPlan plan = PlanOf(31, 9, 4); // 8 samples
    struct Row
    {
        const char* fault;
        PlanGraph graph;
        double epoch;
        int sample;
    };
    constexpr Row rows[] = {
        {"a step holds from its beginning", PlanGraph::Count, 2.0, 2},
        {"and up to the next", PlanGraph::Count, 2.9, 2},
        {"a dilution is an interval behind", PlanGraph::Pdop, 3.0, 2},
        {"the nearest dilution, above", PlanGraph::Tdop, 2.6, 2},
        {"the nearest dilution, below", PlanGraph::Gdop, 3.4, 2},
        {"before the first dilution", PlanGraph::Pdop, 0.0, 0},
        {"before the start", PlanGraph::Count, -5.0, 0},
        {"the end has no count", PlanGraph::Count, 8.0, 7},
        {"the end has a dilution", PlanGraph::Pdop, 8.0, 7},
        {"behind the end", PlanGraph::Pdop, 99.0, 7},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(SampleNear(plan, row.graph, row.epoch), row.sample) << row.fault;
    }
    EXPECT_EQ(SampleNear(ObservationPlan(), PlanGraph::Pdop, 1.0), 0);
}

TEST(PlanSeries, RunsAreAllStepsAndNoMore)
{
    const ObservationPlan plan = PlanOf(31, 0, 24);
    std::set<std::pair<int, int>> steps;
    for (const TrackRun& run : TrackRuns(plan)) {
        EXPECT_FALSE(plan.TrackAt(run.prnIndex, run.first - 1)); // else two runs are one
        EXPECT_FALSE(plan.TrackAt(run.prnIndex, run.last));
        for (int k = run.first; k < run.last; ++k) {
            EXPECT_TRUE(plan.TrackAt(run.prnIndex, k));
            EXPECT_TRUE(steps.insert({run.prnIndex, k}).second) << "twice";
        }
    }
    std::size_t expected = 0;
    for (int index = 0; index < kMaxPrn; ++index) {
        for (int k = 0; k < plan.Division(); ++k) {
            expected += plan.TrackAt(index, k) ? 1 : 0;
        }
    }
    EXPECT_EQ(steps.size(), expected);
}

TEST(SkySnapshot, AgreesWithThePlanAndShowsTheHidden)
{
    ObservationPlan plan = PlanOf(31, 9, 4);
    ObstructionCurtain curtain{};
    std::fill(curtain.begin() + 150, curtain.begin() + 210, std::uint8_t{40});
    plan.Calc().SetCurtain(curtain);
    plan.Calc().SetUse(0, 0);
    plan.Compute();
    int hidden = 0;
    for (int k = 0; k <= plan.Division(); ++k) {
        std::uint32_t visible = 0;
        for (const SkySatellite& satellite : SkyAt(plan, k * plan.Computed().Interval())) {
            EXPECT_NE(satellite.satellite.number, 1) << "it is switched off";
            EXPECT_GE(satellite.direction.elevationRad, 0.0);
            hidden += satellite.isVisible ? 0 : 1;
            if (!satellite.isVisible) {
                continue;
            }
            visible |= 1U << (satellite.satellite.number - 1);
            const auto expected = plan.DirectionAt(satellite.satellite.number - 1, k);
            ASSERT_TRUE(expected);
            // 1e-9 rad: two ways to the same angle differ by rounding alone.
            EXPECT_NEAR(satellite.direction.azimuthRad, expected->azimuthRad, 1e-9);
            EXPECT_NEAR(satellite.direction.elevationRad, expected->elevationRad, 1e-9);
        }
        EXPECT_EQ(visible, plan.View().visible[static_cast<std::size_t>(k)]) << k;
    }
    EXPECT_GT(hidden, 0);
}

} // namespace
} // namespace fieldcore
