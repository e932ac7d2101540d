#pragma once

#include "cli/Report.h"
#include "cli/World.h"

#include "core/planning/GPSTime.h"
#include "core/planning/SurveyPlanCalc.h"

#include <chrono>
#include <cstdint>

namespace fieldcore::cli {

// GPS time here is UTC without the leap seconds that have come since 1980: for the age of an
// almanac in days they do not matter.

/// Now, by the world's clock.
[[nodiscard]] CGPSTime GpsNow(const World& world);

/// The GPS midnight with which a day begins.
[[nodiscard]] CGPSTime GpsMidnight(std::chrono::sys_days day);

/// Seconds since 1980-01-06 00:00:00 of GPS time.
[[nodiscard]] std::int64_t GpsSeconds(const CGPSTime& time);

/// Date and time of day, for a person without the T between them.
/// @param gpsSeconds  since 1980-01-06 00:00:00
/// @param hasSeconds  a person reads them, too
[[nodiscard]] Value DateValue(std::int64_t gpsSeconds, bool hasSeconds = true);

/// Adds where the almanac comes from, how many satellites it has, how many of them are healthy, its
/// time and how old it is at @p date.
void AddAlmanacSummary(Report& report, const CSurveyPlanCalc& almanac, const CGPSTime& date);

/// Where an almanac comes from; for a program "nominal", "receiver", "file" or "unknown".
[[nodiscard]] Value SourceValue(const AlmanacSource& source);

/// Adds the satellites as a table.
void AddAlmanacTable(Report& report, const CSurveyPlanCalc& almanac, const CGPSTime& date);

} // namespace fieldcore::cli
