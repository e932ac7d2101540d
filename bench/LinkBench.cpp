// What the link costs, against the plainest code that could do the same. The figures that count
// are the counters: ratios of two things measured in turn.

#include "bench/Allocations.h"
#include "bench/Measuring.h"
#include "core/link/Command.h"
#include "core/platform/PosixSerialDevice.h"
#include "tests/core/link/FarEnd.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

namespace fieldcore::bench {
namespace {

using namespace std::chrono_literals;
using testing::Bytes;
using testing::FarEnd;
using testing::Frame;
using testing::LongFrame;

constexpr std::size_t kRequestLength = 6;
constexpr std::size_t kReplyLength = 60;
const std::array<std::uint8_t, kRequestLength + 1> kStop{}; // no request has this length

/// The plainest port with a reader thread that one can write: poll, read, count bytes, wake the
/// waiter. No frames, no time-outs of its own, no errors: the yardstick of what a link must cost.
class BareLink
{
public:
    explicit BareLink(const std::string& path)
        : m_port(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {
        termios raw{};
        tcgetattr(m_port, &raw);
        cfmakeraw(&raw);
        tcsetattr(m_port, TCSANOW, &raw);
        m_reader = std::thread(&BareLink::Run, this);
    }
    ~BareLink()
    {
        eventfd_write(m_stop, 1);
        m_reader.join();
        close(m_stop);
        close(m_port);
    }
    BareLink(const BareLink&) = delete;
    BareLink& operator=(const BareLink&) = delete;

    void Write(std::span<const std::uint8_t> bytes) const
    {
        [[maybe_unused]] const ssize_t written = write(m_port, bytes.data(), bytes.size());
    }
    /// Waits until @p count bytes have come, and forgets them.
    void Await(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_count >= count; });
        m_count -= count;
    }
    /// How many bytes have come since they were last awaited.
    [[nodiscard]] std::size_t Count()
    {
        const std::scoped_lock lock(m_mutex);
        return m_count;
    }

private:
    void Run()
    {
        for (;;) {
            std::array<pollfd, 2> watched{pollfd{m_port, POLLIN, 0}, pollfd{m_stop, POLLIN, 0}};
            poll(watched.data(), watched.size(), -1);
            if (watched[1].revents != 0) {
                return;
            }
            const ssize_t count = read(m_port, m_buffer.data(), m_buffer.size());
            if (count > 0) {
                {
                    const std::scoped_lock lock(m_mutex);
                    m_count += static_cast<std::size_t>(count);
                }
                m_changed.notify_one();
            }
        }
    }

    const int m_port;
    const int m_stop = eventfd(0, EFD_CLOEXEC);
    std::vector<std::uint8_t> m_buffer = std::vector<std::uint8_t>(5120);
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_count = 0; // guarded by m_mutex
    std::thread m_reader;
};

/// Answers every six bytes with the same frame, in a thread that blocks while nothing comes.
class Echo
{
public:
    Echo() : m_thread([this] { Run(); }) {}
    /// After it was sent kStop, and before that port is closed: closing throws away what it has not
    /// read yet.
    void AwaitEnd() { m_thread.join(); }
    [[nodiscard]] const std::string& Path() const { return m_farEnd.Path(); }

private:
    void Run() const
    {
        const Bytes reply = Frame(0x09, Bytes(kReplyLength - 6, '1'));
        for (;;) {
            // Exactly one request at a time, or an extra reply would put the bare side ahead.
            Bytes request = m_farEnd.Receive();
            while (request.size() < kRequestLength) {
                request = testing::Joined({request, m_farEnd.Receive()});
            }
            if (request.size() != kRequestLength) {
                return;
            }
            m_farEnd.Send(reply);
        }
    }

    FarEnd m_farEnd;
    std::thread m_thread;
};

/// A 6-byte request and its 60-byte reply, ours and bare in turn.
void Exchange(benchmark::State& state)
{
    Echo bareEnd;
    Echo ourEnd;
    Comparison exchanges;
    long allocations = 0;
    {
        BareLink bare(bareEnd.Path());
        CCommand command;
        if (command.OpenPort(ourEnd.Path()) == 0) {
            state.SkipWithError("no port");
        }
        const Bytes request = Frame(0x08);
        const auto exchangeBare = [&] {
            bare.Write(request);
            bare.Await(kReplyLength);
        };
        for (auto _ : state) {
            command.BeginPacket(0x08, 0);
            command.EndPacket();
            exchanges.Turn(exchangeBare, [&] {
                const long before = AllocationCount();
                command.Exchange(CCommand::Answer::Reply);
                allocations += AllocationCount() - before;
            });
        }
        bare.Write(kStop);
        command.SendText(std::string_view("\0\0\0\0\0\0\0", kStop.size()));
        bareEnd.AwaitEnd();
        ourEnd.AwaitEnd();
    }
    state.counters["bare_us"] = exchanges.BareS() * 1e6;
    state.counters["ours_us"] = exchanges.OursS() * 1e6;
    state.counters["L1_median_ratio"] = exchanges.Ratio();
    state.counters["L2_p99_ratio"] = exchanges.Ratio(0.99);
    state.counters["alloc_per_exchange"] =
        static_cast<double>(allocations) / static_cast<double>(state.iterations());
}
BENCHMARK(Exchange)->MinTime(3.0)->UseRealTime();

/// Streams long frames through @p wait and returns the processor time of all but the sender.
template <typename Wait>
double Streamed(const FarEnd& end, const Bytes& frames, Wait wait)
{
    const double before = SecondsOf(CLOCK_PROCESS_CPUTIME_ID);
    double sender = 0.0;
    std::thread thread([&] {
        end.Send(frames);
        sender = SecondsOf(CLOCK_THREAD_CPUTIME_ID);
    });
    wait();
    thread.join();
    return SecondsOf(CLOCK_PROCESS_CPUTIME_ID) - before - sender;
}

/// Processor time of reading and assembling long frames, against reading the same bytes.
void LongFrames(benchmark::State& state)
{
    constexpr int kFrames = 2000;
    Bytes frames;
    const Bytes one = LongFrame(Bytes(1017, 0x5A));
    for (int i = 0; i < kFrames; ++i) {
        frames.insert(frames.end(), one.begin(), one.end());
    }
    const Bytes last = Frame(0x09, Bytes(21, '1'));
    frames.insert(frames.end(), last.begin(), last.end());
    std::vector<double> ratios;
    for (auto _ : state) {
        FarEnd bareEnd;
        FarEnd ourEnd;
        BareLink bare(bareEnd.Path());
        SerialLink link;
        if (link.Open(ourEnd.Path(), {}) == 0) {
            state.SkipWithError("no port");
            break;
        }
        // Neither side wakes anybody for what it reads: only reading and framing are compared.
        const double bareS = Streamed(bareEnd, frames, [&] {
            while (bare.Count() < frames.size()) {
                std::this_thread::sleep_for(2ms);
            }
        });
        const double ourS = Streamed(ourEnd, frames, [&] {
            while (link.GetDeliveredLength() != last.size()) {
                std::this_thread::sleep_for(2ms);
            }
        });
        ratios.push_back(ourS / bareS);
        state.counters["ours_us_per_frame"] = ourS / kFrames * 1e6;
        state.counters["bare_us_per_frame"] = bareS / kFrames * 1e6;
    }
    state.counters["L4_ratio"] = Quantile(ratios);
}
BENCHMARK(LongFrames)->Iterations(15)->UseRealTime();

/// How often the threads of this process but the calling one were switched to.
long SwitchesOfOthers()
{
    rusage all{};
    rusage own{};
    getrusage(RUSAGE_SELF, &all);
    getrusage(RUSAGE_THREAD, &own);
    return all.ru_nvcsw - own.ru_nvcsw;
}

/// Wake-ups of the reader of an idle open port in ten seconds.
void Idle(benchmark::State& state)
{
    const FarEnd end;
    SerialLink link;
    static_cast<void>(link.Open(end.Path(), {}));
    std::this_thread::sleep_for(50ms); // until the reader has settled
    for (auto _ : state) {
        const long before = SwitchesOfOthers();
        std::this_thread::sleep_for(10s);
        state.counters["L6_wakeups_in_10s"] = static_cast<double>(SwitchesOfOthers() - before);
    }
}
BENCHMARK(Idle)->Iterations(1)->UseRealTime();

/// How much later than asked a time-out comes.
void TimeOut(benchmark::State& state)
{
    const FarEnd end;
    SerialLink link;
    PortSettings settings;
    settings.replyTimeout = 120ms; // two slices and a rest
    static_cast<void>(link.Open(end.Path(), settings));
    double worst = 0.0;
    for (auto _ : state) {
        worst = std::max(worst, Timed([&] { link.WaitDelivery(); }) * 1000.0 - 120.0);
    }
    state.counters["L7_worst_late_ms"] = worst;
}
BENCHMARK(TimeOut)->Iterations(40)->UseRealTime();

} // namespace
} // namespace fieldcore::bench
