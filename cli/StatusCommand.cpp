#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"
#include "cli/TerminalHost.h"
#include "cli/Watch.h"

#include "core/resources/StringTable.h"

#include <memory>
#include <optional>

namespace fieldcore::cli {

namespace {

struct StatusOptions
{
    PortOptions port;
    WatchOptions watch;
};

ExitCode ShowReading(const Context& context, const StatusReader& reader, bool isFirst)
{
    Report report;
    AddStatus(report, reader.Reading());
    AddAges(report, reader.Reading(), reader.View().now);
    return context.output.Done(report,
                               (isFirst ? WatchLine(nullptr) : "") + WatchLine(&reader.Reading()));
}

ExitCode Watch(const Context& context, PortSession& session, const StatusOptions& options)
{
    StatusReader reader(session);
    return RunWatch(context.world, session.GetClock(), options.watch,
                    [&](bool isFirst) -> std::optional<ExitCode> {
                        const std::optional<Failure> failure = reader.Read();
                        if (context.world.StopRequested()) {
                            return std::nullopt;
                        }
                        return failure ? context.output.Failed(*failure)
                                       : ShowReading(context, reader, isFirst);
                    });
}

ExitCode Run(const Context& context, const StatusOptions& options)
{
    TerminalHost host(context.world, context.output);
    PortSession session(context.world, context.output, host, options.port);
    if (const std::optional<Failure> failure = session.Connect()) {
        return context.output.Failed(*failure);
    }
    if (options.watch.IsWanted()) {
        return Watch(context, session, options);
    }
    StatusReader reader(session);
    if (const std::optional<Failure> failure = reader.Read()) {
        return context.output.Failed(*failure);
    }
    Report report;
    AddStatus(report, reader.Reading());
    const std::string words = report.Words();
    // Of one reading no words: it is as old as its command.
    AddAges(report, reader.Reading(), reader.View().now);
    return context.output.Done(report, words);
}

} // namespace

Command AddStatusCommand(CLI::App& program)
{
    const auto options = std::make_shared<StatusOptions>();
    return AddCommand(program,
                      {"status", text::kHelpStatus,
                       [options](CLI::App& parser) {
                           options->watch.AddTo(parser, 2.0);
                           options->port.AddTo(parser);
                       },
                       [options](const Context& context) { return Run(context, *options); }});
}

} // namespace fieldcore::cli
