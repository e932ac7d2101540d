#pragma once

#include "cli/Command.h"
#include "cli/Report.h"

#include "core/orbits/Constellations.h"
#include "core/planning/AlmanacRecord.h"
#include "core/planning/ObservationPlan.h"

#include <optional>
#include <span>
#include <string>

namespace fieldcore::cli {

/// Adds what @p records tell of each system: satellites, messages, from when to when, and how old
/// they are at @p gpsS, seconds of GPS time.
void AddSystemTable(Report& report, std::span<const NavigationRecord> records, double gpsS);

/// Whether @p file is a navigation file, by its content.
[[nodiscard]] bool IsNavigationFile(const std::string& file);

/// Adds the messages of a navigation file to those that are kept.
Ending ImportNavigation(const Context& context, const std::string& file);

/// The same with an almanac text that has no GPS satellite.
Ending ImportOthers(const Context& context, std::span<const AlmanacRecord> records);
/// Adds satellites that stand in an almanac text beside GPS to the messages that are kept.
/// @return why not; nothing if it is done
[[nodiscard]] std::optional<Failure> KeepOthers(const Context& context,
                                                std::span<const AlmanacRecord> records);

/// Says what is missing or too old of the systems of @p plan.
void WarnOfSystems(Output& output, const ObservationPlan& plan);

/// The systems of a plan that is not of GPS alone, for a person and for a program.
[[nodiscard]] std::string SystemWords(const ObservationPlan& plan);
void AddSystems(Report& report, const ObservationPlan& plan);

} // namespace fieldcore::cli
