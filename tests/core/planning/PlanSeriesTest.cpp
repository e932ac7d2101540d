// What is made of a plan: samples, runs of tracks, the sky at one instant, its windows, and its
// text for a spreadsheet.

#include "core/planning/PlanSeries.h"

#include "core/planning/NominalConstellation.h"
#include "core/planning/ObservationPlan.h"
#include "core/planning/PlanCsv.h"
#include "core/planning/PlanWindows.h"
#include "tests/core/planning/SampleSky.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <tuple>
#include <utility>
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
    constexpr std::tuple<const char*, PlanGraph, double, int> rows[] = {
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
    for (const auto& [fault, graph, epoch, sample] : rows) {
        EXPECT_EQ(SampleNear(plan, graph, epoch), sample) << fault;
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
            const auto expected = plan.DirectionAt(satellite.satellite.number - 1, k).value();
            // 1e-9 rad: two ways to the same angle differ by rounding alone.
            EXPECT_NEAR(satellite.direction.azimuthRad, expected.azimuthRad, 1e-9);
            EXPECT_NEAR(satellite.direction.elevationRad, expected.elevationRad, 1e-9);
        }
        EXPECT_EQ(visible, plan.View().visible[static_cast<std::size_t>(k)]) << k;
    }
    EXPECT_GT(hidden, 0);
}

/// Epoch by epoch, whether the windows are just the good epochs in runs that are long enough.
void ExpectJustTheGoodEpochs(const ObservationPlan& plan, const WindowLimits& limits)
{
    const auto isGood = [&](int k) {
        const auto at = static_cast<std::size_t>(k);
        return plan.View().count[at] >= limits.minSatellites &&
               plan.View().dop[at].pdop <= limits.maxPdop;
    };
    const std::vector<PlanWindow> windows = FindWindows(plan, limits);
    for (int k = 0; k <= plan.Division(); ++k) {
        int first = k;
        int last = k;
        while (first > 0 && isGood(first - 1)) {
            --first;
        }
        while (last < plan.Division() && isGood(last + 1)) {
            ++last;
        }
        const bool expected =
            isGood(k) && (last - first) * plan.Computed().Interval() >= limits.minLength;
        const auto found = std::count_if(windows.begin(), windows.end(), [&](const PlanWindow& w) {
            return w.first == first && w.last == last;
        });
        ASSERT_EQ(found, expected ? 1 : 0) << "epoch " << k;
    }
    for (const PlanWindow& window : windows) {
        EXPECT_GE(window.fewestSatellites, limits.minSatellites);
        EXPECT_LE(window.highestPdop, limits.maxPdop);
    }
}

TEST(PlanWindows, AreTheRunsOfGoodEpochs)
{
    const ObservationPlan plan = PlanOf(31, 0, 24);
    constexpr WindowLimits kAsked[] = {
        {5, 4.0, 30min}, {7, 2.5, 60min}, {7, 2.5, 0min}, {4, 100.0, 0min}, {32, 1.0, 0min}};
    std::size_t most = 0;
    for (const WindowLimits& limits : kAsked) {
        ExpectJustTheGoodEpochs(plan, limits);
        most = std::max(most, FindWindows(plan, limits).size());
    }
    EXPECT_GT(most, 2U) << "a day that could not tell two windows from one";
    EXPECT_TRUE(FindWindows(ObservationPlan(), WindowLimits{}).empty()) << "nothing is computed";
}

std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::size_t at = 0;
    for (std::size_t end = text.find("\r\n"); end != std::string::npos;
         end = text.find("\r\n", at)) {
        lines.push_back(text.substr(at, end - at));
        at = end + 2;
    }
    EXPECT_EQ(at, text.size()) << "the last line has no end";
    return lines;
}

TEST(PlanCsv, HasTheSamplesAtTheirTimes)
{
    const ObservationPlan plan = PlanOf(31, 9, 2);
    const std::vector<std::string> counts = LinesOf(PlanCsvRows(plan, PlanGraph::Count, L"現場"));
    ASSERT_EQ(counts.size(), 12U);
    const std::string count = std::to_string(static_cast<int>(plan.CountAt(0)));
    EXPECT_EQ(counts[0], "現場,2026-11-21T09:00+09:00," + count + ",公称軌道暦（見本） 2026-11-19");
    EXPECT_TRUE(counts[11].starts_with("現場,2026-11-21T10:50+09:00,"));

    // The dilutions run one step behind.
    const std::vector<std::string> pdop = LinesOf(PlanCsvRows(plan, PlanGraph::Pdop, L"a"));
    ASSERT_EQ(pdop.size(), 12U);
    EXPECT_TRUE(pdop[0].starts_with("a,2026-11-21T09:10+09:00,"));
    EXPECT_TRUE(pdop[11].starts_with("a,2026-11-21T11:00+09:00,"));

    // Over midnight in Japan and in the zone of the controller.
    const ObservationPlan night = PlanOf(31, 23, 1);
    EXPECT_TRUE(LinesOf(PlanCsvRows(night, PlanGraph::Gdop, L"a"))[11].starts_with(
        "a,2026-11-22T00:00+09:00,"));

    std::size_t visible = 0;
    for (std::size_t k = 0; k <= 12; ++k) {
        visible += plan.View().count[k];
    }
    EXPECT_EQ(LinesOf(PlanCsvRows(plan, PlanGraph::SkyPlot, L"a")).size(), visible);
}

TEST(PlanCsv, KeepsItsColumnsWhateverTheSiteIsCalled)
{
    const ObservationPlan plan = PlanOf(3, 9, 1);
    constexpr std::pair<const wchar_t*, const char*> kRows[] = {
        {L"plain", "plain"},
        {L"a,b", "\"a,b\""},
        {L"the \"rock\"", "\"the \"\"rock\"\"\""},
        {L"two\nlines", "\"two\nlines\""}};
    for (const auto& [site, field] : kRows) {
        EXPECT_TRUE(PlanCsvRows(plan, PlanGraph::Tdop, site).starts_with(std::string(field) + ","))
            << field;
    }
    // Each header has as many columns as its rows.
    for (int kind = 0; kind <= 6; ++kind) {
        const auto graph = static_cast<PlanGraph>(kind);
        const std::string rowsText = PlanCsvRows(PlanOf(31, 9, 1), graph, L"a");
        const std::string header = PlanCsvHeader(graph);
        const std::string first = rowsText.substr(0, rowsText.find('\r'));
        EXPECT_EQ(std::count(first.begin(), first.end(), ','),
                  std::count(header.begin(), header.end(), ','))
            << kind;
    }
}

} // namespace
} // namespace fieldcore
