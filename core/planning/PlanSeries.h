#pragma once

#include "core/planning/ObservationPlan.h"

#include <optional>
#include <vector>

namespace fieldcore {

// What the graphs over time have in common, for whoever draws or reads them. Epoch k is start + k
// intervals, 0 to Division().

[[nodiscard]] bool IsDilution(PlanGraph graph);
/// Whether the graph shows the ways of satellites.
[[nodiscard]] bool IsTracks(PlanGraph graph);

/// The value axis begins at 0 and has as many divisions.
inline constexpr int kGraphDivisions = 12;
/// One division: satellites, dilution, or degrees; 0 for the sky plot, which has no such axis.
[[nodiscard]] double GraphDivision(PlanGraph graph);
/// The same for a plan: with more than GPS a division of the count has as many satellites as it
/// takes for all of them.
[[nodiscard]] double GraphDivision(const ObservationPlan& plan, PlanGraph graph);

/// The epoch that sample @p k belongs to: dilutions are one interval behind the rest.
[[nodiscard]] int EpochOfSample(PlanGraph graph, int k);

/// A count or a dilution.
/// @return nothing if there is no solution (fewer than four satellites, or a geometry without one),
/// no such sample, or @p graph shows tracks
[[nodiscard]] std::optional<double> SampleAt(const ObservationPlan& plan, PlanGraph graph, int k);

/// The sample to tell at a time: of a count the one that began last, since it is drawn as a step
/// from there; of a dilution the nearest.
/// @param epoch  any number, also between epochs and outside
/// @return 0 to Division() - 1; 0 before the first Compute()
[[nodiscard]] int SampleNear(const ObservationPlan& plan, PlanGraph graph, double epoch);

/// A satellite's way as long as it is usable: it is at all epochs from first to last, at least two.
struct TrackRun
{
    int prnIndex = 0; ///< in plan.Satellites(); of GPS alone PRN less 1
    int first = 0;
    int last = 0;
};
/// All of them, by satellite, then time.
[[nodiscard]] std::vector<TrackRun> TrackRuns(const ObservationPlan& plan);

} // namespace fieldcore
