#include "core/planning/PlanSearch.h"

#include "core/planning/NominalConstellation.h"
#include "core/planning/ObservationPlan.h"
#include "core/planning/SiteSkies.h"
#include "tests/core/planning/SampleSky.h"

#include <bit>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::year_month_day kFirst = 2022y / std::chrono::March / 10;
constexpr double kMaskRad = 0.2;

/// A house to the south of B.
ObstructionCurtain CurtainOf(const std::wstring& site)
{
    ObstructionCurtain curtain{};
    std::fill(curtain.begin() + 90, curtain.begin() + 270, std::uint8_t(site == L"B" ? 50 : 0));
    return curtain;
}

std::vector<SearchSite> SomeSites()
{
    return {{L"A", {0.62, 2.43, 40.0}, SkyLimits(kMaskRad, CurtainOf(L"A"))},
            {L"B", {0.60, 2.40, 70.0}, SkyLimits(kMaskRad, CurtainOf(L"B"))},
            {L"C", {0.75, 2.47, 10.0}, SkyLimits(kMaskRad, CurtainOf(L"C"))}};
}

void Finish(PlanSearch& search)
{
    while (search.Step()) {
    }
    EXPECT_EQ(search.StepsDone(), search.Steps());
}

TEST(PlanSearch, SeesWhatThePlanOfEachDaySees)
{
    ObservationPlan plan;
    plan.Calc().LoadAlmanac(testing::SampleFile());
    plan.Calc().SetUse(3, 0);
    const std::vector<SearchSite> sites = SomeSites();
    Constellations known;
    known.Add(NominalMessages(1.33e9)); // that day
    plan.SetConstellations(std::move(known));
    for (const auto& [hours, isGpsAlone] : {std::pair(24, true), {8, true}, {8, false}}) {
        SCOPED_TRACE(::testing::Message() << hours << ' ' << isGpsAlone);
        const int startHour = hours == 24 ? 0 : 20; // past midnight
        plan.SetSystems(isGpsAlone ? SystemSetOf(GnssSystem::Gps) : SystemSet().set());
        PlanSearch search = SearchOf(plan, sites, {kFirst, 3, startHour, hours, 30min});
        Finish(search);
        for (int day = 0; day < 3; ++day) {
            plan.Period() = {std::chrono::sys_days(kFirst) + std::chrono::days(day), startHour,
                             hours};
            std::vector<SiteView> views;
            for (const SearchSite& site : sites) {
                plan.Calc().SetObserver(site.observer);
                plan.Calc().SetElMask(kMaskRad);
                plan.Calc().SetCurtain(CurtainOf(site.name));
                plan.Compute();
                views.push_back(plan.View());
            }
            for (int k = 0; k <= plan.Division(); ++k) {
                const int epoch = day * (plan.Division() + (hours == 24 ? 0 : 1)) + k;
                const auto from = static_cast<std::size_t>(k);
                const auto at = static_cast<std::size_t>(epoch);
                ASSERT_EQ(search.UtcAt(epoch), plan.Period().UtcAfter(k));
                std::uint64_t common = ~std::uint64_t{0};
                double highest = 0.0;
                for (std::size_t i = 0; i < sites.size(); ++i) {
                    ASSERT_EQ(search.Counts(i)[at], views[i].count[from]) << i << ' ' << epoch;
                    ASSERT_NEAR(search.Pdops(i)[at], views[i].dop[from].pdop, 1e-9);
                    common &= views[i].visible[from];
                    highest = std::max(highest, views[i].dop[from].pdop);
                }
                if (isGpsAlone) { // the satellites of one word
                    ASSERT_EQ(search.Counts(search.Together())[at], std::popcount(common));
                }
                ASSERT_NEAR(search.Pdops(search.Together())[at], highest, 1e-9);
            }
        }
    }
}

TEST(PlanSearch, ChoosesTheBestTimeOfEachDay)
{
    ObservationPlan plan;
    plan.Calc().LoadAlmanac(testing::SampleFile());
    const WindowLimits limits{6, 3.0, 60min};
    for (const int hours : {24, 9}) {
        PlanSearch search(SomeSites(), {kFirst, 5, 8, hours, 10min}, plan.Calc());
        Finish(search);
        for (std::size_t site = 0; site <= search.Together(); ++site) {
            SCOPED_TRACE(site);
            const auto windows = search.BestOfDays(site, limits);
            // The plainest way to the best of a day: every start.
            std::vector<double> best(5, 1e9);
            for (int first = 0; first + 6 < search.EpochCount(); ++first) {
                double highest = 0.0;
                bool isGood = search.UtcAt(first + 6) - search.UtcAt(first) == 60min;
                for (int k = first; k <= first + 6; ++k) {
                    const auto at = static_cast<std::size_t>(k);
                    isGood =
                        isGood && search.Counts(site)[at] >= 6 && search.Pdops(site)[at] <= 3.0;
                    highest = std::max(highest, search.Pdops(site)[at]);
                }
                double& ofDay = best[static_cast<std::size_t>(search.DayOf(first))];
                ofDay = isGood ? std::min(ofDay, highest) : ofDay;
            }
            std::size_t found = 0;
            double before = 0.0;
            for (const SearchWindow& window : windows) {
                const auto day = static_cast<std::size_t>(search.DayOf(window.window.first));
                EXPECT_EQ(window.window.highestPdop, best[day]);
                EXPECT_GE(window.window.highestPdop, before) << "the best day first";
                EXPECT_LE(window.goodFirst, window.window.first);
                EXPECT_GE(window.goodLast, window.window.last);
                EXPECT_GE(window.window.fewestSatellites, 6);
                before = window.window.highestPdop;
                best[day] = 1e9; // once
            }
            for (const double rest : best) {
                found += rest == 1e9 ? 1 : 0;
            }
            EXPECT_EQ(found, best.size()) << "a day was left out";
            EXPECT_TRUE(site == 1 || !windows.empty());
        }
        EXPECT_TRUE(search.BestOfDays(0, {12, 1.0, 60min}).empty());
    }
}

TEST(PlanSearch, HasNothingWithoutSitesOrSatellites)
{
    const ObservationPlan plan;
    PlanSearch noSatellites(SomeSites(), {kFirst, 2}, plan.Calc());
    Finish(noSatellites);
    EXPECT_TRUE(noSatellites.BestOfDays(0, {}).empty());
    EXPECT_EQ(noSatellites.Pdops(0)[0], kNoDop.pdop);
    PlanSearch noSites({}, {kFirst, 2}, plan.Calc());
    Finish(noSites);
    EXPECT_EQ(noSites.Counts(noSites.Together())[0], 0);
    EXPECT_FALSE(noSites.Step());
}

TEST(SiteSkies, SaysWhichLimitWouldHaveToGiveAndWhichHoursShowATime)
{
    ObservationPlan plan;
    plan.Calc().LoadAlmanac(testing::SampleFile());
    PlanSearch search = SearchOf(plan, SomeSites(), {kFirst, 3, 20, 8, 30min});
    Finish(search);
    const WindowLimits loose{4, WindowLimits::kHighestPdop, 60min};
    const std::vector<SearchWindow> found = search.BestOfDays(0, loose);
    ASSERT_FALSE(found.empty());
    const PlanWindow& best = found.front().window;
    WindowLimits limits = loose;
    limits.maxPdop = best.highestPdop - 0.2;
    ASSERT_TRUE(search.BestOfDays(0, limits).empty());
    const auto eased = EasedLimits(search, 0, limits).value();
    EXPECT_EQ(eased.minSatellites, limits.minSatellites);
    EXPECT_NEAR(eased.maxPdop, best.highestPdop, 0.1) << "tenths";
    EXPECT_FALSE(search.BestOfDays(0, eased).empty());
    limits = {12, 1.0, 720min};
    EXPECT_FALSE(EasedLimits(search, 0, limits)) << "longer than the hours of a day";

    for (const SearchWindow& window : found) {
        const PlanHours hours = HoursAround(search, window.window);
        PlanPeriod period{hours.date, hours.startHour, hours.hours};
        EXPECT_LE(period.UtcAfter(0), search.UtcAt(window.window.first));
        EXPECT_GT(period.UtcAfter(0) + 1h, search.UtcAt(window.window.first));
        EXPECT_LE(hours.startHour + hours.hours, 24) << "a plan ends at midnight";
    }
}

} // namespace
} // namespace fieldcore
