#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/TerminalHost.h"
#include "cli/TiltReport.h"
#include "cli/Watch.h"

#include "core/settings/HostReg.h"
#include "core/tilt/BubbleConfig.h"
#include "core/tilt/CalibrationRun.h"
#include "core/tilt/TiltSettings.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

struct TiltOptions
{
    PortOptions port;
    CLI::Option* watch = nullptr;
    double intervalS = 0.2;
    unsigned count = 0; ///< readings of the watch; 0: until Ctrl-C
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
    return RunWatch(context.world, sensor.session.GetClock(), options.intervalS, options.count,
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
        if (options.watch->count() > 0) {
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
        context.output.Progress(isCancelling ? "Cancelling the calibration"
                                             : "[" + std::to_string(run.ProgressPercent()) +
                                                   " %] calibrating; do not move the receiver");
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
    const bool canAsk = context.world.inIsTerminal && context.world.errIsTerminal;
    if (!options.yes && !context.dryRun && !canAsk) {
        return context.output.Failed(UsageFailure(
            "A calibration replaces the one that the sensor has, and nobody can be asked here "
            "whether the receiver stands level.",
            "--yes if it does, --dry-run to see how the sensor is"));
    }
    return WithSensor(context, options, [&](Sensor& sensor) {
        Report report;
        if (context.dryRun) {
            report.Add("outcome", "outcome", Value::Word("not-started", "not started"));
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
        report.Add("outcome", "outcome",
                   Value::Word(isDone ? "completed" : "failed", isDone ? "completed" : "failed"));
        AddTilt(report, sensor.session.Command().Heard());
        if (isDone) {
            return context.output.Done(report);
        }
        return context.output.Failed(
            run.Fault() != CommandFault::None
                ? RequestFailure(run.Fault(), "")
                : Failure{ExitCode::Failed, "calibration-failed", "The calibration failed.",
                          "Set the receiver up level, so that it cannot move, and try again."},
            &report);
    });
}

/// Tells the receiver a setting of its sensor.
/// @param keep  stores it here once the receiver has it; 0 if it could not be stored
ExitCode Send(const Context& context, const TiltOptions& options, const char* key,
              const char* label, Value value, const std::function<int(CCommand&)>& send,
              const std::function<int(const CReg&)>& keep)
{
    return WithSensor(context, options, [&](Sensor& sensor) {
        Report report;
        report.Add(key, label, value);
        if (!context.dryRun && send(sensor.session.Command()) == 0) {
            return context.output.Failed(sensor.session.RequestFailed());
        }
        report.Add("sent", "sent", Value::YesNo(!context.dryRun));
        if (!context.dryRun && keep(sensor.reg) == 0) {
            return context.output.Failed(
                FileFailure("The receiver has the setting, but it could not be stored.",
                            "fieldcore-cli doctor"),
                &report);
        }
        return context.output.Done(report);
    });
}

ExitCode SetExpiry(const Context& context, const TiltOptions& options)
{
    return Send(
        context, options, "expiryHours", "valid for", Value::Integer(options.hours, "h"),
        [&](CCommand& command) {
            return command.SetTiltValidity(static_cast<std::uint16_t>(options.hours));
        },
        [](const CReg&) { return 1; }); // the receiver keeps it
}

ExitCode SetSpeed(const Context& context, const TiltOptions& options)
{
    const int viscosity = options.speed == "fast" ? 0 : options.speed == "medium" ? 1 : 2;
    return Send(
        context, options, "speed", "speed", Value::Text(options.speed),
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
    CLI::App& parser =
        AddParser(program, "tilt", "The tilt sensor: reading, calibration and its settings",
                  "  fieldcore-cli tilt show --port /dev/ttyUSB0           once\n"
                  "  fieldcore-cli tilt show --port sim:tilted --watch     five times a second\n"
                  "  fieldcore-cli tilt calibrate --port /dev/ttyUSB0      asks first\n");
    parser.require_subcommand(1);
    const auto options = std::make_shared<TiltOptions>();
    CLI::App& show = AddParser(
        parser, "show", "How the sensor leans, and how its calibration is",
        "  fieldcore-cli tilt show --port /dev/ttyUSB0\n"
        "  fieldcore-cli tilt show --port sim:tilted --watch 1 --json   a document a second\n");
    options->watch = show.add_option("--watch", options->intervalS,
                                     "Again every so many seconds (0.2), until Ctrl-C")
                         ->expected(0, 1)
                         ->check(CLI::Range(0.1, 86400.0).description(""))
                         ->type_name("[SECONDS]");
    show.add_option("--count", options->count, "End the watch after so many readings")
        ->needs(options->watch)
        ->check(CLI::PositiveNumber.description(""))
        ->type_name("N");
    options->port.AddTo(show);

    CLI::App& calibrate =
        AddParser(parser, "calibrate", "Calibrate the sensor: the receiver must stand level",
                  "  fieldcore-cli tilt calibrate --port /dev/ttyUSB0\n"
                  "  fieldcore-cli tilt calibrate --port sim:tilted --yes --speed 20\n");
    CLI::Option* const yes = calibrate.add_flag("--yes", options->yes, "Do not ask");
    AddDryRun(calibrate, "Start nothing, show how the sensor is", yes);
    options->port.AddTo(calibrate);

    CLI::App& expiry = AddParser(parser, "expiry", "Set how long a calibration is valid",
                                 "  fieldcore-cli tilt expiry 720 --port /dev/ttyUSB0\n");
    expiry.add_option("HOURS", options->hours, "1 to 30000")
        ->required()
        ->check(CLI::Range(1, 30000).description(""))
        ->type_name("");
    AddDryRun(expiry, "Send nothing");
    options->port.AddTo(expiry);

    CLI::App& speed = AddParser(parser, "speed", "Set how fast the sensor's output follows",
                                "  fieldcore-cli tilt speed medium --port /dev/ttyUSB0\n");
    speed.add_option("SPEED", options->speed, "fast, medium or slow")
        ->required()
        ->check(CLI::IsMember({"fast", "medium", "slow"}).description(""))
        ->type_name("");
    AddDryRun(speed, "Send nothing and store nothing");
    options->port.AddTo(speed);

    return {&parser, [=, &show, &calibrate, &expiry](const Context& context) {
                return show.parsed()        ? Show(context, *options)
                       : calibrate.parsed() ? Calibrate(context, *options)
                       : expiry.parsed()    ? SetExpiry(context, *options)
                                            : SetSpeed(context, *options);
            }};
}

} // namespace fieldcore::cli
