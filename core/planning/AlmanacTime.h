#pragma once

#include "core/planning/GPSTime.h"
#include "core/planning/SurveyPlanCalc.h"

namespace fieldcore {

/// The latest reference time among the valid satellites of @p calc, week 1024 if there is none. A
/// record whose time cannot be one does not count: its week is negative, or its reference time not
/// 0 to 604800 s.
[[nodiscard]] CGPSTime AlmanacTime(const CSurveyPlanCalc& calc);

/// Whether a plan that begins at @p start should not be made with an almanac of @p almanac: it is
/// more than 30 days older. One from after the start is not old.
[[nodiscard]] bool IsAlmanacOld(const CGPSTime& almanac, const CGPSTime& start);

} // namespace fieldcore
