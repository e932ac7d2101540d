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

ExitCode List(const Context& context)
{
    Report::Table table{
        "scenarios",
        "",
        {{"name", Worded(text::kHeadName)}, {"title", Worded(text::kHeadWhatItShows)}},
        {}};
    for (const auto& [name, title] : simulator::ShippedScenarios()) {
        table.rows.push_back({Value::Text(name), Value::Text(title)});
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
    report.Add("port", Worded(text::kLabelPort), Value::Text(simulator.PortPath()));
    context.output.Done(report, simulator.PortPath() + "\n");
    context.output.Note("In another terminal: fieldcore-cli info --port " + simulator.PortPath() +
                        "\nCtrl-C ends it.");
    WaitForStop(context.world);
    context.output.Note(std::to_string(simulator.RequestCount()) + " requests.");
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
                                      child.arguments.front() + " does not start: " + error + "."});
    }
    return static_cast<ExitCode>(*code); // the command's own, whatever it means there
}

ExitCode RunScenario(const Context& context, const SimOptions& options)
{
    if (!context.userCommand.empty() && context.output.IsJson()) {
        return context.output.Failed(
            UsageFailure("The command's own output goes to stdout, so --json cannot be kept.",
                         "Leave --json out, or give it to the command."));
    }
    std::string error;
    std::optional<simulator::Scenario> scenario = simulator::LoadScenario(options.scenario, error);
    if (!scenario) {
        return context.output.Failed(
            UsageFailure("The scenario cannot be used: " + error + ".", "fieldcore-cli sim list"));
    }
    if (options.speed > 0.0) {
        scenario->speed = options.speed;
    }
    const std::string title = scenario->title;
    simulator::Simulator simulator(*scenario, *context.world.clock,
                                   {options.link, options.record, options.replay});
    if (!simulator.Start(error)) {
        return context.output.Failed({ExitCode::LocalFile, "simulator-not-started",
                                      "The simulator does not start: " + error + "."});
    }
    context.output.Note((options.replay.empty() ? title : "Replaying " + options.replay.string()) +
                        ".");
    return context.userCommand.empty() ? Serve(context, simulator)
                                       : StartCommand(context, simulator);
}

} // namespace

Command AddSimCommand(CLI::App& program)
{
    const auto options = std::make_shared<SimOptions>();
    const auto addOptions = [options](CLI::App& run) {
        CLI::Option* const scenario = AddText(run, "--scenario", options->scenario, "NAME",
                                              "A scenario's name, or a file (lark)");
        AddText(run, "--record", options->record, "FILE",
                "Write what is said to this file; see trace");
        AddText(run, "--replay", options->replay, "FILE",
                "Answer from such a file and not from a scenario")
            ->excludes(scenario);
        AddText(run, "--link", options->link, "PATH",
                "Where the port appears (a fresh temporary folder)");
        AddNumber(
            run, "--speed", options->speed,
            {FastClock::kLowestSpeed, FastClock::kHighestSpeed, "times", "as the scenario says"},
            "N", "How fast the receiver's time runs");
    };
    return AddCommands(
        program, {"sim", "A receiver in software", nullptr, {}, {}},
        {{"list",
          "Name the scenarios and what each one shows",
          "  fieldcore-cli sim list                           the scenarios there are\n",
          {},
          List},
         {"run", "Start one; print its port, or start a command that uses it",
          "  fieldcore-cli sim run --scenario pica            prints the port; Ctrl-C ends it\n"
          "  fieldcore-cli sim run --scenario noisy-line -- fieldcore-cli info\n"
          "  fieldcore-cli sim run -- my-program --device {port}\n"
          "                                            {port} is the port's path, which is in\n"
          "                                            FIELDCORE_PORT too; ends with my-program\n"
          "                                            and its exit code\n",
          addOptions,
          [options](const Context& context) { return RunScenario(context, *options); }}});
}

} // namespace fieldcore::cli
