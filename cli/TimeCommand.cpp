#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"
#include "cli/TerminalHost.h"

#include "core/platform/Utf8.h"

#include <chrono>
#include <memory>
#include <string>

namespace fieldcore::cli {

namespace {

struct TimeOptions
{
    PortOptions port;
    bool set = false;
    bool yes = false;
};

/// Whether the receiver's time is good to the second.
bool CanBeTrusted(const StatusReader& reader)
{
    return reader.Reading().isSynchronised && reader.Reading().time;
}

/// The receiver's time against the controller's.
Report ReportOf(const StatusReader& reader, bool isSet)
{
    const auto field = [&](const char* key) {
        return ReportField(FieldOf(key), reader.Reading(), reader.View());
    };
    Report report;
    report.Add("receiverUtc", "receiver", field("utc"));
    report.Add("receiverJst", "", field("jst"));
    report.Add("controllerUtc", "controller", UtcValue(reader.View().utc));
    report.Add("controllerAheadS", "controller ahead by", field("controllerAheadS"));
    report.Add("synchronised", "time can be trusted", Value::YesNo(CanBeTrusted(reader)));
    report.Add("set", "controller's clock set", Value::YesNo(isSet));
    return report;
}

/// The receiver's time by now, which has been accepted.
Clock::UtcTime TimeByNow(const StatusReader& reader, Clock::Duration now)
{
    constexpr std::chrono::hours kJst{9};
    const TimedValue<ReceiverTime>& time = *reader.Reading().time;
    return Clock::UtcTime(time.value.jst.time_since_epoch() - kJst) + (now - time.at);
}

Failure NotTrusted()
{
    return {ExitCode::Failed, "time-not-known",
            "The receiver's time cannot be trusted yet: the clock was left alone.",
            "Wait until it computes a position: fieldcore-cli status --watch"};
}

Failure NotPermitted(const std::string& cause)
{
    return {ExitCode::Failed, "clock-not-set",
            "The controller's clock was not set: " + (cause.empty() ? "not here" : cause) + ".",
            "Setting it needs the right to: run the same with sudo."};
}

bool Agrees(TerminalHost& host, const std::string& question)
{
    return host.ShowMessage(FromUtf8(question), L"", {BoxButtons::YesNo, BoxIcon::Question}) ==
           BoxAnswer::Yes;
}

ExitCode Set(const Context& context, const TimeOptions& options, TerminalHost& host,
             PortSession& session)
{
    StatusReader reader(session);
    if (const std::optional<Failure> failure = reader.Read()) {
        return context.output.Failed(*failure);
    }
    const Report report = ReportOf(reader, false);
    if (!CanBeTrusted(reader)) {
        return context.output.Failed(NotTrusted(), &report);
    }
    const std::string time = UtcValue(TimeByNow(reader, reader.Reading().time->at)).Words();
    if (context.dryRun) {
        context.output.Note("The controller's clock would become " + time + ".");
        return context.output.Done(report);
    }
    if (!options.yes && !Agrees(host, "Set the controller's clock to " + time + "?")) {
        return context.output.Failed(RequestFailure(CommandFault::Cancelled, ""), &report);
    }
    // The question may have waited for long.
    if (const std::optional<Failure> failure = reader.Read()) {
        return context.output.Failed(*failure);
    }
    if (!CanBeTrusted(reader)) {
        return context.output.Failed(NotTrusted(), &report);
    }
    if (!context.world.setClock) {
        return context.output.Failed(NotPermitted(""), &report);
    }
    // More was asked since the receiver told its time, and may have been asked twice.
    const std::string cause =
        context.world.setClock(TimeByNow(reader, session.GetClock().Steady()));
    if (!cause.empty()) {
        return context.output.Failed(NotPermitted(cause), &report);
    }
    return context.output.Done(ReportOf(reader, true));
}

ExitCode Run(const Context& context, const TimeOptions& options)
{
    if (options.set && !options.yes && !context.dryRun && !context.world.CanAsk()) {
        return context.output.Failed(
            UsageFailure("The controller's clock would be set, and nobody can be asked here.",
                         "--yes to set it all the same, --dry-run to see what would happen"));
    }
    TerminalHost host(context.world, context.output,
                      options.yes ? TerminalHost::Answers::AllYes : TerminalHost::Answers::Ask);
    PortSession session(context.world, context.output, host, options.port);
    if (const std::optional<Failure> failure = session.Connect()) {
        return context.output.Failed(*failure);
    }
    if (options.set) {
        if (session.GetSimulator() != nullptr && !context.dryRun) {
            return context.output.Failed(
                UsageFailure("A simulated receiver has no time of its own: the clock was left "
                             "alone.",
                             "--dry-run shows what a real one would do"));
        }
        return Set(context, options, host, session);
    }
    StatusReader reader(session);
    if (const std::optional<Failure> failure = reader.Read()) {
        return context.output.Failed(*failure);
    }
    return context.output.Done(ReportOf(reader, false));
}

} // namespace

Command AddTimeCommand(CLI::App& program)
{
    const auto options = std::make_shared<TimeOptions>();
    return AddCommand(
        program,
        {"time", "The receiver's time against this controller's",
         "  fieldcore-cli time --port /dev/ttyUSB0                 how far they are apart\n"
         "  fieldcore-cli time --port /dev/ttyUSB0 --set --dry-run what would be set\n"
         "  sudo fieldcore-cli time --port /dev/ttyUSB0 --set      asks, then sets the clock\n",
         [options](CLI::App& parser) {
             CLI::Option* const set = parser.add_flag("--set", options->set,
                                                      "Set the controller's clock by the receiver");
             AddConsent(parser, options->yes, "Set nothing, show what would be");
             for (const char* name : {"--yes", "--dry-run"}) {
                 parser.get_option(name)->needs(set);
             }
             options->port.AddTo(parser);
         },
         [options](const Context& context) { return Run(context, *options); }});
}

} // namespace fieldcore::cli
