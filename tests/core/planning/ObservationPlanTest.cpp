#include "core/planning/ObservationPlan.h"

#include "bench/literal/LiteralPlan.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/support/ProofSize.h"

#include <chrono>
#include <cmath>
#include <limits>
#include <random>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using bench::LiteralPlan;
using testing::SampleFile;

const PlanPeriod kDay{2022y / std::chrono::March / 10, 0, 24};

void LoadSky(ObservationPlan& plan)
{
    plan.Calc().LoadAlmanac(SampleFile());
    plan.Calc().SetUse(11, 0);
    ObstructionCurtain curtain{};
    for (std::size_t i = 0; i < curtain.size(); ++i) {
        curtain[i] = static_cast<std::uint8_t>(i / 60 % 2 * 25 + i % 3);
    }
    plan.Calc().SetCurtain(curtain);
    plan.SetElMaskDeg(15);
}

/// Every series against the literal plan.
void ExpectLiteral(const ObservationPlan& plan)
{
    const LiteralPlan literal(plan.Calc(), plan.Period());
    const auto counts = literal.Count();
    const auto dops = literal.Dops();
    const auto skies = literal.Tracks();
    ASSERT_EQ(plan.Division(), static_cast<int>(counts.size()));
    for (int k = 0; k < plan.Division(); ++k) {
        const auto at = static_cast<std::size_t>(k);
        ASSERT_EQ(plan.CountAt(k), counts[at]) << k;
        const DopValues& dop = dops[at];
        for (const auto& [graph, expected] : {std::pair(PlanGraph::Pdop, dop.pdop),
                                              {PlanGraph::Gdop, dop.gdop},
                                              {PlanGraph::Tdop, dop.tdop}}) {
            // Both may be infinite or no number for a geometry without a solution.
            const double ours = plan.DopAt(graph, k);
            ASSERT_TRUE(ours == expected || std::abs(ours / expected - 1.0) < 1e-9 ||
                        (std::isnan(ours) && std::isnan(expected)))
                << k << ": " << ours << " and " << expected;
        }
        for (int prn = 0; prn < kMaxPrn; ++prn) {
            const auto& from = skies[at][static_cast<std::size_t>(prn)];
            const auto& to = skies[at + 1][static_cast<std::size_t>(prn)];
            const auto step = plan.TrackAt(prn, k);
            ASSERT_EQ(step.has_value(), from && to) << k << ", PRN " << prn + 1;
            if (step) {
                ASSERT_NEAR(step->from.azimuthRad, from->azimuthRad, 1e-9);
                ASSERT_NEAR(step->from.elevationRad, from->elevationRad, 1e-9);
                ASSERT_NEAR(step->to.azimuthRad, to->azimuthRad, 1e-9);
                ASSERT_NEAR(step->to.elevationRad, to->elevationRad, 1e-9);
            }
        }
    }
}

TEST(PlanPeriod, IsDividedByItsLength)
{
    constexpr std::tuple<int, int, std::chrono::minutes> rows[] = {
        {1, 12, 5min},  {2, 12, 10min},  {3, 12, 15min},  {4, 8, 30min},
        {5, 10, 30min}, {24, 48, 30min}, {25, 48, 30min}, {0, 12, 5min}};
    for (const auto& [hours, division, interval] : rows) {
        const PlanPeriod period{kDay.date, 0, hours};
        EXPECT_EQ(period.Division(), division) << hours;
        EXPECT_EQ(period.Interval(), interval) << hours;
    }
}

TEST(PlanPeriod, StartsNineHoursBeforeTheHourThatWasTyped)
{
    const auto start = [](int hour) {
        const auto parts = PlanPeriod{kDay.date, hour, 1}.Start().GetUtcTime().GetLocalParts();
        return std::pair(parts.day, parts.hour);
    };
    EXPECT_EQ(start(0), std::pair(9, 15));
    EXPECT_EQ(start(9), std::pair(10, 0));
    EXPECT_EQ(start(23), std::pair(10, 14));
    const PlanPeriod tooEarly{1980y / std::chrono::January / 6, 8, 1};
    EXPECT_EQ(tooEarly.Start().GetUtcTime(), CGPSTime::m_OriginalTime);
}

TEST(ObservationPlan, HasTheSeriesOfTheLiteralPlan)
{
    const std::tuple<std::string_view, PlanPeriod, int> rows[] = {
        {"over the end of a week", {2022y / std::chrono::March / 13, 0, 24}, 10},
        {"over a change to daylight saving", {2022y / std::chrono::March / 13, 9, 12}, 10},
        {"few satellites", kDay, 50},
        {"none", kDay, 90},
        {"years from the almanac", {2031y / std::chrono::June / 1, 0, 24}, 10},
        {"before the almanac's cycle of weeks", {1998y / std::chrono::June / 1, 0, 24}, 10},
    };
    ObservationPlan plan;
    LoadSky(plan);
    for (const auto& [what, period, maskDeg] : rows) {
        SCOPED_TRACE(what);
        plan.Period() = period;
        plan.SetElMaskDeg(maskDeg);
        plan.Compute();
        ExpectLiteral(plan);
    }
    // A week that no receiver sends: the mean anomaly loses digits, and both must lose the same.
    std::vector<AlmanacRecord> records = testing::SampleSatellites(30);
    for (AlmanacRecord& record : records) {
        record.week = std::numeric_limits<std::int16_t>::min();
    }
    ASSERT_TRUE(plan.Calc().LoadAlmanac(testing::FileOf(records)));
    plan.Period() = kDay;
    plan.Compute();
    ExpectLiteral(plan);
    const int end = plan.Division();
    EXPECT_EQ(plan.CountAt(end), 0.0) << "beyond the samples";
    EXPECT_FALSE(plan.TrackAt(0, end));
    EXPECT_EQ(plan.DopAt(PlanGraph::Azimuth, 0), 0.0) << "no dilution";
}

/// Any almanac, site, mask and curtain: of the satellites most are on orbits that are nearly
/// circles, as real ones are, and some on others, or on none.
void LoadAnySky(ObservationPlan& plan, std::mt19937& random)
{
    const auto below = [&](std::uint32_t end) {
        return static_cast<std::uint32_t>(random() % end);
    };
    const auto between = [&](double low, double high) {
        return std::uniform_real_distribution(low, high)(random);
    };
    std::vector<AlmanacRecord> records(kMaxPrn);
    int prn = 0;
    for (AlmanacRecord& record : records) {
        record.prn = static_cast<std::uint8_t>(++prn);
        record.week = testing::kSampleWeek;
        record.toaS = 4096 * below(147);
        record.sqrtA = between(5100.0, 5500.0);
        const std::uint32_t kind = below(16);
        record.eccentricity = kind == 0 ? between(0.05, 1.01) : between(0.0, 0.05);
        record.inclination = between(-0.5, 0.5);
        record.omegaDot = kind == 1 ? 0.0 : between(-1e-8, 1e-8);
        record.omega0 = between(-1.0, 1.0);
        record.omega = between(-1.0, 1.0);
        record.m0 = kind == 2 ? std::numeric_limits<double>::quiet_NaN() : between(-1.0, 1.0);
        record.health = kind == 3 ? 1 : 0;
    }
    ASSERT_TRUE(plan.Calc().LoadAlmanac(testing::FileOf(records)));
    ObstructionCurtain curtain{};
    const std::uint32_t heights = below(3) * 30 + 1; // one: none
    for (std::size_t i = 0; i < curtain.size(); ++i) {
        curtain[i] = i % 20 != 0 ? curtain[i - 1] : static_cast<std::uint8_t>(below(heights));
    }
    plan.Calc().SetCurtain(curtain);
    plan.SetElMaskDeg(static_cast<int>(below(25)));
    plan.Calc().SetObserver({between(-1.57, 1.57), between(-3.14, 3.14), between(0.0, 4000.0)});
    const std::chrono::sys_days day =
        std::chrono::sys_days(kDay.date) + std::chrono::days(static_cast<int>(below(1000)) - 500);
    plan.Period() = {day, static_cast<int>(below(24)), static_cast<int>(below(24)) + 1};
}

TEST(ObservationPlan, DecidesLikeTheLiteralPlanInEveryVector)
{
    std::mt19937 random(testing::Seed());
    const int plans = testing::ProofSize("FIELDCORE_PLANS", 20);
    ObservationPlan plan;
    long long cases = 0;
    for (int i = 0; i < plans; ++i) {
        SCOPED_TRACE(i);
        LoadAnySky(plan, random);
        LimitLanes(std::size_t{1} << i % 4);
        plan.Compute();
        ExpectLiteral(plan);
        cases += (plan.Division() + 1) * kMaxPrn;
    }
    LimitLanes(0);
    testing::Measured(cases, "satellites decided");
}

TEST(ObservationPlan, DecidesLikeTheLiteralPlanWhereRoundingDecides)
{
    // Masks on, just above and just below where a satellite stands at one of the epochs.
    ObservationPlan plan;
    LoadSky(plan);
    plan.Period() = {kDay.date, 9, 4};
    const GpsEpoch epoch = ToEpoch(plan.Period().Start());
    int decided = 0;
    for (int prn = 0; prn < kMaxPrn; ++prn) {
        plan.Calc().SetElMask(0.0);
        const auto direction = LiteralPlan(plan.Calc(), plan.Period()).Test(prn, epoch);
        if (!direction) {
            continue;
        }
        for (int ulps = -3; ulps <= 3; ++ulps) {
            double mask = direction->elevationRad;
            for (int i = 0; i < std::abs(ulps); ++i) {
                mask = std::nextafter(mask, ulps < 0 ? 0.0 : 2.0);
            }
            plan.Calc().SetElMask(mask);
            plan.Compute();
            const bool visible = (plan.View().visible[0] >> prn & 1U) != 0;
            EXPECT_EQ(visible, ulps <= 0) << prn << ' ' << ulps;
            ExpectLiteral(plan);
            ++decided;
        }
    }
    EXPECT_GE(decided, 30);
}

TEST(ObservationPlan, ServesManySitesAsItServesOne)
{
    ObservationPlan plan;
    LoadSky(plan);
    plan.Period() = kDay;
    std::vector<Observer> sites;
    sites.reserve(25);
    for (int i = 0; i < 25; ++i) {
        sites.push_back({-1.2 + 0.1 * i, 0.25 * i, 0.0});
    }
    for (const unsigned threads : {0U, 1U, 2U, 3U, 100U}) {
        SCOPED_TRACE(threads);
        std::vector<SiteView> views(sites.size());
        plan.ComputeSites(sites, views, threads);
        for (std::size_t i = 0; i < sites.size(); ++i) {
            plan.Calc().SetObserver(sites[i]);
            plan.Compute();
            EXPECT_EQ(views[i].visible, plan.View().visible) << i;
            EXPECT_EQ(views[i].count, plan.View().count) << i;
            EXPECT_EQ(views[i].dop[48].pdop, plan.DopAt(PlanGraph::Pdop, 47)) << i;
        }
    }
    std::vector<SiteView> few(2);
    plan.ComputeSites(sites, few, 4); // must not write beyond
    plan.ComputeSites({}, {}, 4);
}

} // namespace
} // namespace fieldcore
