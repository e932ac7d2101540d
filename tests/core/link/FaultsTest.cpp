#include "tests/core/link/FarEnd.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/support/ProofSize.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <map>
#include <ranges>
#include <set>
#include <span>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::VirtualReceiver;

constexpr auto kReplyTimeout = 1000ms;
constexpr auto kLongestDelay = 1400ms;
constexpr int kExchanges = 10;
constexpr int kMostSpoilt = 1;                               // by one stale answer
constexpr std::uint32_t kRates[] = {0, 9600, 38400, 115200}; // 0: in bursts

enum class Ask
{
    Status, ///< expects a reply
    Abort,  ///< expects an ACK
    Change, ///< the same, and changes the receiver
};

/// A fault, and how the exchange whose first attempt it hits must end.
struct Fault
{
    const char* name;
    const char* rule;
    Ask ask;
    std::size_t sends; ///< 0: one or two, as the bytes happen to fall
    int result;        ///< -1: either
};

void PrintTo(const Fault& fault, std::ostream* out)
{
    *out << fault.rule;
}

constexpr Fault kFaults[] = {
    {"Dropped", "drop", Ask::Status, 2, 1},
    {"DroppedAck", "drop", Ask::Abort, 2, 1},
    {"CorruptedCheckByte", "corrupt", Ask::Status, 2, 1},
    {"CorruptedLength", "corrupt 3", Ask::Status, 2, -1},
    {"CorruptedStart", "corrupt 0", Ask::Status, 2, -1},
    {"Duplicated", "duplicate", Ask::Status, 1, 1},
    {"SplitAtEveryByte", "split", Ask::Status, 1, 1},
    {"SplitInTheHeader", "split 3", Ask::Status, 1, 1},
    {"DelayedBelowTheTimeOut", "delay 300", Ask::Status, 1, 1},
    {"DelayedAboveTheTimeOut", "delay 1400", Ask::Status, 2, 1},
    {"DelayedAckToAChange", "delay 1400", Ask::Change, 2, 1},
    {"Nak", "nak", Ask::Status, 1, 0},
    {"NakToACommand", "nak", Ask::Abort, 1, 0},
    {"NakStorm", "nak-storm", Ask::Status, 0, -1},
    {"AckForAReply", "ack", Ask::Status, 1, 0},
    {"ReplyForAnAck", "reply-for-ack", Ask::Abort, 1, 0},
    {"WrongType", "wrong-type", Ask::Status, 1, 0},
    {"Unsolicited", "unsolicited", Ask::Status, 1, 1},
    {"FrameBeforeTheRequest", "early", Ask::Status, 1, -1},
    {"TwoFramesInABurst", "burst", Ask::Status, 1, -1},
    {"GarbageBetweenFrames", "garbage", Ask::Status, 0, -1},
    {"ZeroLength", "zero-length", Ask::Status, 1, 0},
    {"OversizeLength", "oversize-length", Ask::Status, 2, 1},
    {"OversizeLongFrame", "oversize-length 65535", Ask::Status, 2, -1},
};

class FaultsTest : public ::testing::TestWithParam<Fault>
{
protected:
    static int Exchange(VirtualReceiver& receiver)
    {
        StatusReply status;
        switch (GetParam().ask) {
        case Ask::Status:
            return receiver.command.RequestStatus(status);
        case Ask::Abort:
            return receiver.command.SendAbort();
        case Ask::Change:
            return receiver.command.SetBoardSignals(1, 1, 1);
        }
        return 0;
    }

    /// How long an exchange may take. What changes the receiver first waits until nothing is due.
    static Clock::Duration Longest()
    {
        const auto longest = 2 * kReplyTimeout + 550ms + 50ms;
        return GetParam().ask == Ask::Change ? 2 * longest : longest;
    }

    /// How many exchanges over a clean line fail of what is left in it.
    static int ExchangesUntilClean(VirtualReceiver& receiver)
    {
        int spoilt = 0;
        while (spoilt <= kMostSpoilt && Exchange(receiver) == 0) {
            ++spoilt;
        }
        return spoilt;
    }
};

TEST_P(FaultsTest, EveryExchangeEndsAsItMust)
{
    const Fault& fault = GetParam();
    for (const std::uint32_t rate : kRates) {
        SCOPED_TRACE(rate);
        VirtualReceiver receiver("", rate);
        receiver.Open(kReplyTimeout);
        std::size_t sends = 0;
        receiver.command.SetLineObserver(
            [&](Direction direction, LineUnit, std::span<const std::uint8_t>) {
                sends += direction == Direction::Sent ? 1 : 0;
            });
        for (int i = 0; i < testing::Exchanges(kExchanges); ++i) {
            SCOPED_TRACE(i);
            const bool hitsBothAttempts = i % 5 == 4;
            receiver.AddFault(fault.rule + std::string(" count ") + (hitsBothAttempts ? "2" : "1"));
            sends = 0;
            const auto start = receiver.clock.Steady();
            const int result = Exchange(receiver);
            EXPECT_LE(receiver.clock.Steady() - start, Longest()) << "it hangs";
            EXPECT_LE(sends, 2U);
            if (!hitsBothAttempts) {
                EXPECT_TRUE(fault.sends == 0 || sends == fault.sends) << sends << " sends";
                EXPECT_TRUE(fault.result == -1 || result == fault.result)
                    << receiver.command.LastError();
            }
            receiver.simulator.ClearFaults();
            EXPECT_LE(ExchangesUntilClean(receiver), kMostSpoilt) << receiver.command.LastError();
            receiver.clock.Sleep(kLongestDelay); // the answers that are still under way
        }
        testing::Measured(testing::Exchanges(kExchanges), "faults");
    }
}

INSTANTIATE_TEST_SUITE_P(Link, FaultsTest, ::testing::ValuesIn(kFaults),
                         [](const auto& test) { return std::string(test.param.name); });

/// Pulls the cable after every number of bytes of a request and of a reply.
TEST(HangUp, AtEveryByteOfRequestAndReply)
{
    constexpr int kRequestLength = 6;
    constexpr int kReplyLength = 27;
    VirtualReceiver receiver;
    const auto before = testing::CountProcess();
    for (int at = 0; at < kRequestLength + kReplyLength; ++at) {
        SCOPED_TRACE(at);
        receiver.Open(kReplyTimeout);
        receiver.AddFault(at < kRequestLength
                              ? "hang-up request " + std::to_string(at + 1) + " count 1"
                              : "hang-up reply " + std::to_string(at - kRequestLength) +
                                    " count 1");
        const auto start = receiver.clock.Steady();
        StatusReply status;
        EXPECT_EQ(receiver.command.RequestStatus(status), 0);
        EXPECT_EQ(receiver.command.Fault(), CommandFault::LinkLost) << receiver.command.LastError();
        EXPECT_EQ(receiver.command.RequestStatus(status), 0);
        EXPECT_LT(receiver.clock.Steady() - start, kReplyTimeout) << "a lost link was waited for";
        receiver.simulator.ClearFaults();
        ASSERT_TRUE(receiver.simulator.Plug());
        receiver.Open(kReplyTimeout);
        EXPECT_EQ(receiver.command.RequestStatus(status), 1) << receiver.command.LastError();
        receiver.command.ClosePort();
    }
    EXPECT_EQ(testing::CountProcessAgain(before), before) << "threads or descriptors leaked";
    testing::Measured(kRequestLength + kReplyLength, "hang-ups");
}

/// Fails the n-th call of the device for every n, over opening, a status request, a BREAK and
/// closing.
TEST(FailingDevice, EveryCallMayFail)
{
    const testing::VirtualClock clock;
    testing::VirtualLine line(clock);
    const auto reply = testing::Frame(0x09, testing::Ascii("1008000080 1.85    10"));
    const auto identity =
        testing::Frame(0x6E, testing::Ascii("ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43,"));
    const auto before = testing::CountProcess();
    const std::map<std::string, LinkError> openCodes{
        {"Open", LinkError::Open},
        {"SetQueueSizes", LinkError::None}, // closes the port; no code is assigned to it
        {"ReadSettings", LinkError::LineSettings},
        {"ApplySettings", LinkError::LineSettings},
        {"ApplyTimeouts", LinkError::Timeouts},
        {"SetEventMask", LinkError::EventMask},
        {"WaitEvent", LinkError::WaitEvent}, // when the reader is quick
    };
    std::set<std::string> notYet{"Read", "Write", "Purge", "SetBreak", "ClearBreak", "Close"};
    std::ranges::copy(std::views::keys(openCodes), std::inserter(notYet, notYet.end()));
    for (int n = 1;; ++n) {
        std::atomic<int> calls = 0;
        std::atomic<const char*> failed = nullptr;
        const testing::ScriptedEnd receiver(line,
                                            {{reply}, {reply}, {reply}, {identity}, {identity}});
        line.SetFailing([&](const char* call) {
            if (++calls != n) {
                return false;
            }
            failed = call;
            return true;
        });
        CCommand command({nullptr, &clock, nullptr, [&] { return line.MakeDevice(); }});
        if (command.OpenPort("in memory") == 0) {
            ASSERT_NE(failed.load(), nullptr);
            const auto expected = openCodes.find(failed.load());
            ASSERT_NE(expected, openCodes.end()) << failed.load() << " failed the opening";
            EXPECT_EQ(command.TakeLinkError(), expected->second) << failed.load();
            EXPECT_FALSE(command.LastError().empty());
            EXPECT_EQ(command.IsPortOpen(), 0);
        } else {
            StatusReply status;
            IdentificationRecord record;
            const int asked = command.RequestStatus(status);
            const int identified = command.RequestIdentity(record);
            if (failed.load() == nullptr) {
                EXPECT_EQ(asked, 1) << command.LastError();
            }
            EXPECT_TRUE(identified == 1 || command.Fault() != CommandFault::None);
            command.ClosePort();
            EXPECT_EQ(command.IsPortOpen(), 0);
        }
        if (failed.load() == nullptr) { // a whole run had fewer calls than n
            break;
        }
        notYet.erase(failed.load());
        ASSERT_LT(n, 200);
    }
    EXPECT_EQ(notYet, std::set<std::string>()) << "were never made to fail";
    EXPECT_EQ(testing::CountProcessAgain(before), before) << "threads or descriptors leaked";
}

} // namespace
} // namespace fieldcore
