#include "core/planning/PlanSeries.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace fieldcore {

bool IsDilution(PlanGraph graph)
{
    return graph == PlanGraph::Pdop || graph == PlanGraph::Gdop || graph == PlanGraph::Tdop;
}

bool IsTracks(PlanGraph graph)
{
    return graph == PlanGraph::SkyPlot || graph == PlanGraph::Azimuth ||
           graph == PlanGraph::Elevation;
}

double GraphDivision(PlanGraph graph)
{
    switch (graph) {
    case PlanGraph::SkyPlot:
        return 0.0;
    case PlanGraph::Azimuth:
        return 30.0;
    case PlanGraph::Elevation:
        return 7.5;
    default:
        return 1.0;
    }
}

double GraphDivision(const ObservationPlan& plan, PlanGraph graph)
{
    if (graph != PlanGraph::Count || plan.IsGpsAlone()) {
        return GraphDivision(graph);
    }
    double most = 1.0;
    for (int k = 0; k < plan.Division(); ++k) {
        most = std::max(most, plan.CountAt(k));
    }
    return std::ceil(most / kGraphDivisions);
}

int EpochOfSample(PlanGraph graph, int k)
{
    return IsDilution(graph) ? k + 1 : k;
}

std::optional<double> SampleAt(const ObservationPlan& plan, PlanGraph graph, int k)
{
    constexpr int kFewestForDilution = 4;
    if (k < 0 || k >= plan.Division() || IsTracks(graph)) {
        return std::nullopt;
    }
    if (graph == PlanGraph::Count) {
        return plan.CountAt(k);
    }
    const int count = plan.View().count[static_cast<std::size_t>(EpochOfSample(graph, k))];
    const double dop = plan.DopAt(graph, k);
    return count >= kFewestForDilution && std::isfinite(dop) ? std::optional(dop) : std::nullopt;
}

int SampleNear(const ObservationPlan& plan, PlanGraph graph, double epoch)
{
    const double held = std::clamp(epoch, 0.0, static_cast<double>(plan.Division()));
    const int sample = IsDilution(graph) ? static_cast<int>(std::lround(held)) - 1
                                         : static_cast<int>(std::floor(held));
    return std::clamp(sample, 0, std::max(plan.Division() - 1, 0));
}

std::vector<TrackRun> TrackRuns(const ObservationPlan& plan)
{
    std::vector<TrackRun> runs;
    for (int index = 0; index < static_cast<int>(plan.Satellites().size()); ++index) {
        bool isOpen = false;
        for (int k = 0; k < plan.Division(); ++k) {
            if (!plan.TrackAt(index, k)) {
                isOpen = false;
                continue;
            }
            if (!isOpen) {
                runs.push_back({index, k, k});
            }
            isOpen = true;
            runs.back().last = k + 1;
        }
    }
    return runs;
}

} // namespace fieldcore
