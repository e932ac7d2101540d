#include "core/link/SerialLink.h"

#include "core/platform/FastClock.h"
#include "tests/core/link/FarEnd.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/support/VirtualLine.h"

#include <filesystem>
#include <fstream>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Bytes;
using testing::FarEnd;
using testing::Frame;
using testing::Joined;
using testing::LongFrame;

Bytes Take(SerialLink& link)
{
    Bytes buffer(kFrameBufferSize);
    buffer.resize(link.TakeDelivery(buffer).length);
    return buffer;
}

/// A link on a line in memory, with a short time-out.
class VirtualLinkTest : public ::testing::Test
{
protected:
    VirtualLinkTest() { settings.replyTimeout = 1s; }

    void Open() { ASSERT_EQ(link.Open("in memory", settings), 1); }

    testing::VirtualClock clock;
    testing::VirtualLine line{clock};
    PortSettings settings;
    SerialLink link{line.MakeDevice(), clock};
};

/// A link on a far end of its own, with a short time-out.
class SerialLinkTest : public ::testing::Test
{
protected:
    SerialLinkTest() { settings.replyTimeout = 1s; }

    void Open() { ASSERT_EQ(link.Open(farEnd.Path(), settings), 1) << link.GetDeviceFault(); }

    FarEnd farEnd;
    PortSettings settings;
    SerialLink link;
};

TEST_F(SerialLinkTest, ReportsWhatItCannotDeliver)
{
    struct Row
    {
        std::string_view fault;
        Bytes sent;
        ExchangeState state;
        LinkError error;
    };
    const Row rows[] = {
        {"NAK without its code", {0x15}, ExchangeState::Nak, LinkError::Nak},
        {"foreign byte without its code", {0x41}, ExchangeState::Malformed, LinkError::Malformed},
        {"ACK with a code", {0x06}, ExchangeState::Ack, LinkError::None},
    };
    Open();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        farEnd.Send(row.sent);
        ASSERT_EQ(link.WaitDelivery(), 1);
        EXPECT_EQ(link.GetExchangeState(), row.state);
        EXPECT_EQ(link.TakeErrorCode(), row.error);
        EXPECT_EQ(link.TakeErrorCode(), LinkError::None) << "reading the code must clear it";
    }
}

/// A frame that can be told from the others.
Bytes Numbered(int number)
{
    return Frame(0x17, Bytes(200, static_cast<std::uint8_t>(number)));
}

TEST_F(VirtualLinkTest, HandOverHoldsTheNextFramesBack)
{
    Open();
    link.SetHandOver(true);
    constexpr int kFrames = 3 * static_cast<int>(DeliveryQueue::kRoom);
    Bytes all;
    for (int i = 0; i < kFrames; ++i) {
        all = Joined({all, Numbered(i)});
    }
    line.Send(all);
    for (int i = 0; i < kFrames - 1; ++i) {
        ASSERT_EQ(link.WaitDelivery(), 1) << i;
        clock.Sleep(2ms); // gives a reader that does not hold back time to overwrite
        ASSERT_EQ(Take(link), Numbered(i)) << i;
    }
    EXPECT_EQ(link.GetExchangeState(), ExchangeState::Frame);
    link.ResetFrameReady(); // a request is written: what waits is not its answer
    EXPECT_EQ(link.GetExchangeState(), ExchangeState::Nothing);
}

TEST_F(VirtualLinkTest, AReaderThatHoldsBackCanBeFreed)
{
    struct Row
    {
        std::string_view by;
        void (*free)(SerialLink& one);
    };
    const Row rows[] = {
        {"leaving hand-over mode", [](SerialLink& one) { one.SetHandOver(false); }},
        {"another request", [](SerialLink& one) { one.ResetFrameReady(); }},
        {"a reset", [](SerialLink& one) { one.ResetReceiveState(); }},
    };
    settings.replyTimeout = 60s;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.by);
        SerialLink full(line.MakeDevice(), clock);
        ASSERT_EQ(full.Open("in memory", settings), 1);
        full.SetHandOver(true);
        const Bytes last = Frame(0x09, Bytes(21, '1'));
        for (std::size_t i = 0; i < DeliveryQueue::kRoom + 2; ++i) {
            line.Send(Numbered(0));
        }
        clock.Sleep(20ms); // until it is full
        const auto start = clock.Steady();
        row.free(full);
        line.Send(last);
        Bytes taken(kFrameBufferSize);
        do {
            ASSERT_EQ(full.WaitDelivery(), 1);
        } while (full.TakeDelivery(taken).length != last.size());
        EXPECT_LT(clock.Steady() - start, 1s) << "the reader stood still";
    }
}

TEST_F(VirtualLinkTest, TimeOutForgetsTheHalfFrame)
{
    Open();
    const Bytes reply = Frame(0x09, Bytes(21, '1'));
    line.Send(std::span(reply).first(9));
    EXPECT_EQ(link.WaitDelivery(), 0);
    EXPECT_EQ(link.TakeErrorCode(), LinkError::TimedOut);
    Bytes buffer(kFrameBufferSize, 0xEE);
    EXPECT_EQ(link.TakeDelivery(buffer).length, 0U);
    EXPECT_EQ(buffer, Bytes(kFrameBufferSize, 0)) << "nothing delivered must read as zeros";
    line.Send(reply);
    ASSERT_EQ(link.WaitDelivery(), 1);
    EXPECT_EQ(Take(link), reply);
}

TEST_F(SerialLinkTest, LosesNoFrameOfABurst)
{
    Open();
    link.SetHandOver(true);
    for (const std::size_t data : {600U, 1017U}) { // frames of 607 and 1024 bytes
        const Bytes frame = LongFrame(Bytes(data, 0x5A));
        std::jthread sender([&] {
            for (int i = 0; i < 200; ++i) {
                farEnd.Send(frame);
            }
        });
        for (int i = 0; i < 200; ++i) {
            ASSERT_EQ(link.WaitDelivery(), 1) << "frame " << i;
            ASSERT_EQ(Take(link), frame) << "frame " << i;
        }
    }
}

TEST_F(SerialLinkTest, BreakIsPrecededByAZeroByte)
{
    const FastClock fast(100.0);
    SerialLink quick(nullptr, fast);
    ASSERT_EQ(quick.Open(farEnd.Path(), settings), 1);
    EXPECT_EQ(quick.SendBreak(300ms), 1);
    EXPECT_EQ(farEnd.Receive(1), (Bytes{0x00}));
}

TEST_F(SerialLinkTest, HangUpWakesTheWaiterAndIdlesTheReader)
{
    settings.replyTimeout = 60s;
    Open();
    const auto start = std::chrono::steady_clock::now();
    std::jthread puller([&] {
        std::this_thread::sleep_for(5ms);
        farEnd.HangUp();
    });
    EXPECT_EQ(link.WaitDelivery(), 0);
    puller.join();
    EXPECT_TRUE(link.IsLost());
    EXPECT_EQ(link.Write(Frame(0x06)), 0U);
    EXPECT_EQ(link.TakeErrorCode(), LinkError::Write);
    EXPECT_EQ(link.WaitDelivery(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s) << "a lost link was waited for";

    rusage before{};
    rusage after{};
    getrusage(RUSAGE_SELF, &before);
    std::this_thread::sleep_for(50ms);
    getrusage(RUSAGE_SELF, &after);
    const auto microseconds = [](const rusage& use) {
        return (use.ru_utime.tv_sec + use.ru_stime.tv_sec) * 1000000L + use.ru_utime.tv_usec +
               use.ru_stime.tv_usec;
    };
    EXPECT_LT(microseconds(after) - microseconds(before), 25000) << "the reader spins";

    EXPECT_EQ(link.Close(), 1);
    const FarEnd another;
    EXPECT_EQ(link.Open(another.Path(), settings), 1) << "a lost link must open again";
}

TEST_F(SerialLinkTest, RefusesWhatItCannotOpen)
{
    struct Row
    {
        std::string_view fault;
        std::string path;
        std::uint32_t baudRate;
        FlowControl flow;
        LinkError error;
    };
    const Row rows[] = {
        {"no device", "/dev/no-such-port", 9600, FlowControl::None, LinkError::Open},
        {"not a serial device", "/dev/null", 9600, FlowControl::None, LinkError::Open},
        {"a folder", "/", 9600, FlowControl::None, LinkError::Open},
        {"a rate that is none", farEnd.Path(), 12345, FlowControl::None, LinkError::LineSettings},
        {"a flow code that is none", farEnd.Path(), 9600, static_cast<FlowControl>(4),
         LinkError::LineSettings},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        settings.baudRate = row.baudRate;
        settings.flowControl = row.flow;
        EXPECT_EQ(link.Open(row.path, settings), 0);
        EXPECT_EQ(link.TakeErrorCode(), row.error);
        EXPECT_FALSE(link.GetDeviceFault().empty() && row.error == LinkError::Open);
        EXPECT_FALSE(link.IsOpen());
    }
    settings.baudRate = 9600;
    settings.flowControl = FlowControl::None;
    Open();
    SerialLink second;
    EXPECT_EQ(second.Open(farEnd.Path(), settings), 0) << "a port in use was opened twice";
    EXPECT_EQ(second.TakeErrorCode(), LinkError::Open);
}

TEST(SerialLink, OpensAndClosesInEveryState)
{
    PortSettings settings;
    settings.replyTimeout = 10s;
    const Bytes frame = Frame(0x09, Bytes(21, '1'));
    using Prepare = void (*)(SerialLink&, FarEnd&, const Bytes&);
    struct State
    {
        std::string_view name;
        Prepare prepare;
    };
    const State states[] = {
        {"idle", [](SerialLink&, FarEnd&, const Bytes&) {}},
        {"right after a delivery",
         [](SerialLink& link, FarEnd& far, const Bytes& f) {
             far.Send(f);
             link.WaitDelivery();
         }},
        {"in the middle of a frame",
         [](SerialLink&, FarEnd& far, const Bytes& f) { far.Send(std::span(f).first(7)); }},
        {"with a frame handed over and not taken",
         [](SerialLink& link, FarEnd& far, const Bytes& f) {
             link.SetHandOver(true);
             far.Send(Joined({f, f}));
             link.WaitDelivery();
         }},
        {"during BREAK", [](SerialLink& link, FarEnd&, const Bytes&) { link.SetBreak(); }},
        {"after a hang-up", [](SerialLink&, FarEnd& far, const Bytes&) { far.HangUp(); }},
        {"with its reader ended",
         [](SerialLink& link, FarEnd&, const Bytes&) {
             link.SetEventMask(SerialDevice::EventMask::None);
         }},
    };
    const auto before = testing::CountProcess();
    for (int round = 0; round < 500; ++round) {
        const State& state = states[static_cast<std::size_t>(round) % std::size(states)];
        SCOPED_TRACE(state.name);
        FarEnd far;
        SerialLink fresh;
        ASSERT_EQ(fresh.Open(far.Path(), settings), 1);
        state.prepare(fresh, far, frame);
        const auto start = std::chrono::steady_clock::now();
        fresh.Close();
        ASSERT_LT(std::chrono::steady_clock::now() - start, 2s) << "closing waited for something";
        ASSERT_FALSE(fresh.IsOpen());
    }
    EXPECT_EQ(testing::CountProcessAgain(before), before) << "threads or descriptors leaked";
}

TEST(SettingsForLine, FollowsTheFlowControlTable)
{
    struct Row
    {
        FlowControl flow;
        bool cts;
        bool rtsHandshake;
        bool dsr;
        bool dtr;
        bool xonXoff;
    };
    constexpr Row kRows[] = {
        {FlowControl::None, false, false, false, false, false},
        {FlowControl::Software, false, false, false, false, true},
        {FlowControl::RtsCts, true, true, true, true, false},
        {FlowControl::DsrDtr, false, false, true, true, false},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(static_cast<int>(row.flow));
        PortSettings port;
        port.flowControl = row.flow;
        port.parity = 2;
        LineSettings line;
        ASSERT_TRUE(SettingsForLine(port, line));
        EXPECT_TRUE(line.checkParity);
        EXPECT_EQ(line.ctsOutputFlow, row.cts);
        EXPECT_EQ(line.rtsHandshake, row.rtsHandshake);
        EXPECT_EQ(line.dsrSensitivity, row.dsr);
        EXPECT_EQ(line.dsrOutputFlow, row.dsr);
        EXPECT_EQ(line.dtrEnabled, row.dtr);
        EXPECT_EQ(line.xonXoffInput, row.xonXoff);
        EXPECT_EQ(line.xonXoffOutput, row.xonXoff);
        EXPECT_EQ(line.sendAfterXoff, !row.xonXoff);
    }
}

TEST(LogFrame, AppendsADumpToTheBuiltInStorage)
{
    const auto folder =
        std::filesystem::temp_directory_path() / ("fieldcore-log-" + std::to_string(::getpid()));
    setenv("XDG_STATE_HOME", folder.c_str(), 1);
    const Bytes request{0x02, 0x00, 0x08, 0x00, 0x08, 0x03};
    EXPECT_EQ(SerialLink::LogFrame(Direction::Sent, request), 1);
    EXPECT_EQ(SerialLink::LogFrame(Direction::Received, Bytes{0xAB}), 1);
    std::ifstream file(folder / "fieldcore" / "gnsslog.log", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(text, "00:1.000 Rcvr Tx [02 00 08 00 08 03 ]\r\n00:1.000 Rcvr Rx [AB ]\r\n");
    unsetenv("XDG_STATE_HOME");
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace fieldcore
