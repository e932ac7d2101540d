#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>
#include <utility>

namespace fieldcore::testing {

/// How many threads and descriptors this process has.
using ProcessCounts = std::pair<std::ptrdiff_t, std::ptrdiff_t>;

[[nodiscard]] inline ProcessCounts CountProcess()
{
    // A sanitizer starts a thread of its own together with the first one of the program.
    static const bool started = [] {
        std::thread([] {}).join();
        return true;
    }();
    static_cast<void>(started);
    using Entries = std::filesystem::directory_iterator;
    return {std::distance(Entries("/proc/self/task"), Entries()),
            std::distance(Entries("/proc/self/fd"), Entries())};
}

/// Counts until the process is back at @p expected, at most two seconds: a thread that was joined
/// is listed a moment longer.
[[nodiscard]] inline ProcessCounts CountProcessAgain(const ProcessCounts& expected)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    ProcessCounts counts = CountProcess();
    while (counts != expected && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
        counts = CountProcess();
    }
    return counts;
}

} // namespace fieldcore::testing
