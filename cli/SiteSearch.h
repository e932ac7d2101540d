#pragma once

#include "cli/Command.h"
#include "cli/Failure.h"
#include "cli/PlanRequest.h"
#include "cli/Report.h"

#include "core/planning/PlanSearch.h"

#include <optional>
#include <string>

namespace fieldcore::cli {

/// Searches the days of @p request for all of its sites, each with its own curtain where it has
/// one, the satellites those of @p plan. Tells which sites have none; shows progress.
/// @return why it could not be searched, or that the user stopped it
[[nodiscard]] std::optional<Failure> RunSearch(const Context& context, const PlanOptions& options,
                                               const PlanRequest& request,
                                               const ObservationPlan& plan,
                                               std::optional<PlanSearch>& search);

/// The best times of each site and of all together, the best @p days of each.
[[nodiscard]] Report::Table BestTable(const PlanSearch& search, const WindowLimits& limits,
                                      int days);
/// Tells which sites are not in the table of BestTable().
void WarnOfSitesWithout(Output& output, const PlanSearch& search, const Report::Table& table);

/// A row for each site and one for all together: what they see over all hours.
[[nodiscard]] Report::Table SessionTable(const PlanSearch& search, const WindowLimits& limits);
/// A row for each instant: what all see together.
[[nodiscard]] Report::Table SessionSamples(const PlanSearch& search);

/// A table for a spreadsheet, in the manner of PlanCsvRows(). What is not known is empty.
[[nodiscard]] std::string TableCsv(const Report::Table& table, const std::string& almanac);

} // namespace fieldcore::cli
