#pragma once

#include "core/planning/ObservationPlan.h"

#include <string>
#include <string_view>

namespace fieldcore {

/// A plan as comma-separated values, for a spreadsheet: UTF-8 without a byte order mark, lines that
/// end in CR LF, times as 2026-11-21T09:00+09:00 (Japan Standard Time), numbers with a decimal
/// point.
///
/// The rows of PlanGraph::Count and of the three dilutions are the samples of that series. Those of
/// the other graphs are the visible satellites of every epoch, with azimuth and elevation in
/// degrees. A dilution that is not finite is an empty field. The last field of each row is the
/// almanac's source and day, so that what is made up says so wherever the rows go; with more than
/// GPS it is the systems and the day of the oldest of them, and satellites are named as G05.

/// A field that a comma, a quote or a line end within it does not break.
[[nodiscard]] std::string CsvField(std::string_view text);

/// What the last field of each row says: where the almanac of @p plan comes from, and its day, as
/// "公称軌道暦（見本） 2026-11-19", or the systems.
[[nodiscard]] std::string CsvSource(const ObservationPlan& plan);

/// The line of column names.
/// @param isGpsAlone  of the plan
[[nodiscard]] std::string PlanCsvHeader(PlanGraph graph, bool isGpsAlone = true);

/// @param site  the name that each row begins with
/// @param plan  after its Compute()
[[nodiscard]] std::string PlanCsvRows(const ObservationPlan& plan, PlanGraph graph,
                                      std::wstring_view site);

} // namespace fieldcore
