// What a redraw of the plan's graphs costs, from the almanac or the messages to the pixels: a day,
// all satellites, a mask and a curtain. It has to keep up with a finger that drags a slider or the
// mask: 16 ms.

#include "bench/Measuring.h"
#include "core/orbits/SystemTime.h"
#include "tests/ui/planning/SamplePlan.h"
#include "ui/planning/PlanGraphView.h"

#include <QPixmap>

#include <chrono>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace fieldcore::bench {
namespace {

/// From messages of 130 satellites that are a week old.
void TakeAllSystems(ObservationPlan& plan)
{
    using namespace std::chrono;
    Constellations known;
    known.Add(NominalMessages(GpsSecondsOfUtc(sys_days(year(2026) / November / 14))));
    plan.SetConstellations(std::move(known));
    plan.SetSystems(SystemSet().set());
}

struct Drawn
{
    Drawn(int graph, int width, int height, bool isAll)
    {
        if (isAll) {
            TakeAllSystems(plan);
            plan.Compute();
        }
        view.resize(width, height);
        view.SetDrawing(testing::SampleDrawing(plan, static_cast<PlanGraph>(graph)));
        pixels = QPixmap(view.size());
    }

    /// Measures @p change and what it takes until it is seen.
    template <typename Change>
    void Run(benchmark::State& state, Change change)
    {
        std::vector<double> turnsS;
        for (auto _ : state) {
            turnsS.push_back(Timed(
                [&] {
                    change();
                    view.render(&pixels);
                },
                CLOCK_THREAD_CPUTIME_ID));
        }
        state.counters["median_ms"] = Quantile(turnsS) * 1e3;
        state.counters["p95_ms"] = Quantile(turnsS, 0.95) * 1e3;
    }

    ObservationPlan plan = testing::SamplePlan(kNominalSatellites, 0, 24);
    PlanGraphView view;
    QPixmap pixels;
};

/// Computes the plan with another mask at each turn, as dragging it does, and draws the graph.
void Redraw(benchmark::State& state)
{
    Drawn drawn(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
                static_cast<int>(state.range(2)), state.range(3) != 0);
    int maskDeg = 10;
    drawn.Run(state, [&] {
        maskDeg = maskDeg == 20 ? 10 : maskDeg + 1;
        drawn.plan.SetElMaskDeg(maskDeg);
        drawn.plan.ComputeView();
        drawn.view.Refresh(maskDeg);
    });
}
BENCHMARK(Redraw)
    ->ArgNames({"graph", "width", "height", "all"})
    ->ArgsProduct({{0, 1, 2, 3, 4, 5, 6}, {480}, {400}, {0}})
    ->ArgsProduct({{0, 1, 2, 3, 4, 5, 6}, {1280}, {800}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

/// Pushes the slider of the satellites' time back from the end of the day, 7 minutes a turn.
void Slide(benchmark::State& state)
{
    Drawn drawn(static_cast<int>(state.range(0)), 1280, 800, state.range(1) != 0);
    double minutes = 0.0;
    drawn.Run(state, [&] {
        constexpr double kDay = 1440.0;
        minutes = minutes < 7.0 ? kDay : minutes - 7.0;
        drawn.view.SetTime(minutes);
    });
}
BENCHMARK(Slide)
    ->ArgNames({"graph", "all"})
    ->ArgsProduct({{1, 2, 3}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace fieldcore::bench
