#pragma once

#include "cli/PlanRequest.h"
#include "cli/Report.h"

#include "core/planning/ObservationPlan.h"
#include "core/planning/PlanWindows.h"

#include <optional>
#include <string>

namespace fieldcore::cli {

/// One plan as a report. Times are Japan Standard Time.
/// @param plan   after its Compute()
/// @param graph  nothing: the overview, counts and dilutions of the same instants
[[nodiscard]] Report PlanReport(const ObservationPlan& plan, const NamedSite& site,
                                const PlanRequest& request, std::optional<PlanGraph> graph);

/// The same for a person, with a chart.
[[nodiscard]] std::string PlanWords(const ObservationPlan& plan, const NamedSite& site,
                                    const PlanRequest& request, std::optional<PlanGraph> graph);

/// "5 satellites and a PDOP of 4.0 at most for 30 minutes"
[[nodiscard]] std::string LimitWords(const WindowLimits& limits);
/// A window's line in the table of good windows.
[[nodiscard]] std::vector<Report::Cell> WindowRow(const ObservationPlan& plan,
                                                  const NamedSite& site, const PlanWindow& window);

} // namespace fieldcore::cli
