#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"
#include "cli/Watch.h"

#include <optional>

namespace fieldcore::cli {

namespace {

struct StatusOptions
{
    PortOptions port;
    WatchOptions watch;
};

constexpr WatchColumn kColumns[] = {
    {"utc", "TIME", 25},
    {"fix", "FIX", 15},
    {"satellitesTracked", "SATELLITES", 12},
    {"pdop", "PDOP", 6},
    {"batteryPercent", "BATTERY", 9},
    {"latitudeDeg", "LATITUDE", 18},
    {"longitudeDeg", "LONGITUDE", 18},
    {"heightM", "HEIGHT", 0},
};

Ending Run(const Context& context, const StatusOptions& options)
{
    PortSession session(context, options.port);
    if (const auto failure = session.Connect()) {
        return *failure;
    }
    StatusReader reader(session);
    const auto read = [&](Receiver& reading) {
        std::optional<Failure> failure = reader.Read();
        reading = reader.Reading();
        return failure;
    };
    const auto tell = [&](Report& report, const Receiver& reading) {
        AddStatus(report, reading);
        AddAges(report, reading, reader.View().now);
    };
    if (options.watch.IsWanted()) {
        return RunWatch(context, session.GetClock(), options.watch, {read, tell, kColumns});
    }
    Receiver reading;
    if (const auto failure = read(reading)) {
        return *failure;
    }
    Report report;
    AddStatus(report, reading);
    const std::string words = report.Words();
    // Of one reading no words: it is as old as its command.
    AddAges(report, reading, reader.View().now);
    return context.output.Done(report, words);
}

} // namespace

Command AddStatusCommand(CLI::App& program)
{
    return AddCommand<StatusOptions>(program, {"status", text::kHelpStatus,
                                               [](CLI::App& parser, StatusOptions& options) {
                                                   options.watch.AddTo(parser, 2.0);
                                                   options.port.AddTo(parser);
                                               },
                                               Run});
}

} // namespace fieldcore::cli
