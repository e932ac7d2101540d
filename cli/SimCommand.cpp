#include "cli/ChildProcess.h"
#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/Wording.h"

#include "core/platform/FastClock.h"
#include "core/resources/StringTable.h"
#include "simulator/Simulator.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

namespace fieldcore::cli {

namespace {

struct SimOptions
{
    std::string scenario = "lark";
    std::filesystem::path record;
    std::filesystem::path link;
    std::filesystem::path replay;
    double speed = 0.0; ///< 0: the scenario's
};

std::string TitleOf(const simulator::Scenario& scenario)
{
    return IsEnglish() || scenario.titleJa.empty() ? scenario.title : scenario.titleJa;
}

ExitCode List(const Context& context)
{
    Report::Table table{
        "scenarios", "", {{"name", text::kHeadName}, {"title", text::kHeadWhatItShows}}, {}};
    for (const auto& [name, title] : simulator::ShippedScenarios()) {
        std::string error;
        const auto scenario = simulator::LoadScenario(name, error);
        table.rows.push_back(
            {Value::Text(name), Value::Word(title, scenario ? TitleOf(*scenario) : title)});
    }
    Report report;
    report.AddTable(std::move(table));
    return context.output.Done(report);
}

void WaitForStop(const World& world)
{
    while (!world.StopRequested()) {
        SystemClock::Instance().Sleep(std::chrono::milliseconds(50));
    }
}

/// Shows the port and leaves the simulator alone until the user has had enough.
ExitCode Serve(const Context& context, const simulator::Simulator& simulator)
{
    Report report;
    report.Add("port", text::kLabelPort, Value::Text(simulator.PortPath()));
    context.output.Done(report, simulator.PortPath() + "\n");
    context.output.Note(Worded(text::kSaySimServes, {simulator.PortPath()}));
    WaitForStop(context.world);
    context.output.Note(Worded(text::kSayRequests, {std::to_string(simulator.RequestCount())}));
    return ExitCode::Done;
}

ExitCode StartCommand(const Context& context, const simulator::Simulator& simulator)
{
    ChildProcess child;
    child.arguments = context.userCommand;
    for (std::string& argument : child.arguments) {
        constexpr std::string_view kPort = "{port}";
        for (std::size_t at = argument.find(kPort); at != std::string::npos;
             at = argument.find(kPort, at + simulator.PortPath().size())) {
            argument.replace(at, kPort.size(), simulator.PortPath());
        }
    }
    if (context.world.StopRequested()) {
        return context.output.Failed(RequestFailure(CommandFault::Cancelled, ""));
    }
    child.environment = {{"FIELDCORE_PORT", simulator.PortPath()},
                         {kSimulatedPort, simulator.PortPath()}};
    std::string error;
    const std::optional<int> code = RunChild(child, error);
    if (!code) {
        return context.output.Failed({ExitCode::Failed, "command-not-started",
                                      Worded(text::kSayNotStarted, {child.arguments.front()}), "",
                                      "", error});
    }
    return static_cast<ExitCode>(*code); // the command's own, whatever it means there
}

ExitCode RunScenario(const Context& context, const SimOptions& options)
{
    if (!context.userCommand.empty() && context.output.IsJson()) {
        return context.output.Failed(
            UsageFailure(Worded(text::kSayNoJsonHere), Worded(text::kSayNoJsonHereHint)));
    }
    std::string error;
    std::optional<simulator::Scenario> scenario = simulator::LoadScenario(options.scenario, error);
    if (!scenario) {
        return context.output.Failed(ScenarioFailure(error));
    }
    if (options.speed > 0.0) {
        scenario->speed = options.speed;
    }
    const std::string title = TitleOf(*scenario);
    simulator::Simulator simulator(*scenario, *context.world.clock,
                                   {options.link, options.record, options.replay});
    if (!simulator.Start(error)) {
        return context.output.Failed(SimulatorFailure(ExitCode::LocalFile, error));
    }
    context.output.Note(
        options.replay.empty() ? title : Worded(text::kSayReplaying, {options.replay.string()}));
    return context.userCommand.empty() ? Serve(context, simulator)
                                       : StartCommand(context, simulator);
}

} // namespace

Command AddSimCommand(CLI::App& program)
{
    const auto options = std::make_shared<SimOptions>();
    const auto addOptions = [options](CLI::App& run) {
        CLI::Option* const scenario =
            AddText(run, "--scenario", options->scenario, "NAME", text::kOptScenario);
        AddText(run, "--record", options->record, "FILE", text::kOptRecord);
        AddText(run, "--replay", options->replay, "FILE", text::kOptReplay)->excludes(scenario);
        AddText(run, "--link", options->link, "PATH", text::kOptLink);
        AddNumber(run, "--speed", options->speed,
                  {FastClock::kLowestSpeed, FastClock::kHighestSpeed, Worded(text::kUnitTimes),
                   Worded(text::kSayAsScenario)},
                  "N", text::kOptSimSpeed);
    };
    return AddCommands(program, {"sim", text::kHelpSim, {}, {}},
                       {{"list", text::kHelpSimList, {}, List},
                        {"run", text::kHelpSimRun, addOptions, [options](const Context& context) {
                             return RunScenario(context, *options);
                         }}});
}

} // namespace fieldcore::cli
