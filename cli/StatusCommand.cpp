#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"
#include "cli/TerminalHost.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

struct StatusOptions
{
    PortOptions port;
    CLI::Option* watch = nullptr;
    double intervalS = 2.0;
    unsigned count = 0; ///< readings of the watch; 0: until Ctrl-C
};

/// Waits until @p end, or until the user asks for an end.
void WaitUntil(const World& world, const Clock& clock, Clock::Duration end)
{
    constexpr Clock::Duration kSlice = std::chrono::milliseconds(50);
    while (!world.StopRequested()) {
        const Clock::Duration left = end - clock.Steady();
        if (left <= Clock::Duration::zero()) {
            return;
        }
        clock.Sleep(std::min(left, kSlice));
    }
}

ExitCode ShowReading(const Context& context, const StatusReading& reading, bool isFirst)
{
    Report report;
    AddStatus(report, reading);
    return context.output.Done(report, (isFirst ? WatchHeader() : "") + WatchLine(reading));
}

/// Reads again and again. One that fails is told and forgotten, as long as the port is there:
/// a receiver that is switched on again goes on where it stopped.
ExitCode Watch(const Context& context, PortSession& session, const StatusOptions& options)
{
    const Clock& clock = session.GetClock();
    const auto interval = std::chrono::duration_cast<Clock::Duration>(
        std::chrono::duration<double>(options.intervalS));
    ExitCode last = ExitCode::Cancelled;
    bool anyGood = false;
    Clock::Duration next = clock.Steady();
    for (unsigned turn = 0; options.count == 0 || turn < options.count; ++turn) {
        WaitUntil(context.world, clock, next);
        next = std::max(next + interval, clock.Steady());
        StatusReading reading;
        const std::optional<Failure> failure = ReadStatus(session, reading);
        if (context.world.StopRequested()) {
            break;
        }
        if (!failure) {
            last = ShowReading(context, reading, !anyGood);
            anyGood = true;
            if (!*context.world.out) {
                return last; // nobody reads on
            }
        } else {
            last = context.output.Failed(*failure);
            if (last == ExitCode::NoPort) {
                return last;
            }
        }
    }
    return anyGood ? ExitCode::Done : last;
}

ExitCode Run(const Context& context, const StatusOptions& options)
{
    TerminalHost host(context.world, context.output);
    PortSession session(context.world, context.output, host, options.port);
    if (const std::optional<Failure> failure = session.Connect()) {
        return context.output.Failed(*failure);
    }
    if (options.watch->count() > 0) {
        return Watch(context, session, options);
    }
    StatusReading reading;
    if (const std::optional<Failure> failure = ReadStatus(session, reading)) {
        return context.output.Failed(*failure);
    }
    Report report;
    AddStatus(report, reading);
    return context.output.Done(report);
}

} // namespace

Command AddStatusCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(
        program, "status", "How the receiver is: battery, satellites, position",
        "  fieldcore-cli status --port /dev/ttyUSB0             once\n"
        "  fieldcore-cli status --port sim: --watch             every 2 seconds, until Ctrl-C\n"
        "  fieldcore-cli status --port sim: --watch 10 --json   a JSON document every 10 "
        "seconds\n");
    auto options = std::make_shared<StatusOptions>();
    options->watch = parser
                         .add_option("--watch", options->intervalS,
                                     "Again every so many seconds (2), until Ctrl-C")
                         ->expected(0, 1)
                         ->check(CLI::Range(0.1, 86400.0).description(""))
                         ->type_name("[SECONDS]");
    parser.add_option("--count", options->count, "End the watch after so many readings")
        ->needs(options->watch)
        ->check(CLI::PositiveNumber.description(""))
        ->type_name("N");
    options->port.AddTo(parser);
    return {&parser, [options](const Context& context) { return Run(context, *options); }};
}

} // namespace fieldcore::cli
