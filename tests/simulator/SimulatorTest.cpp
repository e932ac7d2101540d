// The whole simulator from outside: a controller opens its port.

#include "simulator/Simulator.h"

#include "core/platform/FastClock.h"
#include "simulator/PseudoTerminal.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/simulator/Client.h"
#include "tests/simulator/Support.h"

#include <cstdlib>
#include <filesystem>
#include <numeric>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore::simulator::test {

namespace fs = std::filesystem;

TEST(Simulator, BytesSentWhileNobodyHasThePortOpenAreNotEchoed)
{
    const auto simulator = StartReceiver(Shipped("lark"));
    simulator->Send(Hex("02 00 40 00 40 03")); // an echo would be a request of type 0x40
    const Client client(simulator->PortPath());
    EXPECT_EQ(client.Receive(6), Hex("02 00 40 00 40 03"));
    EXPECT_EQ(client.Ask(kAbortRequest, 1), Bytes{kAck});
    EXPECT_EQ(simulator->RequestCount(), 1U);
}

TEST(Simulator, EveryByteValuePassesUnchangedInBothDirections)
{
    const auto simulator = StartReceiver(Shipped("lark"));
    Bytes heard;
    simulator->SetScripted([&](std::span<const std::uint8_t> request) {
        heard.assign(request.begin(), request.end());
        return heard;
    });
    Bytes data(255);
    std::iota(data.begin(), data.end(), std::uint8_t{1}); // 0 stands in the frame itself
    const Bytes frame = MakeFrame(0x32, data);
    const Client client(simulator->PortPath());
    EXPECT_EQ(client.Ask(frame, frame.size()), frame);
    simulator->SetScripted(nullptr);
    EXPECT_EQ(heard, frame);
}

TEST(Simulator, PullingTheCableHangsUpAndPluggingItInBringsThePortBack)
{
    const auto simulator = StartReceiver(Shipped("lark"));
    const std::string path = simulator->PortPath();
    for (int turn = 0; turn < 3; ++turn) {
        const Client client(path);
        ASSERT_EQ(client.Ask(kAbortRequest, 1), Bytes{kAck});
        simulator->HangUp();
        EXPECT_FALSE(fs::exists(fs::symlink_status(path))) << "the path would lead elsewhere";
        EXPECT_TRUE(client.SeesHangUp());
        ASSERT_TRUE(simulator->Plug());
        EXPECT_TRUE(simulator->Plug()) << "plugged in already";
        EXPECT_EQ(simulator->PortPath(), path);
    }
}

TEST(Simulator, HearsOnlyItsRateAndFollowsASetPortAfterItsAnswer)
{
    HandClock clock;
    const auto started = StartReceiver(Shipped("other-rate"), clock);
    Simulator& simulator = *started;
    const Client client(simulator.PortPath());
    const Bytes toSlow = MakeFrame(0x5E, Hex("01 00 00 25 80 08 00 00 00 00")); // 9600
    // The last is the time that passes behind it.
    const std::tuple<std::string_view, speed_t, Bytes, bool, std::chrono::milliseconds> rows[] = {
        {"the rate of a fresh pseudo-terminal", B38400, kAbortRequest, false, 0ms},
        {"a BREAK, whose answer would be noise", B9600, {0x00}, false, 0ms},
        {"its rate", B115200, kAbortRequest, true, 0ms},
        {"set port", B115200, toSlow, true, 199ms},
        {"the old rate until 200 ms have passed", B115200, kAbortRequest, true, 1ms},
        {"the old rate later", B115200, kAbortRequest, false, 0ms},
        {"the new rate", B9600, kAbortRequest, true, 0ms},
    };
    std::size_t heard = 0;
    for (const auto& [fault, rate, request, isHeard, then] : rows) {
        SCOPED_TRACE(fault);
        const std::size_t recorded = simulator.Record().size();
        ASSERT_TRUE(client.SetRate(rate) && client.Send(request));
        if (isHeard) {
            EXPECT_EQ(client.Receive(1), Bytes{kAck});
            ++heard;
        } else {
            // Noise stands in the record, so that its arrival can be waited for.
            while (simulator.Record().size() <= recorded) {
                std::this_thread::yield();
            }
        }
        EXPECT_EQ(simulator.RequestCount(), heard);
        clock.Advance(then);
    }
}

TEST(Simulator, ARequestThatStopsInTheMiddleIsForgotten)
{
    const FastClock clock(100.0);
    const auto simulator = StartReceiver(Shipped("lark"), clock);
    const Client client(simulator->PortPath());
    ASSERT_TRUE(client.Send(Hex("02 00 84 FF"))); // announces 255 bytes that never come
    while (simulator->Record().empty()) {
        std::this_thread::yield();
    }
    EXPECT_EQ(client.Ask(kAbortRequest, 1), Bytes{kAck});
}

TEST(Simulator, MayBeScriptedFromOtherThreadsWhileItAnswers)
{
    const auto simulator = StartReceiver(Shipped("lark"));
    std::thread meddler([&] {
        FaultRule rule;
        rule.kind = FaultKind::Duplicate;
        rule.requestType = 0x41;
        for (int i = 0; i < 200; ++i) {
            simulator->AddFault(rule);
            simulator->SetScripted(nullptr);
            static_cast<void>(simulator->Record());
            simulator->ClearFaults();
        }
    });
    const Client client(simulator->PortPath());
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(client.Ask(kAbortRequest, 1), Bytes{kAck});
    }
    meddler.join();
    EXPECT_EQ(simulator->RequestCount(), 200U);
}

TEST(Simulator, LeavesNoDescriptorThreadOrLinkBehind)
{
    {
        const auto warmUp = StartReceiver(Shipped("lark"));
    }
    const auto process = fieldcore::testing::CountProcess();
    std::string path;
    for (int i = 0; i < 200; ++i) {
        const auto simulator = StartReceiver(Shipped("lark"));
        path = simulator->PortPath();
        if (i % 2 == 0) {
            simulator->HangUp();
        }
    }
    EXPECT_EQ(fieldcore::testing::CountProcessAgain(process), process);
    EXPECT_FALSE(fs::exists(fs::path(path).parent_path()));
}

/// Another program's pseudo-terminal.
struct Terminal
{
    int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    std::string name = grantpt(master) == 0 && unlockpt(master) == 0 ? ptsname(master) : "";
    ~Terminal() { close(master); }
};

/// A link as a killed simulator leaves it, to a terminal that somebody else has got since.
std::unique_ptr<Terminal> LeaveLink(const fs::path& link)
{
    fs::remove(link);
    fs::create_symlink(std::make_unique<Terminal>()->name, link); // closed already
    struct stat made = {};
    struct stat terminal = {};
    lstat(link.c_str(), &made);
    for (;;) { // the clock of files has a coarse tick
        auto other = std::make_unique<Terminal>();
        if (stat(link.c_str(), &terminal) == 0 &&
            (terminal.st_ctim.tv_sec > made.st_ctim.tv_sec ||
             terminal.st_ctim.tv_nsec > made.st_ctim.tv_nsec)) {
            return other;
        }
    }
}

TEST(Simulator, TakesBackWhatAKilledOneLeft)
{
    const TemporaryFolder folder;
    const fs::path link = folder.Path() / "link";
    const auto left = LeaveLink(link);
    std::string error;
    {
        PseudoTerminal port(link);
        EXPECT_TRUE(port.Open(error)) << error;
        PseudoTerminal second(link);
        EXPECT_FALSE(second.Open(error)) << "the first one's";
        EXPECT_NE(error.find("a terminal in use"), std::string::npos) << error;
    }
    EXPECT_FALSE(fs::is_symlink(link));

    const fs::path killed = folder.Path() / "fieldcore-sim-killed";
    fs::create_directory(killed);
    const auto other = LeaveLink(killed / "receiver");
    setenv("TMPDIR", killed.parent_path().c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    {
        PseudoTerminal first("");
        PseudoTerminal second("");
        EXPECT_TRUE(first.Open(error) && second.Open(error)) << error;
        EXPECT_TRUE(fs::exists(first.Path())) << "the second one has removed it";
    }
    unsetenv("TMPDIR"); // NOLINT(concurrency-mt-unsafe)
    EXPECT_FALSE(fs::exists(killed));
}

} // namespace fieldcore::simulator::test
