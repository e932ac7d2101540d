// What the plan costs, against the plainest way to the same figures. The figures that count are
// the counters: ratios of two things measured in turn, medians of all turns.

#include "bench/Allocations.h"
#include "bench/Measuring.h"
#include "bench/literal/LiteralPlan.h"
#include "core/orbits/SystemTime.h"
#include "core/planning/NominalConstellation.h"
#include "core/planning/ObservationPlan.h"
#include "core/planning/PlanSearch.h"
#include "tests/core/planning/SampleSky.h"

#include <algorithm>
#include <chrono>
#include <vector>

#include <benchmark/benchmark.h>

namespace fieldcore::bench {
namespace {

/// A day over a site with a mask and a house to the south, all 32 satellites.
void SetUp(ObservationPlan& plan)
{
    std::vector<AlmanacRecord> records = testing::SampleSatellites(30);
    for (int prn = 31; prn <= 32; ++prn) {
        records.push_back(testing::SampleSatellite(prn - 5));
        records.back().prn = static_cast<std::uint8_t>(prn);
        records.back().m0 += 0.2;
    }
    plan.Calc().LoadAlmanac(testing::FileOf(records));
    ObstructionCurtain curtain{};
    std::fill(curtain.begin() + 150, curtain.begin() + 210, std::uint8_t{35});
    plan.Calc().SetCurtain(curtain);
    plan.SetElMaskDeg(15);
    using namespace std::chrono;
    plan.Period() = {year(2022) / March / 10, 0, 24};
}

/// Measured is the processor time of this thread.
constexpr clockid_t kProcessor = CLOCK_THREAD_CPUTIME_ID;

/// Vectors of at most as many doubles as the benchmark's argument says, for its time.
class LanesOf
{
public:
    explicit LanesOf(benchmark::State& state)
    {
        LimitLanes(static_cast<std::size_t>(state.range(0)));
        state.SetLabel(LanesInUse());
    }
    ~LanesOf() { LimitLanes(0); }
    LanesOf(const LanesOf&) = delete;
    LanesOf& operator=(const LanesOf&) = delete;
};

/// P1, P9: a day of one site. Literal: counts and position dilutions only.
void DayOfOneSite(benchmark::State& state)
{
    const LanesOf lanes(state);
    ObservationPlan plan;
    SetUp(plan);
    plan.Compute();
    const LiteralPlan literal(plan.Calc(), plan.Period());
    Comparison days(kProcessor);
    long allocations = 0;
    const auto computeLiteral = [&] {
        benchmark::DoNotOptimize(literal.Count());
        benchmark::DoNotOptimize(literal.Dops());
    };
    for (auto _ : state) {
        days.Turn(computeLiteral, [&] {
            const long before = AllocationCount();
            plan.Compute();
            allocations += AllocationCount() - before;
        });
    }
    state.counters["P1_ratio"] = 1.0 / days.Ratio();
    state.counters["literal_us"] = days.BareS() * 1e6;
    state.counters["ours_us"] = days.OursS() * 1e6;
    state.counters["P9_allocations"] = static_cast<double>(allocations);
}
BENCHMARK(DayOfOneSite)->Arg(1)->Arg(2)->Arg(4)->Arg(8)->MinTime(1.0)->UseRealTime();

/// P3: one position with its angles.
void OneSatellite(benchmark::State& state)
{
    constexpr int kTimes = 1000;
    CAlmanacSatellite satellite(7);
    satellite.SetRecord(EncodeAlmanac(testing::SampleSatellite(7)));
    const KeplerElements elements(testing::SampleSatellite(7));
    Comparison positions(kProcessor);
    const auto literal = [&] {
        for (int i = 0; i < kTimes; ++i) {
            const auto position = LiteralPosition(elements, {testing::kSampleWeek, i * 60.0});
            benchmark::DoNotOptimize(ReferenceDirection(Observer{}, *position));
        }
    };
    for (auto _ : state) {
        positions.Turn(literal, [&] {
            for (int i = 0; i < kTimes; ++i) {
                satellite.SetTime({testing::kSampleWeek, i * 60.0});
                benchmark::DoNotOptimize(satellite.Compute());
            }
        });
    }
    state.counters["P3_ratio"] = 1.0 / positions.Ratio();
    state.counters["literal_ns"] = positions.BareS() * 1e9 / kTimes;
    state.counters["ours_ns"] = positions.OursS() * 1e9 / kTimes;
}
BENCHMARK(OneSatellite)->MinTime(1.0)->UseRealTime();

std::vector<Observer> Sites(int count = 1000)
{
    std::vector<Observer> sites;
    for (int i = 0; i < count; ++i) {
        sites.push_back({0.5 + 0.0003 * i, 2.2 + 0.0004 * i, 10.0});
    }
    return sites;
}

/// P4: counts and position dilutions of a day for many sites.
void ManySites(benchmark::State& state)
{
    const LanesOf lanes(state);
    ObservationPlan plan;
    SetUp(plan);
    const std::vector<Observer> sites = Sites();
    std::vector<SiteView> views(sites.size());
    Comparison days(kProcessor);
    LiteralPlan literal(plan.Calc(), plan.Period());
    const auto computeLiteral = [&] {
        for (const Observer& site : sites) {
            literal.SetObserver(site);
            benchmark::DoNotOptimize(literal.Count());
            benchmark::DoNotOptimize(literal.Dops());
        }
    };
    for (auto _ : state) {
        days.Turn(computeLiteral, [&] { plan.ComputeSites(sites, views, 1); });
    }
    state.counters["P4_ratio"] = 1.0 / days.Ratio();
    state.counters["literal_ms"] = days.BareS() * 1e3;
    state.counters["ours_ms"] = days.OursS() * 1e3;
}
BENCHMARK(ManySites)->Arg(1)->Arg(2)->Arg(4)->Arg(8)->Iterations(7)->UseRealTime();

/// P5: the same on two threads. By the clock, and by the fastest turns: those in which both cores
/// were free.
void TwoThreads(benchmark::State& state)
{
    ObservationPlan plan;
    SetUp(plan);
    const std::vector<Observer> sites = Sites();
    std::vector<SiteView> views(sites.size());
    Comparison threads; // one, and two of them
    for (auto _ : state) {
        threads.Turn([&] { plan.ComputeSites(sites, views, 1); },
                     [&] { plan.ComputeSites(sites, views, 2); });
    }
    state.counters["P5_ratio"] = threads.Ratio(0.0);
    state.counters["one_ms"] = threads.BareS(0.0) * 1e3;
    state.counters["two_ms"] = threads.OursS(0.0) * 1e3;
}
BENCHMARK(TwoThreads)->Iterations(100)->UseRealTime();

/// P6, P9: 14 days of 20 sites with all systems, every ten minutes.
void SearchOfTwoWeeks(benchmark::State& state)
{
    const LanesOf lanes(state);
    using namespace std::chrono;
    const SearchHours hours{year(2026) / November / 22};
    Constellations known;
    known.Add(NominalMessages(GpsSecondsOfUtc(sys_days(hours.first))));
    const std::vector<SatelliteId> satellites = known.Satellites(SystemSet().set());
    ObstructionCurtain curtain{};
    std::fill(curtain.begin() + 150, curtain.begin() + 210, std::uint8_t{35});
    std::vector<SearchSite> sites;
    for (const Observer& site : Sites(20)) {
        sites.push_back({L"", site, SkyLimits(0.26, curtain)});
    }
    std::vector<double> allS;
    long allocations = 0;
    for (auto _ : state) {
        PlanSearch search(sites, hours, known, satellites);
        const auto run = [&search] {
            while (search.Step()) {
            }
        };
        const long before = AllocationCount();
        const double oneS = Timed(run, kProcessor);
        allocations += AllocationCount() - before;
        allS.push_back(oneS);
    }
    state.counters["satellites"] = static_cast<double>(satellites.size());
    state.counters["P6_ms"] = Quantile(allS) * 1e3;
    state.counters["P9_allocations"] = static_cast<double>(allocations);
}
BENCHMARK(SearchOfTwoWeeks)->Arg(1)->Arg(2)->Arg(4)->Arg(8)->Iterations(7)->UseRealTime();

/// P7: what a host pays to draw all seven graphs, and one.
void AllGraphs(benchmark::State& state)
{
    ObservationPlan plan;
    SetUp(plan);
    const auto read = [&](PlanGraph graph) {
        double sum = 0.0;
        for (int k = 0; k < plan.Division(); ++k) {
            if (graph == PlanGraph::Count) {
                sum += plan.CountAt(k);
            } else if (graph >= PlanGraph::Pdop) {
                sum += plan.DopAt(graph, k);
            } else {
                for (int prn = 0; prn < kMaxPrn; ++prn) {
                    sum += plan.TrackAt(prn, k) ? 1.0 : 0.0;
                }
            }
        }
        return sum;
    };
    Comparison graphs(kProcessor); // one, and all of them
    const auto one = [&] {
        plan.Compute();
        benchmark::DoNotOptimize(read(PlanGraph::Count));
    };
    for (auto _ : state) {
        graphs.Turn(one, [&] {
            plan.Compute();
            for (int graph = 0; graph <= 6; ++graph) {
                benchmark::DoNotOptimize(read(static_cast<PlanGraph>(graph)));
            }
        });
    }
    state.counters["P7_ratio"] = graphs.Ratio();
}
BENCHMARK(AllGraphs)->MinTime(1.0)->UseRealTime();

} // namespace
} // namespace fieldcore::bench
