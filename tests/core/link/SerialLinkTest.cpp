#include "core/link/SerialLink.h"

#include "tests/core/link/FarEnd.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualLine.h"

#include <string_view>
#include <thread>
#include <utility>

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using namespace testing;

const Bytes kReply = Frame(0x09, Bytes(21, '1'));

Bytes Take(SerialLink& link)
{
    Bytes buffer(kFrameBufferSize);
    buffer.resize(link.TakeDelivery(buffer).length);
    return buffer;
}

/// A link on a line in memory and one on a pseudo-terminal, with a short time-out.
class SerialLinkTest : public ::testing::Test
{
protected:
    SerialLinkTest() { settings.replyTimeout = 1s; }

    void Open() { ASSERT_EQ(link.Open("in memory", settings), 1); }
    void OpenReal() { ASSERT_EQ(real.Open(farEnd.Path(), settings), 1) << real.TakeFault().text; }

    PortSettings settings;
    testing::VirtualClock clock;
    testing::VirtualLine line{clock};
    SerialLink link{line.MakeDevice(), clock};
    FarEnd farEnd;
    SerialLink real;
};

/// A frame that can be told from the others.
Bytes Numbered(int number)
{
    return Frame(0x17, Bytes(200, static_cast<std::uint8_t>(number)));
}

TEST_F(SerialLinkTest, HandOverHoldsTheNextFramesBack)
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

TEST_F(SerialLinkTest, AReaderThatHoldsBackCanBeFreed)
{
    const std::pair<std::string_view, void (*)(SerialLink&)> rows[] = {
        {"leaving hand-over mode", [](SerialLink& one) { one.SetHandOver(false); }},
        {"another request", [](SerialLink& one) { one.ResetFrameReady(); }},
        {"a reset", [](SerialLink& one) { one.ResetReceiveState(); }},
    };
    settings.replyTimeout = 60s;
    for (const auto& [by, setFree] : rows) {
        SCOPED_TRACE(by);
        SerialLink full(line.MakeDevice(), clock);
        ASSERT_EQ(full.Open("in memory", settings), 1);
        full.SetHandOver(true);
        for (std::size_t i = 0; i < DeliveryQueue::kRoom + 2; ++i) {
            line.Send(Numbered(0));
        }
        clock.Sleep(20ms); // until it is full
        const auto start = clock.Steady();
        setFree(full);
        line.Send(kReply);
        Bytes taken(kFrameBufferSize);
        do {
            ASSERT_EQ(full.WaitDelivery(), 1);
        } while (full.TakeDelivery(taken).length != kReply.size());
        EXPECT_LT(clock.Steady() - start, 1s) << "the reader stood still";
    }
}

TEST_F(SerialLinkTest, TimeOutForgetsTheHalfFrame)
{
    Open();
    line.Send(std::span(kReply).first(9));
    EXPECT_EQ(link.WaitDelivery(), 0);
    EXPECT_EQ(link.TakeErrorCode(), LinkError::TimedOut);
    Bytes buffer(kFrameBufferSize, 0xEE);
    EXPECT_EQ(link.TakeDelivery(buffer).length, 0U);
    EXPECT_EQ(buffer, Bytes(kFrameBufferSize, 0)) << "nothing delivered must read as zeros";
    line.Send(kReply);
    ASSERT_EQ(link.WaitDelivery(), 1);
    EXPECT_EQ(Take(link), kReply);
}

TEST_F(SerialLinkTest, BreakIsPrecededByAZeroByte)
{
    Open();
    EXPECT_EQ(link.SendBreak(300ms), 1);
    EXPECT_EQ(line.TakeReceived(), Bytes{0x00});
}

TEST_F(SerialLinkTest, LosesNoFrameOfABurst)
{
    OpenReal();
    real.SetHandOver(true);
    for (const std::size_t data : {600U, 1017U}) { // frames of 607 and 1024 bytes
        const Bytes frame = LongFrame(Bytes(data, 0x5A));
        std::jthread sender([&] {
            for (int i = 0; i < 200; ++i) {
                farEnd.Send(frame);
            }
        });
        for (int i = 0; i < 200; ++i) {
            ASSERT_EQ(real.WaitDelivery(), 1) << "frame " << i;
            ASSERT_EQ(Take(real), frame) << "frame " << i;
        }
    }
}

TEST_F(SerialLinkTest, HangUpWakesTheWaiterAndIdlesTheReader)
{
    settings.replyTimeout = 60s; // which a lost link does not take
    OpenReal();
    std::jthread puller([&] {
        std::this_thread::sleep_for(5ms);
        farEnd.HangUp();
    });
    EXPECT_EQ(real.WaitDelivery(), 0);
    puller.join();
    EXPECT_TRUE(real.IsLost());
    EXPECT_EQ(real.Write(Frame(0x06)), 0U);
    EXPECT_EQ(real.TakeErrorCode(), LinkError::Write);
    EXPECT_EQ(real.WaitDelivery(), 0);

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

    EXPECT_EQ(real.Close(), 1);
    const FarEnd another;
    EXPECT_EQ(real.Open(another.Path(), settings), 1) << "a lost link must open again";
}

TEST_F(SerialLinkTest, RefusesWhatItCannotOpen)
{
    const auto refusal = [](const std::string& path, const PortSettings& with) {
        SerialLink other;
        EXPECT_EQ(other.Open(path, with), 0);
        EXPECT_FALSE(other.IsOpen());
        const PortFault fault = other.TakeFault();
        EXPECT_FALSE(fault.text.empty() && fault.error == LinkError::Open);
        return fault.error;
    };
    EXPECT_EQ(refusal("/dev/no-such-port", settings), LinkError::Open);
    EXPECT_EQ(refusal("/dev/null", settings), LinkError::Open) << "not a serial device";
    PortSettings wrong = settings;
    wrong.baudRate = 12345;
    EXPECT_EQ(refusal(farEnd.Path(), wrong), LinkError::LineSettings) << "a rate that is none";
    wrong = settings;
    wrong.flowControl = static_cast<FlowControl>(4);
    EXPECT_EQ(refusal(farEnd.Path(), wrong), LinkError::LineSettings) << "no flow code";
    OpenReal();
    EXPECT_EQ(refusal(farEnd.Path(), settings), LinkError::Open) << "opened twice";
}

TEST(SerialLink, OpensAndClosesInEveryState)
{
    PortSettings settings;
    settings.replyTimeout = 10s;
    const std::pair<std::string_view, void (*)(SerialLink&, FarEnd&)> states[] = {
        {"in the middle of a frame",
         [](SerialLink&, FarEnd& far) { far.Send(std::span(kReply).first(7)); }},
        {"with a frame handed over and not taken",
         [](SerialLink& link, FarEnd& far) {
             link.SetHandOver(true);
             far.Send(Joined({kReply, kReply}));
             link.WaitDelivery();
         }},
        {"during BREAK", [](SerialLink& link, FarEnd&) { link.SetBreak(); }},
        {"with its reader ended",
         [](SerialLink& link, FarEnd&) { link.SetEventMask(SerialDevice::EventMask::None); }},
    };
    const auto before = testing::CountProcess();
    for (int round = 0; round < 500; ++round) {
        const auto& [name, prepare] = states[static_cast<std::size_t>(round) % std::size(states)];
        SCOPED_TRACE(name);
        FarEnd far;
        SerialLink link;
        ASSERT_EQ(link.Open(far.Path(), settings), 1);
        prepare(link, far);
        const auto start = std::chrono::steady_clock::now();
        link.Close();
        ASSERT_LT(std::chrono::steady_clock::now() - start, 2s) << "closing waited for something";
        ASSERT_FALSE(link.IsOpen());
    }
    EXPECT_EQ(testing::CountProcessAgain(before), before) << "threads or descriptors leaked";
}

TEST(SettingsForLine, FollowsTheFlowControlTable)
{
    const auto lineFor = [](FlowControl flow) {
        PortSettings port;
        port.flowControl = flow;
        port.baudRate = 9600;
        // As the port was left before: everything the other way round.
        LineSettings line{1200, 5,    1,    2,    false, false, true, true, true,
                          true, true, true, true, true,  true,  true, false};
        EXPECT_TRUE(SettingsForLine(port, line));
        return line;
    };
    LineSettings expected;
    EXPECT_EQ(lineFor(FlowControl::None), expected);
    expected.dsrSensitivity = expected.dsrOutputFlow = expected.dtrEnabled = true;
    EXPECT_EQ(lineFor(FlowControl::DsrDtr), expected);
    expected.ctsOutputFlow = expected.rtsHandshake = true;
    EXPECT_EQ(lineFor(FlowControl::RtsCts), expected);
    expected = {.xonXoffOutput = true, .xonXoffInput = true, .sendAfterXoff = false};
    EXPECT_EQ(lineFor(FlowControl::Software), expected);
    PortSettings even;
    even.parity = 2;
    ASSERT_TRUE(SettingsForLine(even, expected));
    EXPECT_TRUE(expected.checkParity && expected.parity == 2);
}

TEST(LogFrame, AppendsADumpToTheBuiltInStorage)
{
    const TemporaryFolder folder;
    setenv("XDG_STATE_HOME", folder.Path().c_str(), 1);
    EXPECT_EQ(SerialLink::LogFrame(Direction::Sent, Frame(0x08)), 1);
    EXPECT_EQ(SerialLink::LogFrame(Direction::Received, Bytes{0xAB}), 1);
    EXPECT_EQ(ContentOf(folder.Path() / "fieldcore" / "gnsslog.log"),
              "00:1.000 Rcvr Tx [02 00 08 00 08 03 ]\r\n00:1.000 Rcvr Rx [AB ]\r\n");
    unsetenv("XDG_STATE_HOME");
}

} // namespace
} // namespace fieldcore
