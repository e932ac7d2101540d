#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/TerminalHost.h"
#include "cli/TiltReport.h"
#include "cli/Watch.h"
#include "cli/Wording.h"

#include "core/resources/StringTable.h"
#include "core/settings/HostReg.h"
#include "core/tilt/BubbleConfig.h"
#include "core/tilt/CalibrationRun.h"
#include "core/tilt/TiltSettings.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace fieldcore::cli {

namespace {

struct TiltOptions
{
    PortOptions port;
    WatchOptions watch;
    int hours = 0;
    std::string speed;
    bool yes = false;
};

/// The receiver and its sensor for the time of one command.
struct Sensor
{
    PortSession& session;
    TerminalHost& host;
    TiltSettings& tilt;
    const CReg& reg;
};

/// Connects, and makes sure that there is a sensor that answers.
ExitCode WithSensor(const Context& context, const TiltOptions& options,
                    const std::function<ExitCode(Sensor&)>& act)
{
    TerminalHost host(context.world, context.output,
                      options.yes ? TerminalHost::Answers::AllYes : TerminalHost::Answers::Ask);
    PortSession session(context.world, context.output, host, options.port);
    if (const std::optional<Failure> failure = session.Connect()) {
        return context.output.Failed(*failure);
    }
    SettingsRoots roots{Folders(context.world.folders)};
    const HostReg reg(roots);
    TiltSettings tilt(&session.Command(), reg);
    tilt.Refresh();
    if (!tilt.Reading()) {
        return context.output.Failed(session.RequestFailed());
    }
    Sensor sensor{session, host, tilt, reg};
    return act(sensor);
}

ExitCode Watch(const Context& context, const TiltOptions& options, Sensor& sensor)
{
    return RunWatch(context.world, sensor.session.GetClock(), options.watch,
                    [&](bool isFirst) -> std::optional<ExitCode> {
                        sensor.tilt.Refresh();
                        if (context.world.StopRequested()) {
                            return std::nullopt;
                        }
                        if (!sensor.tilt.Reading()) {
                            return context.output.Failed(sensor.session.RequestFailed());
                        }
                        Report report;
                        AddTilt(report, sensor.session.Command().Heard());
                        return context.output.Done(report,
                                                   (isFirst ? TiltHeader() : "") +
                                                       TiltLine(sensor.session.Command().Heard()));
                    });
}

ExitCode Show(const Context& context, const TiltOptions& options)
{
    return WithSensor(context, options, [&](Sensor& sensor) {
        if (options.watch.IsWanted()) {
            return Watch(context, options, sensor);
        }
        Report report;
        AddTilt(report, sensor.session.Command().Heard());
        return context.output.Done(report);
    });
}

/// Follows a run to its end. Ctrl-C cancels it at the receiver.
void Follow(const Context& context, Sensor& sensor, CalibrationRun& run)
{
    CCommand& command = sensor.session.Command();
    const Clock& clock = sensor.session.GetClock();
    for (run.Tick(command); !run.IsOver(); run.Tick(command)) {
        const bool isCancelling = run.GetState() == CalibrationRun::State::Cancelling;
        context.output.Progress(
            Worded(isCancelling ? text::kProgressCancels : text::kProgressCalibrates,
                   {std::to_string(run.ProgressPercent())}));
        if (isCancelling) {
            clock.Sleep(CalibrationRun::kInterval);
        } else {
            WaitUntil(context.world, clock, clock.Steady() + CalibrationRun::kInterval);
        }
        if (context.world.StopRequested()) {
            // The host ends every wait from now on; the receiver has to be told nevertheless.
            command.SetHost(SilentHost::Instance());
            run.Cancel();
        }
    }
    context.output.Progress("");
    command.SetHost(sensor.host);
}

ExitCode Calibrate(const Context& context, const TiltOptions& options)
{
    if (!options.yes && !context.dryRun && !context.world.CanAsk()) {
        return context.output.Failed(
            UsageFailure(Worded(text::kSayCalibrationNobody), Worded(text::kSayCalibrationHint)));
    }
    return WithSensor(context, options, [&](Sensor& sensor) {
        Report report;
        if (context.dryRun) {
            report.Add("outcome", text::kLabelOutcome,
                       Value::Word("not-started", Worded(text::kWordNotStarted)));
            AddTilt(report, sensor.session.Command().Heard());
            return context.output.Done(report);
        }
        if (!sensor.tilt.MayCalibrate(sensor.host)) {
            return context.output.Failed(RequestFailure(CommandFault::Cancelled, ""));
        }
        CalibrationRun run;
        Follow(context, sensor, run);
        TiltSettings::LastRun() = run.Result();
        if (run.GetState() == CalibrationRun::State::Aborted) {
            return context.output.Failed(RequestFailure(CommandFault::Cancelled, ""));
        }
        sensor.tilt.Refresh();
        const bool isDone = run.GetState() == CalibrationRun::State::Done;
        const std::string outcome = isDone ? "completed" : "failed";
        report.Add("outcome", text::kLabelOutcome, Value::Word(outcome, Translated(outcome)));
        AddTilt(report, sensor.session.Command().Heard());
        if (isDone) {
            return context.output.Done(report);
        }
        return context.output.Failed(run.Fault() != CommandFault::None
                                         ? RequestFailure(run.Fault(), "")
                                         : Failure{ExitCode::Failed, "calibration-failed",
                                                   Worded(text::kSayCalibrationFailed),
                                                   Worded(text::kSayCalibrationAgain)},
                                     &report);
    });
}

/// Tells the receiver a setting of its sensor.
/// @param keep  stores it here once the receiver has it; 0 if it could not be stored. Null: only
///              the receiver keeps it.
ExitCode Send(const Context& context, const TiltOptions& options, const char* key, int label,
              Value value, const std::function<int(CCommand&)>& send,
              const std::function<int(const CReg&)>& keep)
{
    return WithSensor(context, options, [&](Sensor& sensor) {
        Report report;
        report.Add(key, label, value);
        if (!context.dryRun && send(sensor.session.Command()) == 0) {
            return context.output.Failed(sensor.session.RequestFailed());
        }
        report.Add("sent", text::kLabelSent, Value::YesNo(!context.dryRun));
        const bool isKept = keep != nullptr;
        if (!context.dryRun && isKept && keep(sensor.reg) == 0) {
            return context.output.Failed(
                FileFailure(Worded(text::kSayTiltNotStored), "fieldcore-cli doctor"), &report);
        }
        return isKept ? Kept(context, report) : context.output.Done(report);
    });
}

ExitCode SetExpiry(const Context& context, const TiltOptions& options)
{
    return Send(
        context, options, "expiryHours", text::kFieldExpiry, Value::Integer(options.hours, "h"),
        [&](CCommand& command) {
            return command.SetTiltValidity(static_cast<std::uint16_t>(options.hours));
        },
        nullptr);
}

ExitCode SetSpeed(const Context& context, const TiltOptions& options)
{
    const int viscosity = options.speed == "fast" ? 0 : options.speed == "medium" ? 1 : 2;
    return Send(
        context, options, "speed", text::kLabelSpeed,
        Value::Word(options.speed, Translated(options.speed)),
        [&](CCommand& command) { return command.SetTiltSpeed(viscosity); },
        [&](const CReg& reg) { // nobody can ask the receiver for it
            eBubbleConfig::LoadBubbleData(reg);
            eBubbleConfig::SetBubbleViscosity(viscosity);
            return eBubbleConfig::SaveBubbleData(reg);
        });
}

} // namespace

Command AddTiltCommand(CLI::App& program)
{
    const auto options = std::make_shared<TiltOptions>();
    const auto doing = [options](ExitCode (*act)(const Context&, const TiltOptions&)) {
        return [options, act](const Context& context) { return act(context, *options); };
    };
    const auto addSetting = [options](CLI::App& parser) {
        AddDryRun(parser, text::kOptTiltDry);
        options->port.AddTo(parser);
    };
    return AddCommands(program, {"tilt", text::kHelpTilt, {}, {}},
                       {{"show", text::kHelpTiltShow,
                         [options](CLI::App& parser) {
                             options->watch.AddTo(parser, 0.2);
                             options->port.AddTo(parser);
                         },
                         doing(Show)},
                        {"calibrate", text::kHelpTiltCalibrate,
                         [options](CLI::App& parser) {
                             AddConsent(parser, options->yes, text::kOptCalibrateDry);
                             options->port.AddTo(parser);
                         },
                         doing(Calibrate)},
                        {"expiry", text::kHelpTiltExpiry,
                         [=](CLI::App& parser) {
                             AddNumber(parser, "HOURS", options->hours, {1.0, 30000.0, "h"}, "",
                                       text::kOptHowLong)
                                 ->required();
                             addSetting(parser);
                         },
                         doing(SetExpiry)},
                        {"speed", text::kHelpTiltSpeed,
                         [=](CLI::App& parser) {
                             AddWord(parser, "SPEED", options->speed, {"fast", "medium", "slow"},
                                     "", text::kOptTiltSpeed)
                                 ->required();
                             addSetting(parser);
                         },
                         doing(SetSpeed)}});
}

} // namespace fieldcore::cli
