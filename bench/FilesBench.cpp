// What fetching and listing the receiver's files cost, against the plainest loop that receives and
// writes the same blocks. The receiver runs in a process of its own. The figures that count are the
// counters: ratios of two things measured in turn.

#include "bench/Allocations.h"
#include "core/link/Command.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore::bench {
namespace {

namespace fs = std::filesystem;
using Seconds = std::chrono::duration<double>;

constexpr std::size_t kBlock = 1000;      // bytes of a file in a frame
constexpr std::size_t kBlockFrame = 1012; // and that frame on the line
constexpr std::size_t kHead = 10;         // of a frame, before the file's bytes
constexpr std::string_view kModel = "model 3017\nfirmware 3.20\noptions l2 rtk nmea glonass\n";

/// A folder that is there as long as the program runs.
const fs::path& Folder()
{
    struct Made
    {
        Made()
        {
            std::string name = (fs::temp_directory_path() / "fieldcore-bench-XXXXXX").string();
            path = mkdtemp(name.data()) != nullptr ? fs::path(name) : fs::path();
        }
        ~Made()
        {
            std::error_code ignored;
            fs::remove_all(path, ignored);
        }
        fs::path path;
    };
    static const Made made;
    return made.path;
}

/// A simulated receiver in a process of its own, which ends with this object. Made before this
/// program has threads.
class OtherProcess
{
public:
    explicit OtherProcess(const std::string& scenario)
    {
        std::array<int, 2> down{};
        std::array<int, 2> up{};
        if (pipe(down.data()) != 0 || pipe(up.data()) != 0) {
            return;
        }
        m_child = fork();
        if (m_child == 0) {
            close(down[1]);
            close(up[0]);
            Serve(scenario, down[0], up[1]);
        }
        close(down[0]);
        close(up[1]);
        m_end = down[1];
        char c = 0;
        while (read(up[0], &c, 1) == 1 && c != '\n') {
            m_path += c;
        }
        close(up[0]);
    }
    ~OtherProcess()
    {
        close(m_end);
        waitpid(m_child, nullptr, 0);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }

private:
    [[noreturn]] static void Serve(const std::string& text, int end, int out)
    {
        {
            std::string error;
            const auto scenario = simulator::ParseScenario(text, error);
            simulator::Simulator receiver(*scenario);
            if (receiver.Start(error)) {
                const std::string line = receiver.PortPath() + "\n";
                static_cast<void>(write(out, line.data(), line.size()));
                char c = 0;
                static_cast<void>(read(end, &c, 1)); // until the other side is gone
            }
        }
        _exit(0);
    }

    pid_t m_child = -1;
    int m_end = -1;
    std::string m_path;
};

std::string WithFile(std::uint32_t bytes, std::string_view more = "")
{
    return std::string(kModel) + std::string(more) + "file BIG " + std::to_string(bytes) +
           " 2026-03-14 01:30\n";
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
    // Type and length, the name in 14 bytes, offset 0, and 0 blocks: all of them.
    std::array<std::uint8_t, 26> request{0x02, 0x00, 0x96, 20};
    constexpr std::string_view kName = "BIG.Q01       ";
    std::copy(kName.begin(), kName.end(), request.begin() + 4);
    unsigned sum = 0;
    for (std::size_t at = 1; at < 24; ++at) {
        sum += request.at(at);
    }
    request[24] = static_cast<std::uint8_t>(sum);
    request[25] = 0x03;
    const auto start = std::chrono::steady_clock::now();
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
    const double seconds = Seconds(std::chrono::steady_clock::now() - start).count();
    close(line);
    return seconds;
}

double Median(std::vector<double>& values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

template <typename Action>
double Timed(Action action)
{
    const auto start = std::chrono::steady_clock::now();
    action();
    return Seconds(std::chrono::steady_clock::now() - start).count();
}

bool Open(CCommand& command, const OtherProcess& receiver, benchmark::State& state)
{
    if (command.OpenPort(receiver.Path()) == 0) {
        state.SkipWithError("no port");
        return false;
    }
    return true;
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
        bare.push_back(FetchBarely(receiver.Path(), kSize));
        CCommand command;
        if (!Open(command, receiver, state)) {
            break;
        }
        ours.push_back(Timed([&] {
            if (command.DownloadFile(Folder(), L"BIG.Q01", kSize) != kSize) {
                state.SkipWithError("not fetched");
            }
        }));
        ratios.push_back(bare.back() / ours.back());
    }
    const bool isSame = fs::file_size(Folder() / "bare") == fs::file_size(Folder() / "BIG.Q01");
    state.counters["same_size"] = isSame ? 1 : 0;
    state.counters["bare_mb_per_s"] = kSize / 1e6 / Median(bare);
    state.counters["ours_mb_per_s"] = kSize / 1e6 / Median(ours);
    state.counters["F1_bare_over_ours"] = Median(ratios);
}
BENCHMARK(Transfer)->Iterations(31)->UseRealTime();

/// A file over a line of 115,200 bit/s: how much of what such a line can carry.
void PacedTransfer(benchmark::State& state)
{
    constexpr std::uint32_t kSize = 100'000;
    constexpr double kBytesPerS = 11520.0;
    constexpr double kLimit = kBytesPerS * kBlock / kBlockFrame;
    const OtherProcess receiver(WithFile(kSize, "baud 115200\npacing baud\n"));
    std::vector<double> times;
    for (auto _ : state) {
        CCommand command;
        PortSettings settings;
        settings.baudRate = 115200;
        if (command.OpenPort(receiver.Path(), settings) == 0) {
            state.SkipWithError("no port");
            break;
        }
        times.push_back(Timed([&] {
            if (command.DownloadFile(Folder(), L"BIG.Q01", kSize) != kSize) {
                state.SkipWithError("not fetched");
            }
        }));
    }
    state.counters["bytes_per_s"] = kSize / Median(times);
    state.counters["F2_of_payload_limit"] = kSize / Median(times) / kLimit;
}
BENCHMARK(PacedTransfer)->Iterations(3)->UseRealTime();

/// Tells when the first record of a listing is posted, and how many pages had come by then.
class FirstRow final : public MessageTarget
{
public:
    void Post(unsigned, std::intptr_t wParam, std::intptr_t) override
    {
        if (wParam == 0 && rows++ == 0) {
            first = std::chrono::steady_clock::now();
            pagesBefore = pages;
        }
    }
    std::chrono::steady_clock::time_point first;
    int rows = 0;
    int pages = 0;
    int pagesBefore = 0;
};

/// A list of 512 files over a line of 38,400 bit/s.
void Listing(benchmark::State& state)
{
    constexpr std::uint8_t kPage = 0x9D;
    const OtherProcess receiver(std::string(kModel) +
                                "pacing baud\nfree-memory files\nfiles 512 2048 2048\n");
    auto table = std::make_unique<DirectoryTable>();
    std::vector<double> first;
    std::vector<double> all;
    double pages = 0.0;
    for (auto _ : state) {
        CCommand command;
        if (!Open(command, receiver, state)) {
            break;
        }
        FirstRow rows;
        command.SetLineObserver([&](Direction direction, LineUnit,
                                    std::span<const std::uint8_t> frame) {
            rows.pages +=
                direction == Direction::Received && frame.size() > 2 && frame[2] == kPage ? 1 : 0;
        });
        const auto start = std::chrono::steady_clock::now();
        all.push_back(Timed([&] { command.RequestFiles_Lark(L"*.Q01", *table, &rows); }));
        first.push_back(Seconds(rows.first - start).count());
        pages = std::max(pages, static_cast<double>(rows.pagesBefore));
        if (rows.rows != 512) {
            state.SkipWithError("not all files were listed");
        }
    }
    state.counters["first_ms"] = 1000.0 * Median(first);
    state.counters["all_ms"] = 1000.0 * Median(all);
    state.counters["F3_pages_before_first_row"] = pages;
}
BENCHMARK(Listing)->Iterations(3)->UseRealTime();

/// The most memory that this process has ever used, KiB.
double PeakKib()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            double kib = 0.0;
            status >> kib;
            return kib;
        }
    }
    return 0.0;
}

/// What a file of 64 MB needs more than one of 1 MB.
void Memory(benchmark::State& state)
{
    constexpr std::uint32_t kSmall = 1'000'000;
    constexpr std::uint32_t kBig = 64'000'000;
    double peak = 0.0;
    double allocations = 0.0;
    for (auto _ : state) {
        std::array<double, 2> peaks{};
        std::array<double, 2> counts{};
        for (std::size_t at = 0; at < 2; ++at) {
            const std::uint32_t size = at == 0 ? kSmall : kBig;
            const OtherProcess receiver(WithFile(size));
            CCommand command;
            if (!Open(command, receiver, state)) {
                return;
            }
            const long before = AllocationCount();
            if (command.DownloadFile(Folder(), L"BIG.Q01", size) != size) {
                state.SkipWithError("not fetched");
            }
            counts.at(at) = static_cast<double>(AllocationCount() - before);
            peaks.at(at) = PeakKib();
        }
        peak = peaks[1] - peaks[0];
        allocations = counts[1] - counts[0];
    }
    state.counters["F4_peak_growth_kib"] = peak;
    state.counters["allocations_more"] = allocations;
}
BENCHMARK(Memory)->Iterations(1)->UseRealTime();

} // namespace
} // namespace fieldcore::bench
