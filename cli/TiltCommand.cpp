#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"
#include "cli/Watch.h"

#include "core/settings/HostReg.h"
#include "core/tilt/BubbleConfig.h"
#include "core/tilt/CalibrationRun.h"
#include "core/tilt/TiltSettings.h"

#include <cstdint>
#include <functional>
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

constexpr WatchColumn kColumns[] = {
    {"state", "STATE", 17},
    {"tiltDeg", "TILT", 14},
    {"t1Deg", "FIRST COMPONENT", 17},
    {"t2Deg", "SECOND COMPONENT", 18},
    {"calibration", "CALIBRATION", 0},
};

/// The receiver and its sensor for the time of one command.
struct Sensor
{
    PortSession& session;
    TiltSettings& tilt;

    [[nodiscard]] std::optional<Failure> Read(Receiver& reading) const
    {
        tilt.Refresh();
        reading = session.Command().Heard();
        return tilt.Reading() ? std::nullopt : std::optional(session.RequestFailed());
    }
};

void AddTilt(Report& report, const Receiver& reading)
{
    AddFields(report, reading, ReceiverField::Tilt);
}

/// Connects, and makes sure that there is a sensor that answers.
Ending WithSensor(const Context& context, const TiltOptions& options,
                  const std::function<Ending(Sensor&, Receiver&)>& act)
{
    PortSession session(context, options.port, options.yes);
    if (const auto failure = session.Connect()) {
        return *failure;
    }
    TiltSettings tilt(&session.Command());
    Sensor sensor{session, tilt};
    Receiver reading;
    if (const auto failure = sensor.Read(reading)) {
        return *failure;
    }
    return act(sensor, reading);
}

Ending Show(const Context& context, const TiltOptions& options)
{
    return WithSensor(context, options, [&](Sensor& sensor, Receiver& reading) -> Ending {
        if (options.watch.IsWanted()) {
            return RunWatch(context, sensor.session.GetClock(), options.watch,
                            {[&](Receiver& next) { return sensor.Read(next); }, AddTilt, kColumns});
        }
        Report report;
        AddTilt(report, reading);
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
        context.output.Progress({isCancelling ? text::kProgressCancels : text::kProgressCalibrates,
                                 {std::to_string(run.ProgressPercent())}});
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
    command.SetHost(sensor.session.GetHost());
}

Ending Calibrate(const Context& context, const TiltOptions& options)
{
    if (!options.yes && !context.dryRun && !context.world.CanAsk()) {
        return UsageFailure(text::kSayCalibrationNobody, text::kSayCalibrationHint);
    }
    return WithSensor(context, options, [&](Sensor& sensor, Receiver& reading) -> Ending {
        Report report;
        if (context.dryRun) {
            report.Add("outcome", text::kLabelOutcome, Term("not-started", text::kWordNotStarted));
            AddTilt(report, reading);
            return context.output.Done(report);
        }
        if (!sensor.tilt.MayCalibrate(sensor.session.GetHost())) {
            return RequestFailure(CommandFault::Cancelled, "");
        }
        CalibrationRun run;
        Follow(context, sensor, run);
        TiltSettings::LastRun() = run.Result();
        if (run.GetState() == CalibrationRun::State::Aborted) {
            return RequestFailure(CommandFault::Cancelled, "");
        }
        static_cast<void>(sensor.Read(reading));
        const bool isDone = run.GetState() == CalibrationRun::State::Done;
        const std::string outcome = isDone ? "completed" : "failed";
        report.Add("outcome", text::kLabelOutcome, Value::Word(outcome, Translated(outcome)));
        AddTilt(report, reading);
        if (isDone) {
            return context.output.Done(report);
        }
        return context.output.Failed(run.Fault() != CommandFault::None
                                         ? RequestFailure(run.Fault(), "")
                                         : Failure{ExitCode::Failed, "calibration-failed",
                                                   text::kSayCalibrationFailed,
                                                   text::kSayCalibrationAgain},
                                     &report);
    });
}

/// Tells the receiver a setting of its sensor.
/// @param keep  stores it here once the receiver has it; 0 if it could not be stored. Null: only
///              the receiver keeps it.
Ending Send(const Context& context, const TiltOptions& options, const char* key, int label,
            Value value, const std::function<int(CCommand&)>& send,
            const std::function<int(const CReg&)>& keep)
{
    return WithSensor(context, options, [&](Sensor& sensor, Receiver&) -> Ending {
        Report report;
        report.Add(key, label, value);
        if (!context.dryRun && send(sensor.session.Command()) == 0) {
            return sensor.session.RequestFailed();
        }
        report.Add("sent", text::kLabelSent, Value::YesNo(!context.dryRun));
        const bool isKept = keep != nullptr;
        if (!context.dryRun && isKept && keep(HostReg(context.world.Roots())) == 0) {
            return context.output.Failed(
                FileFailure(text::kSayTiltNotStored, "fieldcore-cli doctor"), &report);
        }
        return isKept ? Kept(context, report) : context.output.Done(report);
    });
}

Ending SetExpiry(const Context& context, const TiltOptions& options)
{
    return Send(
        context, options, "expiryHours", text::kFieldExpiry, Value::Integer(options.hours, "h"),
        [&](CCommand& command) {
            return command.SetTiltValidity(static_cast<std::uint16_t>(options.hours));
        },
        nullptr);
}

Ending SetSpeed(const Context& context, const TiltOptions& options)
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

void AddSetting(CLI::App& parser, TiltOptions& options)
{
    AddDryRun(parser, text::kOptTiltDry);
    options.port.AddTo(parser);
}

} // namespace

Command AddTiltCommand(CLI::App& program)
{
    return AddCommand<TiltOptions>(
        program, {"tilt", text::kHelpTilt},
        {{"show", text::kHelpTiltShow,
          [](CLI::App& parser, TiltOptions& options) {
              options.watch.AddTo(parser, 0.2);
              options.port.AddTo(parser);
          },
          Show},
         {"calibrate", text::kHelpTiltCalibrate,
          [](CLI::App& parser, TiltOptions& options) {
              AddConsent(parser, options.yes, text::kOptCalibrateDry);
              options.port.AddTo(parser);
          },
          Calibrate},
         {"expiry", text::kHelpTiltExpiry,
          [](CLI::App& parser, TiltOptions& options) {
              AddNumber(parser, "HOURS", options.hours, {1.0, 30000.0, "h"}, "", text::kOptHowLong)
                  ->required();
              AddSetting(parser, options);
          },
          SetExpiry},
         {"speed", text::kHelpTiltSpeed,
          [](CLI::App& parser, TiltOptions& options) {
              AddWord(parser, "SPEED", options.speed, {"fast", "medium", "slow"}, "",
                      text::kOptTiltSpeed)
                  ->required();
              AddSetting(parser, options);
          },
          SetSpeed}});
}

} // namespace fieldcore::cli
