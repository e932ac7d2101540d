// What it costs to start the programs, against the plainest program of their kind. Both sides run
// in turn; the counters are the ratios of their medians.

#include "bench/Measuring.h"

#include <array>
#include <cstdlib>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX leaves it to the user

namespace fieldcore::bench {
namespace {

/// Of starts, one a row.
struct Costs
{
    std::vector<double> seconds;
    std::vector<double> peakKib;
};

/// One start of a program until it has ended; what it prints is thrown away.
void Start(const char* program, const char* argument, Costs& costs)
{
    std::array<char*, 3> arguments{const_cast<char*>(program), const_cast<char*>(argument),
                                   nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const double began = SecondsOf(CLOCK_MONOTONIC);
    pid_t child = 0;
    if (posix_spawn(&child, program, &actions, nullptr, arguments.data(), environ) != 0) {
        std::abort();
    }
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::abort(); // a program that fails is quick
    }
    costs.seconds.push_back(SecondsOf(CLOCK_MONOTONIC) - began);
    costs.peakKib.push_back(static_cast<double>(usage.ru_maxrss));
}

void Compare(benchmark::State& state, const char* ours, const char* argument, const char* bare)
{
    Costs first;
    Start(ours, argument, first); // so that both are in memory
    Start(bare, nullptr, first);
    Costs ourCosts;
    Costs bareCosts;
    for ([[maybe_unused]] const auto& turn : state) {
        Start(ours, argument, ourCosts);
        Start(bare, nullptr, bareCosts);
    }
    const double ourS = Quantile(ourCosts.seconds);
    const double bareS = Quantile(bareCosts.seconds);
    const double ourKib = Quantile(ourCosts.peakKib);
    state.counters["ours_ms"] = ourS * 1e3;
    state.counters["bare_ms"] = bareS * 1e3;
    state.counters["time_ratio"] = ourS / bareS;
    state.counters["ours_MiB"] = ourKib / 1024.0;
    state.counters["memory_ratio"] = ourKib / Quantile(bareCosts.peakKib);
}

void CommandLineVersion(benchmark::State& state)
{
    Compare(state, FIELDCORE_CLI, "--version", FIELDCORE_PLAIN);
}
BENCHMARK(CommandLineVersion)->Iterations(101)->UseRealTime();

#ifdef FIELDCORE_APP
void ControllerFirstPage(benchmark::State& state)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    Compare(state, FIELDCORE_APP, "--first-page", FIELDCORE_BARE_QT);
}
BENCHMARK(ControllerFirstPage)->Iterations(51)->UseRealTime();
#endif

} // namespace
} // namespace fieldcore::bench
