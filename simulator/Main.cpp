#include "core/platform/FastClock.h"
#include "simulator/Reference.h"
#include "simulator/Simulator.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <pthread.h>

namespace {

using namespace fieldcore::simulator;

constexpr int kUsage = 2;
constexpr int kFailed = 1;

constexpr const char* kPurpose =
    "A survey receiver in software, behind a port that any program can open.";

constexpr const char* kExamples =
    R"(Examples:
  fieldcore-simulator                            a healthy receiver; its port is the first line
  fieldcore-simulator --list                     the scenarios there are
  fieldcore-simulator --scenario noisy-line      one of them
  fieldcore-simulator --scenario mine.txt        one of your own
  fieldcore-simulator --link receiver            the port appears as ./receiver
  fieldcore-simulator --record exchange.log      keep what is said
  fieldcore-simulator --replay exchange.log      answer as it was answered then
  fieldcore-simulator --export-files folder      write the receiver's files, to compare with
)";

struct Arguments
{
    std::string scenario;
    SimulatorOptions options;
    double speed = 0.0;       // 0: the scenario's
    std::string exportFolder; // empty: none
    bool list = false;
};

void List()
{
    for (const auto& [name, title] : ShippedScenarios()) {
        std::printf("%-16s %s\n", name.c_str(), title.c_str());
    }
}

int Complain(const std::string& error, int code)
{
    std::fprintf(stderr, "fieldcore-simulator: %s\n", error.c_str());
    return code;
}

/// A name as it can be printed.
std::string Printable(const std::string& name)
{
    std::string text;
    for (const char c : name) {
        text += c >= ' ' && c <= '~' ? c : '?';
    }
    return text;
}

int Export(const Scenario& scenario, const std::string& folder)
{
    std::vector<std::string> leftOut;
    std::string error;
    if (!ExportFiles(scenario, folder, leftOut, error)) {
        return Complain(error, kFailed);
    }
    for (const std::string& name : leftOut) {
        std::fprintf(stderr, "fieldcore-simulator: \"%s\" is no name for a file, left out\n",
                     Printable(name).c_str());
    }
    std::printf("%zu files in %s\n", scenario.files.size() - leftOut.size(), folder.c_str());
    return 0;
}

/// Blocks the signals that end the program for every thread of it, so that WaitForEnd() alone
/// gets them and the port is closed in good order.
sigset_t HoldEndSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

int Run(const Arguments& arguments)
{
    std::string error;
    std::optional<Scenario> scenario = LoadScenario(arguments.scenario, error);
    if (!scenario) {
        return Complain(error, kUsage);
    }
    if (arguments.speed > 0.0) {
        scenario->speed = arguments.speed;
    }
    if (!arguments.exportFolder.empty()) {
        return Export(*scenario, arguments.exportFolder);
    }
    const sigset_t signals = HoldEndSignals();
    Simulator simulator(*scenario, fieldcore::SystemClock::Instance(), arguments.options);
    if (!simulator.Start(error)) {
        return Complain(error, kFailed);
    }
    std::printf("%s\n", simulator.PortPath().c_str());
    std::fflush(stdout); // who started us waits for this line
    const bool replays = !arguments.options.replayFile.empty();
    std::fprintf(stderr, "%s. Ctrl-C ends it.\n",
                 replays ? ("Replaying " + arguments.options.replayFile.string()).c_str()
                         : scenario->title.c_str());
    int received = 0;
    sigwait(&signals, &received);
    std::fprintf(stderr, "%zu requests.\n", simulator.RequestCount());
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        Arguments arguments;
        CLI::App app(std::string(kPurpose) + "\n\n" + kExamples);
        app.add_flag("--list", arguments.list, "Name the scenarios and what each one shows");
        auto* const scenario =
            app.add_option("--scenario", arguments.scenario, "A scenario's name, or a file (lark)");
        app.add_option("--link", arguments.options.link,
                       "Where the port appears (a fresh temporary folder)");
        app.add_option("--speed", arguments.speed,
                       "Receiver seconds in one second (as the scenario says)")
            ->check(CLI::Range(fieldcore::FastClock::kLowestSpeed,
                               fieldcore::FastClock::kHighestSpeed));
        app.add_option("--record", arguments.options.recordFile, "Write what is said to this file");
        app.add_option("--replay", arguments.options.replayFile,
                       "Answer from a recorded file and not from a scenario")
            ->excludes(scenario);
        app.add_option("--export-files", arguments.exportFolder,
                       "Write the scenario's files into this folder, and end");
        if (argc == 2 && std::string_view(argv[1]) == "--print-reference") {
            app.description(kPurpose);
            app.name("fieldcore-simulator");
            const std::string_view examples = kExamples;
            fieldcore::ReferencePrinter(std::cout).Print(
                app, std::string(examples.substr(examples.find('\n') + 1)));
            return 0;
        }
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            return app.exit(error) == 0 ? 0 : kUsage;
        }
        if (arguments.list) {
            List();
            return 0;
        }
        return Run(arguments);
    } catch (const std::exception& error) {
        return Complain(error.what(), kFailed);
    }
}
