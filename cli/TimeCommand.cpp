#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/ReceiverWords.h"
#include "cli/StatusReading.h"
#include "cli/TerminalHost.h"

#include "core/equipment/GPSError.h"
#include "core/platform/Utf8.h"

#include <chrono>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

struct TimeOptions
{
    PortOptions port;
    bool set = false;
    bool yes = false;
    bool dryRun = false;
};

/// The receiver's time against the controller's.
struct Comparison
{
    StatusReading reading;
    std::optional<Clock::UtcTime> receiver; ///< nothing: it does not know the time
    bool canBeTrusted = false;              ///< to the second
};

double SecondsBetween(Clock::UtcTime later, Clock::UtcTime earlier)
{
    return std::chrono::duration<double>(later - earlier).count();
}

Comparison Compare(StatusReading reading)
{
    Comparison comparison;
    comparison.receiver = reading.Utc();
    comparison.canBeTrusted = comparison.receiver && reading.position &&
                              IsPositionComputed(*reading.position) &&
                              IsUsableUtcOffset(reading.time->utcOffsetS);
    comparison.reading = std::move(reading);
    return comparison;
}

Report ReportOf(const Comparison& comparison, bool isSet)
{
    const Clock::UtcTime controller = comparison.reading.controllerTime;
    Report report;
    report.Add("receiverUtc", "receiver",
               comparison.receiver ? UtcValue(*comparison.receiver) : Value::Unknown());
    report.Add("receiverJst", "",
               comparison.receiver ? JstValue(*comparison.receiver) : Value::Unknown());
    report.Add("controllerUtc", "controller", UtcValue(controller));
    report.Add("controllerAheadS", "controller ahead by",
               comparison.receiver
                   ? Value::Real(SecondsBetween(controller, *comparison.receiver), 1, "s")
                   : Value::Unknown());
    report.Add("synchronised", "time can be trusted", Value::YesNo(comparison.canBeTrusted));
    report.Add("set", "controller's clock set", Value::YesNo(isSet));
    return report;
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
    StatusReading reading;
    if (const std::optional<Failure> failure = ReadStatus(session, reading)) {
        return context.output.Failed(*failure);
    }
    Comparison comparison = Compare(std::move(reading));
    Report report = ReportOf(comparison, false);
    if (!comparison.canBeTrusted) {
        return context.output.Failed(NotTrusted(), &report);
    }
    const std::string time = UtcValue(*comparison.receiver).Words();
    if (options.dryRun) {
        context.output.Note("Nothing was set. The controller's clock would become " + time + ".");
        return context.output.Done(report);
    }
    if (!options.yes && !Agrees(host, "Set the controller's clock to " + time + "?")) {
        return context.output.Failed(RequestFailure(CommandFault::Cancelled, ""), &report);
    }
    // The question may have waited for long.
    if (const std::optional<Failure> failure = ReadStatus(session, comparison.reading)) {
        return context.output.Failed(*failure);
    }
    comparison = Compare(std::move(comparison.reading));
    if (!comparison.canBeTrusted) {
        return context.output.Failed(NotTrusted(), &report);
    }
    if (!context.world.setClock) {
        return context.output.Failed(NotPermitted(""), &report);
    }
    // More was asked since the receiver told its time, and may have been asked twice.
    const Clock::Duration since = session.GetClock().Steady() - comparison.reading.timeAt;
    const std::string cause = context.world.setClock(*comparison.receiver + since);
    if (!cause.empty()) {
        return context.output.Failed(NotPermitted(cause), &report);
    }
    return context.output.Done(ReportOf(comparison, true));
}

ExitCode Run(const Context& context, const TimeOptions& options)
{
    const bool canAsk = context.world.inIsTerminal && context.world.errIsTerminal;
    if (options.set && !options.yes && !options.dryRun && !canAsk) {
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
        if (session.GetSimulator() != nullptr && !options.dryRun) {
            return context.output.Failed(
                UsageFailure("A simulated receiver has no time of its own: the clock was left "
                             "alone.",
                             "--dry-run shows what a real one would do"));
        }
        return Set(context, options, host, session);
    }
    StatusReading reading;
    if (const std::optional<Failure> failure = ReadStatus(session, reading)) {
        return context.output.Failed(*failure);
    }
    return context.output.Done(ReportOf(Compare(std::move(reading)), false));
}

} // namespace

Command AddTimeCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(
        program, "time", "The receiver's time against this controller's",
        "  fieldcore-cli time --port /dev/ttyUSB0                 how far they are apart\n"
        "  fieldcore-cli time --port /dev/ttyUSB0 --set --dry-run what would be set\n"
        "  sudo fieldcore-cli time --port /dev/ttyUSB0 --set      asks, then sets the clock\n");
    auto options = std::make_shared<TimeOptions>();
    CLI::Option* const set =
        parser.add_flag("--set", options->set, "Set the controller's clock by the receiver");
    CLI::Option* const yes = parser.add_flag("--yes", options->yes, "Do not ask")->needs(set);
    parser.add_flag("--dry-run", options->dryRun, "Set nothing")->needs(set)->excludes(yes);
    options->port.AddTo(parser);
    return {&parser, [options](const Context& context) { return Run(context, *options); }};
}

} // namespace fieldcore::cli
