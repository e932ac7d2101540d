// What fetching the receiver's files costs, against the plainest loop that receives and
// writes the same blocks. The receiver runs in a process of its own. The figures that count are the
// counters: ratios of two things measured in turn.

#include "bench/Measuring.h"
#include "core/link/Command.h"
#include "simulator/Frame.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <csignal>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlock = 1000;      // bytes of a file in a frame
constexpr std::size_t kBlockFrame = 1012; // and that frame on the line
constexpr std::size_t kHead = 10;         // of a frame, before the file's bytes

/// As long as the program runs.
const fs::path& Folder()
{
    static const TemporaryFolder made;
    return made.Path();
}

/// A simulated receiver in a process of its own, which ends with this object. Made before this
/// program has threads.
class OtherProcess
{
public:
    explicit OtherProcess(const std::string& scenario) : m_child(fork())
    {
        if (m_child == 0) {
            std::string error;
            simulator::SimulatorOptions options;
            options.link = m_path;
            simulator::Simulator receiver(*simulator::ParseScenario(scenario, error),
                                          SystemClock::Instance(), options);
            if (receiver.Start(error)) {
                pause(); // until it is killed
            }
            _exit(1);
        }
        while (!fs::exists(m_path) && waitpid(m_child, nullptr, WNOHANG) == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    ~OtherProcess()
    {
        kill(m_child, SIGKILL);
        waitpid(m_child, nullptr, 0);
        fs::remove(m_path);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    [[nodiscard]] static fs::path Path() { return Folder() / "port"; }

private:
    const fs::path m_path = Path(); // made before the other process
    const pid_t m_child;
};

std::string WithFile(std::uint32_t bytes)
{
    return "model 3017\nfile BIG " + std::to_string(bytes) + " 2026-03-14 01:30\n";
}

/// Asks for the file and writes what comes, frame by frame: no checks, no time-outs, no progress.
/// @return seconds, from the request on
double FetchBarely(const std::string& port, std::uint32_t size)
{
    const int line = open(port.c_str(), O_RDWR | O_NOCTTY);
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
    while (got < size) {
        const std::size_t block = std::min<std::size_t>(kBlock, size - got);
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

/// @return whether there is a port
bool Open(CCommand& command, benchmark::State& state)
{
    const bool isOpen = command.OpenPort(OtherProcess::Path()) != 0;
    if (!isOpen) {
        state.SkipWithError("no port");
    }
    return isOpen;
}

/// @return seconds
double Fetch(CCommand& command, std::uint32_t size, benchmark::State& state)
{
    return Timed([&] {
        if (command.DownloadFile(Folder(), L"BIG.Q01", size) != size) {
            state.SkipWithError("not fetched");
        }
    });
}

/// A file as fast as it comes, bare and ours in turn; the ratio is the median of those of the
/// pairs, since other programs come and go.
void Transfer(benchmark::State& state)
{
    constexpr std::uint32_t kSize = 4'000'000;
    const OtherProcess receiver(WithFile(kSize));
    std::vector<double> bare;
    std::vector<double> ours;
    std::vector<double> ratios;
    for (auto _ : state) {
        bare.push_back(FetchBarely(OtherProcess::Path(), kSize));
        CCommand command;
        if (!Open(command, state)) {
            break;
        }
        ours.push_back(Fetch(command, kSize, state));
        ratios.push_back(bare.back() / ours.back());
    }
    const bool isSame = fs::file_size(Folder() / "bare") == fs::file_size(Folder() / "BIG.Q01");
    state.counters["same_size"] = isSame ? 1 : 0;
    state.counters["bare_mb_per_s"] = kSize / 1e6 / Quantile(bare);
    state.counters["ours_mb_per_s"] = kSize / 1e6 / Quantile(ours);
    state.counters["F1_bare_over_ours"] = Quantile(ratios);
}
BENCHMARK(Transfer)->Iterations(31)->UseRealTime();

} // namespace
} // namespace fieldcore::bench
