// What a redraw of the plan's graphs costs, from the almanac to the pixels: a day, all satellites,
// a mask and a curtain. It has to keep up with a finger that drags a slider or the mask: 16 ms.

#include "core/planning/Degrees.h"
#include "core/planning/NominalConstellation.h"
#include "ui/planning/PlanGraphView.h"

#include <QApplication>
#include <QPixmap>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

namespace fieldcore::bench {
namespace {

void SetUp(ObservationPlan& plan)
{
    std::vector<std::uint8_t> content;
    for (const AlmanacRecord& record : NominalConstellation(kNominalSatellites, 2445, 405504)) {
        const AlmanacBytes bytes = EncodeAlmanac(record);
        content.insert(content.end(), bytes.begin(), bytes.end());
    }
    plan.Calc().LoadAlmanac(content);
    plan.Calc().SetObserver({RadiansOf(35.69), RadiansOf(139.75), 60.0});
    ObstructionCurtain curtain{};
    std::fill(curtain.begin() + 150, curtain.begin() + 210, std::uint8_t{35});
    plan.Calc().SetCurtain(curtain);
    using namespace std::chrono;
    plan.Period() = {year(2026) / November / 21, 0, 24};
}

/// Computes the plan with another mask at each turn, as dragging it does, and draws the graph.
void Redraw(benchmark::State& state)
{
    ObservationPlan plan;
    SetUp(plan);
    PlanGraphView view;
    view.resize(static_cast<int>(state.range(1)), static_cast<int>(state.range(2)));
    PlanDrawing drawing;
    drawing.plan = &plan;
    drawing.graph = static_cast<PlanGraph>(state.range(0));
    drawing.site = L"東京都千代田区";
    plan.Compute();
    view.SetDrawing(drawing);
    QPixmap pixels(view.size());
    std::vector<double> turnsMs;
    int maskDeg = 10;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        maskDeg = maskDeg == 20 ? 10 : maskDeg + 1;
        plan.SetElMaskDeg(maskDeg);
        plan.Compute();
        view.Refresh(maskDeg);
        view.render(&pixels);
        const std::chrono::duration<double, std::milli> turn =
            std::chrono::steady_clock::now() - start;
        turnsMs.push_back(turn.count());
    }
    std::sort(turnsMs.begin(), turnsMs.end());
    state.counters["median_ms"] = turnsMs[turnsMs.size() / 2];
    state.counters["p95_ms"] = turnsMs[turnsMs.size() * 95 / 100];
}
BENCHMARK(Redraw)
    ->ArgNames({"graph", "width", "height"})
    ->ArgsProduct({{0, 1, 2, 3, 4, 5, 6}, {480}, {400}})
    ->ArgsProduct({{0, 1, 2, 3, 4, 5, 6}, {1280}, {800}})
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace fieldcore::bench

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
