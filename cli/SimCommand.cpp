#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"

#include "core/platform/FastClock.h"
#include "simulator/Simulator.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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
    return WordedOr(scenario.title, scenario.titleJa);
}

Ending List(const Context& context, const SimOptions& /*options*/)
{
    Report::Table table{"scenarios"};
    for (const auto& [name, title] : simulator::ShippedScenarios()) {
        std::string error;
        const auto scenario = simulator::LoadScenario(name, error);
        table.rows.push_back({{"name", text::kHeadName, Value::Text(name)},
                              {"title", text::kHeadWhatItShows,
                               Value::Word(title, scenario ? TitleOf(*scenario) : title)}});
    }
    return context.output.Done(Report(std::move(table)));
}

std::vector<char*> Pointers(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// The environment of this process with @p more on top.
std::vector<std::string> With(const std::map<std::string, std::string>& more)
{
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view variable(*entry);
        if (!more.contains(std::string(variable.substr(0, variable.find('='))))) {
            environment.emplace_back(variable);
        }
    }
    for (const auto& [name, value] : more) {
        std::string variable = name;
        variable += '=';
        variable += value;
        environment.push_back(std::move(variable));
    }
    return environment;
}

constexpr std::array kStopSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<pid_t> childProcess{0};      // 0: it is not there yet
std::atomic<int> signalBeforeProcess{0}; // 0: none

extern "C" void PassOn(int number, siginfo_t* info, void* /*context*/)
{
    if (info->si_code > 0) {
        return; // by the system for the terminal's foreground, which the command belongs to
    }
    if (const pid_t process = childProcess.load(); process != 0) {
        kill(process, number);
    } else {
        signalBeforeProcess = number;
    }
}

/// Starts a command, found as a shell would find it, that shares this process's streams, and waits
/// for its end. A signal that asks this process for an end meanwhile is passed on to the command,
/// unless it came from the terminal, which tells both. One call at a time.
/// @param more   of the environment, on top of this process's own
/// @param error  why it was not started; untouched otherwise
/// @return its exit code, or 128 and the number of the signal that ended it; nothing if it was
///         not started
std::optional<int> RunChild(std::vector<std::string> arguments,
                            const std::map<std::string, std::string>& more, std::string& error)
{
    std::vector<std::string> environment = With(more);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t ours; // caught or ignored by this process; the command decides for itself
    sigemptyset(&ours);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        sigaddset(&ours, number);
    }
    posix_spawnattr_setsigdefault(&attributes, &ours);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    std::array<struct sigaction, kStopSignals.size()> actions{};
    for (struct sigaction& action : actions) {
        action.sa_sigaction = PassOn;
        action.sa_flags = SA_SIGINFO;
    }
    const auto exchangeActions = [&actions] { // and back at the second call
        for (std::size_t i = 0; i < kStopSignals.size(); ++i) {
            const struct sigaction next = actions[i];
            sigaction(kStopSignals[i], &next, &actions[i]);
        }
    };
    signalBeforeProcess = 0;
    exchangeActions();
    pid_t process = 0;
    const int failure = posix_spawnp(&process, arguments.front().c_str(), nullptr, &attributes,
                                     Pointers(arguments).data(), Pointers(environment).data());
    posix_spawnattr_destroy(&attributes);
    int status = 0;
    if (failure == 0) {
        childProcess = process;
        if (const int number = signalBeforeProcess.exchange(0); number != 0) {
            kill(process, number);
        }
        // Its number stays taken until it has been waited for: no signal meets a stranger.
        siginfo_t ended = {};
        while (waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT) < 0 &&
               errno == EINTR) {
        }
        childProcess = 0;
        waitpid(process, &status, 0); // at once
    }
    exchangeActions();
    if (failure != 0) {
        error = std::generic_category().message(failure);
        return std::nullopt;
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// Shows the port and leaves the simulator alone until the user has had enough.
Ending Serve(const Context& context, const simulator::Simulator& simulator)
{
    Report report;
    report.Add("port", text::kLabelPort, Value::Text(simulator.PortPath()));
    context.output.Done(report, simulator.PortPath() + "\n");
    context.output.Note({text::kSaySimServes, {simulator.PortPath()}});
    while (!context.world.StopRequested()) {
        SystemClock::Instance().Sleep(std::chrono::milliseconds(50));
    }
    context.output.Note({text::kSayRequests, {std::to_string(simulator.RequestCount())}});
    return ExitCode::Done;
}

Ending StartCommand(const Context& context, const simulator::Simulator& simulator)
{
    std::vector<std::string> arguments = context.userCommand;
    for (std::string& argument : arguments) {
        constexpr std::string_view kPort = "{port}";
        for (std::size_t at = argument.find(kPort); at != std::string::npos;
             at = argument.find(kPort, at + simulator.PortPath().size())) {
            argument.replace(at, kPort.size(), simulator.PortPath());
        }
    }
    if (context.world.StopRequested()) {
        return RequestFailure(CommandFault::Cancelled, "");
    }
    std::string error;
    const std::optional<int> code = RunChild(
        arguments,
        {{"FIELDCORE_PORT", simulator.PortPath()}, {kSimulatedPort, simulator.PortPath()}}, error);
    if (!code) {
        return Failure{.code = "command-not-started",
                       .message = Worded(text::kSayNotStarted, {arguments.front()}),
                       .detail = error};
    }
    return static_cast<ExitCode>(*code); // the command's own, whatever it means there
}

Ending RunScenario(const Context& context, const SimOptions& options)
{
    if (!context.userCommand.empty() && context.output.IsJson()) {
        return UsageFailure(text::kSayNoJsonHere, text::kSayNoJsonHereHint);
    }
    std::string error;
    std::optional<simulator::Scenario> scenario = simulator::LoadScenario(options.scenario, error);
    if (!scenario) {
        return ScenarioFailure(error);
    }
    if (options.speed > 0.0) {
        scenario->speed = options.speed;
    }
    const std::string title = TitleOf(*scenario);
    simulator::Simulator simulator(*scenario, context.world.GetClock(),
                                   {options.link, options.record, options.replay});
    if (!simulator.Start(error)) {
        return SimulatorFailure(ExitCode::LocalFile, error);
    }
    context.output.Note(
        options.replay.empty() ? title : Worded(text::kSayReplaying, {options.replay.string()}));
    return context.userCommand.empty() ? Serve(context, simulator)
                                       : StartCommand(context, simulator);
}

} // namespace

Command AddSimCommand(CLI::App& program)
{
    return AddCommand<SimOptions>(
        program, {"sim", text::kHelpSim},
        {{"list", text::kHelpSimList, nullptr, List},
         {"run", text::kHelpSimRun,
          [](CLI::App& parser, SimOptions& options) {
              CLI::Option* const scenario =
                  AddText(parser, "--scenario", options.scenario, "NAME", text::kOptScenario);
              AddText(parser, "--record", options.record, "FILE", text::kOptRecord);
              AddText(parser, "--replay", options.replay, "FILE", text::kOptReplay)
                  ->excludes(scenario);
              AddText(parser, "--link", options.link, "PATH", text::kOptLink);
              AddNumber(parser, "--speed", options.speed,
                        {FastClock::kLowestSpeed, FastClock::kHighestSpeed,
                         Worded(text::kUnitTimes), Worded(text::kSayAsScenario)},
                        "N", text::kOptSimSpeed);
          },
          RunScenario}});
}

} // namespace fieldcore::cli
