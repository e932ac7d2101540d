// What is made of a plan: its windows, and its text for a spreadsheet.

#include "core/planning/PlanCsv.h"
#include "core/planning/PlanWindows.h"
#include "core/platform/Utf8.h"
#include "tests/core/planning/SampleSky.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

ObservationPlan PlanOf(int satellites, int startHour, int hours)
{
    ObservationPlan plan;
    plan.Calc().LoadAlmanac(testing::SampleFile(satellites));
    plan.SetElMaskDeg(15);
    plan.Period() = {2022y / std::chrono::March / 10, startHour, hours};
    plan.Compute();
    return plan;
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
    const ObservationPlan plan = PlanOf(30, 0, 24);
    const std::array<WindowLimits, 5> asked{
        WindowLimits{5, 4.0, 30min}, WindowLimits{7, 2.5, 60min}, WindowLimits{7, 2.5, 0min},
        WindowLimits{4, 100.0, 0min}, WindowLimits{32, 1.0, 0min}};
    std::size_t most = 0;
    for (const WindowLimits& limits : asked) {
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
    const ObservationPlan plan = PlanOf(30, 9, 2);
    const std::vector<std::string> counts = LinesOf(PlanCsvRows(plan, PlanGraph::Count, L"現場"));
    ASSERT_EQ(counts.size(), 12U);
    const std::string count = std::to_string(static_cast<int>(plan.CountAt(0)));
    EXPECT_EQ(counts[0], "現場,2022-03-10T09:00+09:00," + count + ",出所不明 2022-03-10");
    EXPECT_TRUE(counts[11].starts_with("現場,2022-03-10T10:50+09:00,"));

    // The dilutions run one step behind.
    const std::vector<std::string> pdop = LinesOf(PlanCsvRows(plan, PlanGraph::Pdop, L"a"));
    ASSERT_EQ(pdop.size(), 12U);
    EXPECT_TRUE(pdop[0].starts_with("a,2022-03-10T09:10+09:00,"));
    EXPECT_TRUE(pdop[11].starts_with("a,2022-03-10T11:00+09:00,"));

    // Over midnight in Japan and in the zone of the controller.
    const ObservationPlan night = PlanOf(30, 23, 1);
    EXPECT_TRUE(LinesOf(PlanCsvRows(night, PlanGraph::Gdop, L"a"))[11].starts_with(
        "a,2022-03-11T00:00+09:00,"));

    std::size_t visible = 0;
    for (std::size_t k = 0; k <= 12; ++k) {
        visible += plan.View().count[k];
    }
    EXPECT_EQ(LinesOf(PlanCsvRows(plan, PlanGraph::SkyPlot, L"a")).size(), visible);
}

TEST(PlanCsv, KeepsItsColumnsWhateverTheSiteIsCalled)
{
    const ObservationPlan plan = PlanOf(3, 9, 1);
    struct Row
    {
        const wchar_t* site;
        const char* field;
    };
    constexpr Row rows[] = {{L"plain", "plain"},
                            {L"a,b", "\"a,b\""},
                            {L"the \"rock\"", "\"the \"\"rock\"\"\""},
                            {L"two\nlines", "\"two\nlines\""}};
    for (const Row& row : rows) {
        EXPECT_TRUE(
            PlanCsvRows(plan, PlanGraph::Tdop, row.site).starts_with(std::string(row.field) + ","))
            << row.field;
    }
    // Each header has as many columns as its rows.
    for (int kind = 0; kind <= 6; ++kind) {
        const auto graph = static_cast<PlanGraph>(kind);
        const std::string rowsText = PlanCsvRows(PlanOf(30, 9, 1), graph, L"a");
        const std::string header = PlanCsvHeader(graph);
        const std::string first = rowsText.substr(0, rowsText.find('\r'));
        EXPECT_EQ(std::count(first.begin(), first.end(), ','),
                  std::count(header.begin(), header.end(), ','))
            << kind;
    }
}

} // namespace
} // namespace fieldcore
