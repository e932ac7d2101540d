#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

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
    report.Add("receiverUtc", text::kLabelReceiver, field("utc"));
    report.Add("receiverJst", "", field("jst"));
    report.Add("controllerUtc", text::kLabelController, UtcValue(reader.View().utc));
    report.Add("controllerAheadS", text::kLabelControllerAheadBy, field("controllerAheadS"));
    report.Add("synchronised", text::kLabelTimeCanBeTrusted, Value::YesNo(CanBeTrusted(reader)));
    report.Add("set", text::kLabelControllersClockSet, Value::YesNo(isSet));
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
    return {ExitCode::Failed, "time-not-known", Worded(text::kSayTimeNotKnown),
            Worded(text::kSayTimeNotKnownHint)};
}

Failure NotPermitted(const std::string& cause)
{
    return {ExitCode::Failed, "clock-not-set",
            Worded(text::kSayClockNotSet, {cause.empty() ? "--" : cause}),
            Worded(text::kSayClockHint)};
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
        context.output.Note(Worded(text::kSayClockWould, {time}));
        return context.output.Done(report);
    }
    if (!options.yes) {
        if (const auto failure = host.Ask(Worded(text::kSayClockAsk, {time}), "", "")) {
            return context.output.Failed(*failure, &report);
        }
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
            UsageFailure(Worded(text::kSayClockNobody), Worded(text::kSayYesSet)));
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
                UsageFailure(Worded(text::kSayClockSimulated), Worded(text::kSayDryRunShows)));
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
    return AddCommand(program,
                      {"time", text::kHelpTime,
                       [options](CLI::App& parser) {
                           CLI::Option* const set =
                               AddFlag(parser, "--set", options->set, text::kOptSetClock);
                           AddConsent(parser, options->yes, text::kOptClockDry);
                           for (const char* name : {"--yes", "--dry-run"}) {
                               parser.get_option(name)->needs(set);
                           }
                           options->port.AddTo(parser);
                       },
                       [options](const Context& context) { return Run(context, *options); }});
}

} // namespace fieldcore::cli
