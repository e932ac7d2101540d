#pragma once

#include "core/planning/NominalConstellation.h"
#include "core/platform/Degrees.h"
#include "tests/core/planning/SampleSky.h"
#include "ui/planning/PlanDrawing.h"

#include <algorithm>
#include <cstdint>

namespace fieldcore::testing {

/// A plan over Tokyo with mask 15 and a house in the south.
[[nodiscard]] inline ObservationPlan SamplePlan(int satellites, int startHour, int hours)
{
    using namespace std::chrono_literals;
    ObservationPlan plan;
    plan.Calc().LoadAlmanac(FileOf(NominalConstellation(satellites, 2445, 405504)));
    plan.Calc().SetObserver({RadiansOf(35.69), RadiansOf(139.75), 60.0});
    ObstructionCurtain curtain{};
    std::fill(curtain.begin() + 150, curtain.begin() + 210, std::uint8_t{35});
    plan.Calc().SetCurtain(curtain);
    plan.SetElMaskDeg(15);
    plan.Period() = {2026y / std::chrono::November / 21, startHour, hours};
    plan.Compute();
    return plan;
}

[[nodiscard]] inline PlanDrawing SampleDrawing(const ObservationPlan& plan, PlanGraph graph)
{
    PlanDrawing drawing;
    drawing.plan = &plan;
    drawing.graph = graph;
    drawing.site = L"東京都千代田区";
    return drawing;
}

} // namespace fieldcore::testing
