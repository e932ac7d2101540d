// What it costs to start the programs, against the plainest program of their kind. Both sides run
// in turn; the counters are the ratios of their medians.

#include <algorithm>
#include <array>
#include <chrono>
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

struct Cost
{
    double seconds = 0.0;
    double peakKib = 0.0;
};

/// One start of a program until it has ended; what it prints is thrown away.
Cost Start(const char* program, const char* argument)
{
    std::array<char*, 3> arguments{const_cast<char*>(program), const_cast<char*>(argument),
                                   nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const auto began = std::chrono::steady_clock::now();
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
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
    return {took.count(), static_cast<double>(usage.ru_maxrss)};
}

double Median(std::vector<Cost>& costs, double Cost::*which)
{
    const auto middle = costs.begin() + static_cast<std::ptrdiff_t>(costs.size() / 2);
    std::nth_element(costs.begin(), middle, costs.end(),
                     [which](const Cost& a, const Cost& b) { return a.*which < b.*which; });
    return *middle.*which;
}

void Compare(benchmark::State& state, const char* ours, const char* argument, const char* bare)
{
    std::vector<Cost> ourCosts;
    std::vector<Cost> bareCosts;
    Start(ours, argument); // so that both are in memory
    Start(bare, nullptr);
    for ([[maybe_unused]] const auto& turn : state) {
        ourCosts.push_back(Start(ours, argument));
        bareCosts.push_back(Start(bare, nullptr));
    }
    const double ourMs = Median(ourCosts, &Cost::seconds) * 1e3;
    const double bareMs = Median(bareCosts, &Cost::seconds) * 1e3;
    const double ourPeak = Median(ourCosts, &Cost::peakKib) / 1024.0;
    const double barePeak = Median(bareCosts, &Cost::peakKib) / 1024.0;
    state.counters["ours_ms"] = ourMs;
    state.counters["bare_ms"] = bareMs;
    state.counters["time_ratio"] = ourMs / bareMs;
    state.counters["ours_MiB"] = ourPeak;
    state.counters["memory_ratio"] = ourPeak / barePeak;
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
