#pragma once

#include "cli/Output.h"

#include "core/orbits/Constellations.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/GPSTime.h"
#include "core/planning/ObservationPlan.h"
#include "core/planning/SurveyPlanCalc.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

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
/// @param gps  on the GPS time scale
[[nodiscard]] Value DateValue(std::chrono::sys_seconds gps, bool hasSeconds = true);

/// Why there is no new almanac, if the receiver is not why.
/// @param file  where it should be
[[nodiscard]] Failure AlmanacFailure(AlmanacResult result, const AlmanacStore& store,
                                     const std::filesystem::path& file);

/// Adds where the almanac comes from, how many satellites it has, how many of them are healthy, its
/// time and how old it is at @p date.
void AddAlmanacSummary(Report& report, const CSurveyPlanCalc& almanac, const CGPSTime& date);

/// Where an almanac comes from; for a program "nominal", "receiver", "file" or "unknown".
[[nodiscard]] Value SourceValue(const AlmanacSource& source);

/// Adds the satellites as a table.
void AddAlmanacTable(Report& report, const CSurveyPlanCalc& almanac, const CGPSTime& date);

/// Adds what @p records tell of each system: satellites, messages, from when to when, and how old
/// they are at @p gpsS, seconds of GPS time.
void AddSystemTable(Report& report, std::span<const NavigationRecord> records, double gpsS);

/// Says what is missing or too old of the systems of @p plan.
void WarnOfSystems(Output& output, const ObservationPlan& plan);

/// The systems of a plan that is not of GPS alone, for a person and for a program.
[[nodiscard]] std::string SystemWords(const ObservationPlan& plan);
void AddSystems(Report& report, const ObservationPlan& plan);

} // namespace fieldcore::cli
