#pragma once

#include "cli/ExitCode.h"
#include "cli/World.h"

#include "core/platform/Clock.h"

#include <functional>
#include <optional>

namespace fieldcore::cli {

/// Waits until @p end, or until the user asks for an end.
void WaitUntil(const World& world, const Clock& clock, Clock::Duration end);

/// Reads again and again. A reading that fails is told and forgotten, as long as the port is
/// there: a receiver that is switched on again goes on where it stopped.
/// @param intervalS  from one reading to the next
/// @param count      how many readings; 0: until the user ends it
/// @param read       reads and shows; whether it is the first good one. Answers with an exit code,
///                   or nothing if the user has asked for an end meanwhile
/// @return what the program ends with: Done if any reading was good
[[nodiscard]] ExitCode RunWatch(const World& world, const Clock& clock, double intervalS,
                                unsigned count,
                                const std::function<std::optional<ExitCode>(bool isFirst)>& read);

} // namespace fieldcore::cli
