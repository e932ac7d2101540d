#pragma once

#include "cli/ExitCode.h"
#include "cli/World.h"

#include "core/platform/Clock.h"

#include <functional>
#include <optional>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace fieldcore::cli {

/// Whether, how often and how many times a reading is taken again.
struct WatchOptions
{
    double intervalS = 0.0;
    unsigned count = 0; ///< readings; 0: until Ctrl-C
    CLI::Option* watch = nullptr;

    /// Gives a command --watch and --count. This object must outlive the parsing.
    /// @param usualS  the interval if none is given
    void AddTo(CLI::App& command, double usualS);
    [[nodiscard]] bool IsWanted() const;
};

/// Waits until @p end, or until the user asks for an end.
void WaitUntil(const World& world, const Clock& clock, Clock::Duration end);

/// Reads again and again. A reading that fails is told and forgotten, as long as the port is
/// there: a receiver that is switched on again goes on where it stopped.
/// @param read  reads and shows; whether it is the first good one. Answers with an exit code, or
///              nothing if the user has asked for an end meanwhile
/// @return what the program ends with: Done if any reading was good
[[nodiscard]] ExitCode RunWatch(const World& world, const Clock& clock, const WatchOptions& options,
                                const std::function<std::optional<ExitCode>(bool isFirst)>& read);

} // namespace fieldcore::cli
