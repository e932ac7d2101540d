// What fetching the receiver's files costs, against the plainest loop that receives and
// writes the same blocks. The receiver runs in a process of its own. The figures that count are the
// counters: ratios of two things measured in turn.

#include "bench/Measuring.h"
#include "core/link/Command.h"
#include "simulator/Frame.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlock = 1000;       // bytes of a file in a frame
constexpr std::size_t kBlockFrame = 1012;  // and that frame on the line
constexpr std::size_t kHead = 10;          // of a frame, before the file's bytes
constexpr std::uint32_t kSize = 4'000'000; // of the file

/// As long as the program runs.
const fs::path& Folder()
{
    static const TemporaryFolder made;
    return made.Path();
}

fs::path Port()
{
    return Folder() / "port";
}

/// A simulated receiver with that file, in a process of its own. It tells when its port is there.
void Serve(const testing::Worker::Acknowledge& isReady)
{
    std::string error;
    simulator::SimulatorOptions options;
    options.link = Port();
    const auto scenario = simulator::ParseScenario(
        "model 3017\nfile BIG " + std::to_string(kSize) + " 2026-03-14 01:30\n", error);
    simulator::Simulator receiver(*scenario, SystemClock::Instance(), options);
    if (receiver.Start(error) && isReady()) {
        pause(); // until it is killed
    }
}

/// Asks for the file and writes what comes, frame by frame: no checks, no time-outs, no progress.
/// @return seconds, from the request on
double FetchBarely()
{
    const int line = open(Port().c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    tcgetattr(line, &settings);
    cfmakeraw(&settings);
    tcsetattr(line, TCSANOW, &settings);
    // The name, offset 0, and 0 blocks: all of them.
    const auto request = simulator::DataWriter().Text("BIG.Q01", 14).U32(0).U16(0).Frame(0x96);
    const double start = SecondsOf(CLOCK_MONOTONIC);
    static_cast<void>(write(line, request.data(), request.size()));

    const fs::path part = Folder() / "bare.part";
    const int file = open(part.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    std::array<std::uint8_t, 8192> buffer{};
    std::size_t held = 0;
    std::uint32_t got = 0;
    while (got < kSize) {
        const std::size_t block = std::min<std::size_t>(kBlock, kSize - got);
        const std::size_t frame = block + (kBlockFrame - kBlock);
        while (held < frame) {
            pollfd wait{line, POLLIN, 0};
            if (poll(&wait, 1, 5000) <= 0) {
                std::abort(); // a comparison with nothing
            }
            const ssize_t n = read(line, buffer.data() + held, buffer.size() - held);
            held += n > 0 ? static_cast<std::size_t>(n) : 0;
        }
        static_cast<void>(write(file, buffer.data() + kHead, block));
        std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(frame),
                  buffer.begin() + static_cast<std::ptrdiff_t>(held), buffer.begin());
        held -= frame;
        got += static_cast<std::uint32_t>(block);
    }
    fsync(file);
    close(file);
    std::error_code ignored;
    fs::rename(part, Folder() / "bare", ignored);
    const double seconds = SecondsOf(CLOCK_MONOTONIC) - start;
    close(line);
    return seconds;
}

/// A file as fast as it comes, bare and ours in turn; the ratio is the median of those of the
/// pairs, since other programs come and go.
void Transfer(benchmark::State& state)
{
    const fs::path& folder = Folder();
    testing::Worker receiver(Serve); // behind its folder, and before this program has threads
    receiver.Await(1);
    std::vector<double> bare;
    std::vector<double> ours;
    std::vector<double> ratios;
    for (auto _ : state) {
        bare.push_back(FetchBarely());
        CCommand command;
        std::int64_t fetched = 0;
        if (command.OpenPort(Port()) != 0) {
            ours.push_back(
                Timed([&] { fetched = command.DownloadFile(folder, L"BIG.Q01", kSize); }));
        }
        if (fetched != kSize) {
            state.SkipWithError("not fetched");
            break;
        }
        ratios.push_back(bare.back() / ours.back());
    }
    const bool isSame = fs::file_size(folder / "bare") == fs::file_size(folder / "BIG.Q01");
    state.counters["same_size"] = isSame ? 1 : 0;
    state.counters["bare_mb_per_s"] = kSize / 1e6 / Quantile(bare);
    state.counters["ours_mb_per_s"] = kSize / 1e6 / Quantile(ours);
    state.counters["F1_bare_over_ours"] = Quantile(ratios);
}
BENCHMARK(Transfer)->Iterations(31)->UseRealTime();

} // namespace
} // namespace fieldcore::bench
