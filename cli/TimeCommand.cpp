#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"

#include "core/platform/Calendar.h"

#include <chrono>
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
    const TimedValue<ReceiverTime>& time = *reader.Reading().time;
    return Clock::UtcTime(time.value.jst.time_since_epoch() - kJst) + (now - time.at);
}

Failure NotTrusted()
{
    return {ExitCode::Failed, "time-not-known", text::kSayTimeNotKnown, text::kSayTimeNotKnownHint};
}

Ending Run(const Context& context, const TimeOptions& options)
{
    if (options.set && !options.yes && !context.dryRun && !context.world.CanAsk()) {
        return UsageFailure(text::kSayClockNobody, text::kSayYesSet);
    }
    PortSession session(context, options.port, options.yes);
    if (const auto failure = session.Connect()) {
        return *failure;
    }
    if (options.set && session.GetSimulator() != nullptr && !context.dryRun) {
        return UsageFailure(text::kSayClockSimulated, text::kSayDryRunShows);
    }
    StatusReader reader(session);
    if (const auto failure = reader.Read()) {
        return *failure;
    }
    const Report report = ReportOf(reader, false);
    if (!options.set) {
        return context.output.Done(report);
    }
    if (!CanBeTrusted(reader)) {
        return context.output.Failed(NotTrusted(), &report);
    }
    const std::string time = UtcValue(TimeByNow(reader, reader.Reading().time->at)).Words();
    if (context.dryRun) {
        context.output.Note({text::kSayClockWould, {time}});
        return context.output.Done(report);
    }
    if (!options.yes) {
        if (const auto failure = session.GetHost().Ask({text::kSayClockAsk, {time}}, "", "")) {
            return context.output.Failed(*failure, &report);
        }
    }
    // The question may have waited for long.
    if (const auto failure = reader.Read()) {
        return *failure;
    }
    if (!CanBeTrusted(reader)) {
        return context.output.Failed(NotTrusted(), &report);
    }
    // More was asked since the receiver told its time, and may have been asked twice.
    const std::string cause =
        context.world.setClock
            ? context.world.setClock(TimeByNow(reader, session.GetClock().Steady()))
            : Value::Unknown().Words();
    if (!cause.empty()) {
        return context.output.Failed({ExitCode::Failed, "clock-not-set",
                                      Worded(text::kSayClockNotSet, {cause}), text::kSayClockHint},
                                     &report);
    }
    return context.output.Done(ReportOf(reader, true));
}

} // namespace

Command AddTimeCommand(CLI::App& program)
{
    return AddCommand<TimeOptions>(
        program, {"time", text::kHelpTime,
                  [](CLI::App& parser, TimeOptions& options) {
                      CLI::Option* const set =
                          AddFlag(parser, "--set", options.set, text::kOptSetClock);
                      AddConsent(parser, options.yes, text::kOptClockDry);
                      for (const char* name : {"--yes", "--dry-run"}) {
                          parser.get_option(name)->needs(set);
                      }
                      options.port.AddTo(parser);
                  },
                  Run});
}

} // namespace fieldcore::cli
