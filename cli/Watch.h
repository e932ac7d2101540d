#pragma once

#include "cli/Command.h"

#include "core/link/Receiver.h"
#include "core/platform/Clock.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <span>

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

/// A column of a watch: a field of the receiver.
struct WatchColumn
{
    const char* key;
    const char* head; ///< in English
    std::size_t width;
};

/// What is read again and again, and how it is told.
struct Watched
{
    /// @return why it could not be read
    std::function<std::optional<Failure>(Receiver&)> read;
    std::function<void(Report&, const Receiver&)> report;
    std::span<const WatchColumn> columns;
};

/// Reads again and again, a line each. A reading that fails is told and forgotten, as long as the
/// port is there: a receiver that is switched on again goes on where it stopped.
/// @return what the program ends with: Done if any reading was good
[[nodiscard]] ExitCode RunWatch(const Context& context, const Clock& clock,
                                const WatchOptions& options, const Watched& watched);

} // namespace fieldcore::cli
