#include "core/link/Connect.h"
#include "tests/core/link/FarEnd.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/support/ProofSize.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <array>
#include <atomic>
#include <iterator>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>

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

using Ask = int (*)(CCommand& command);

int AskStatus(CCommand& command) // expects a reply
{
    StatusReply status;
    return command.RequestStatus(status);
}

int AskToStop(CCommand& command) // expects an ACK
{
    return command.SendAbort();
}

int AskToChange(CCommand& command) // the same, and changes the receiver
{
    return command.SetBoardSignals(1, 1, 1);
}

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
    {"Dropped", "drop", AskStatus, 2, 1},
    {"DroppedAck", "drop", AskToStop, 2, 1},
    {"CorruptedCheckByte", "corrupt", AskStatus, 2, 1},
    {"CorruptedLength", "corrupt 3", AskStatus, 2, -1},
    {"CorruptedStart", "corrupt 0", AskStatus, 2, -1},
    {"Duplicated", "duplicate", AskStatus, 1, 1},
    {"SplitAtEveryByte", "split", AskStatus, 1, 1},
    {"SplitInTheHeader", "split 3", AskStatus, 1, 1},
    {"DelayedBelowTheTimeOut", "delay 300", AskStatus, 1, 1},
    {"DelayedAboveTheTimeOut", "delay 1400", AskStatus, 2, 1},
    {"DelayedAckToAChange", "delay 1400", AskToChange, 2, 1},
    {"Nak", "nak", AskStatus, 1, 0},
    {"NakToACommand", "nak", AskToStop, 1, 0},
    {"NakStorm", "nak-storm", AskStatus, 0, -1},
    {"AckForAReply", "ack", AskStatus, 1, 0},
    {"ReplyForAnAck", "reply-for-ack", AskToStop, 1, 0},
    {"WrongType", "wrong-type", AskStatus, 1, 0},
    {"Unsolicited", "unsolicited", AskStatus, 1, 1},
    {"FrameBeforeTheRequest", "early", AskStatus, 1, -1},
    {"TwoFramesInABurst", "burst", AskStatus, 1, -1},
    {"GarbageBetweenFrames", "garbage", AskStatus, 0, -1},
    {"ZeroLength", "zero-length", AskStatus, 1, 0},
    {"OversizeLength", "oversize-length", AskStatus, 2, 1},
    {"OversizeLongFrame", "oversize-length 65535", AskStatus, 2, -1},
};

class FaultsTest : public ::testing::TestWithParam<Fault>
{
protected:
    /// How long an exchange may take. What changes the receiver first waits until nothing is due.
    static Clock::Duration Longest()
    {
        const auto longest = 2 * kReplyTimeout + 550ms + 50ms;
        return GetParam().ask == AskToChange ? 2 * longest : longest;
    }

    /// How many exchanges over a clean line fail of what is left in it.
    static int ExchangesUntilClean(VirtualReceiver& receiver)
    {
        int spoilt = 0;
        while (spoilt <= kMostSpoilt && GetParam().ask(receiver.command) == 0) {
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
            const int result = GetParam().ask(receiver.command);
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
    for (const auto& open : openCodes) {
        notYet.insert(open.first);
    }
    for (int n = 1; n < 200; ++n) {
        std::atomic<int> calls = 0;
        std::atomic<const char*> failed = "";
        const testing::ScriptedEnd receiver(line,
                                            {{reply}, {reply}, {reply}, {identity}, {identity}});
        line.SetFailing([&](const char* call) {
            const bool fails = ++calls == n;
            failed = fails ? call : failed.load();
            return fails;
        });
        CCommand command({nullptr, &clock, nullptr, [&] { return line.MakeDevice(); }});
        StatusReply status;
        IdentificationRecord record;
        const int opened = command.OpenPort("in memory");
        SCOPED_TRACE(failed.load());
        if (opened == 0) {
            ASSERT_TRUE(openCodes.contains(failed.load())) << "failed the opening";
            EXPECT_EQ(command.TakeLinkError(), openCodes.at(failed.load()));
            EXPECT_FALSE(command.LastError().empty());
        } else {
            const int asked = command.RequestStatus(status);
            const int identified = command.RequestIdentity(record);
            EXPECT_TRUE(asked == 1 || *failed.load() != '\0') << command.LastError();
            EXPECT_TRUE(identified == 1 || command.Fault() != CommandFault::None);
            command.ClosePort();
        }
        EXPECT_EQ(command.IsPortOpen(), 0);
        if (*failed.load() == '\0') { // a whole run had fewer calls than n
            break;
        }
        notYet.erase(failed.load());
    }
    EXPECT_EQ(notYet, std::set<std::string>()) << "were never made to fail";
    EXPECT_EQ(testing::CountProcessAgain(before), before) << "threads or descriptors leaked";
}

constexpr int kFollowing = 60; // exchanges after the one that was disturbed

/// Whether the answer is that to this question, of many of one type.
bool AskNumber(CCommand& command, int number)
{
    const auto low = static_cast<std::uint8_t>(number);
    return command.RequestHostData(0x20, low) == 1 && command.GetWord() == (0x2000U | low);
}

/// Answers of different types in turn.
bool AskKind(CCommand& command, int number)
{
    StatusReply status;
    OptionsReply options;
    SerialReply serial;
    return (number % 3 == 0   ? command.RequestStatus(status)
            : number % 3 == 1 ? command.RequestOptions(options)
                              : command.RequestSerial(serial)) == 1;
}

/// What disturbs one exchange.
struct Disturbance
{
    const char* name;
    const char* rule;
    void (*ask)(VirtualReceiver& receiver);
};

void AskOnce(VirtualReceiver& receiver)
{
    AskNumber(receiver.command, 0xFF);
}

constexpr Disturbance kDisturbances[] = {
    {"Doubled", "duplicate count 1", AskOnce},
    {"Late", "delay 1700 count 1", AskOnce},
    {"LateForBothAttempts", "delay 2600 count 1", AskOnce},
    {"Cancelled", "delay 300 count 1",
     [](VirtualReceiver& receiver) {
         receiver.host.breaths = 0;
         receiver.host.inBreath = [&] { return receiver.host.breaths < 2; };
         AskOnce(receiver);
         receiver.host.inBreath = nullptr;
     }},
    {"DoubledAck", "duplicate count 1", [](VirtualReceiver& r) { AskToStop(r.command); }},
    {"LateAck", "delay 1700 count 1", [](VirtualReceiver& r) { AskToStop(r.command); }},
    {"LateAfterWaking", "delay 1700 count 1",
     [](VirtualReceiver& receiver) { receiver.command.WakeReceiver(); }},
    {"LateAfterABreak", "delay 1700 count 1",
     [](VirtualReceiver& receiver) {
         IdentificationRecord record;
         receiver.command.RequestIdentity(record);
     }},
};

void PrintTo(const Disturbance& disturbance, std::ostream* out)
{
    *out << disturbance.rule;
}

class LateAnswersTest : public ::testing::TestWithParam<Disturbance>
{};

TEST_P(LateAnswersTest, SpoilOneOfTheFollowingAtMost)
{
    for (const std::uint32_t rate : std::span(kRates).first(3)) {
        for (const auto ask : {AskNumber, AskKind}) {
            VirtualReceiver receiver("", rate);
            receiver.Open(kReplyTimeout);
            for (int left = testing::Exchanges(kFollowing); left > 0; left -= kFollowing) {
                receiver.simulator.ClearFaults();
                receiver.AddFault(GetParam().rule);
                GetParam().ask(receiver);
                int wrong = 0;
                for (int i = 0; i < kFollowing; ++i) {
                    wrong += ask(receiver.command, i) ? 0 : 1;
                }
                testing::Measured(kFollowing, "exchanges");
                EXPECT_LE(wrong, 1) << "of " << kFollowing << " at rate " << rate
                                    << (ask == AskKind ? ", kinds in turn" : "");
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Link, LateAnswersTest, ::testing::ValuesIn(kDisturbances),
                         [](const auto& test) { return std::string(test.param.name); });

/// Of four files two are there. Whichever answer is late, each call says what became of its file;
/// only the one that was not answered in time may leave it open.
TEST(LateAnswers, NeverAnswerACommandThatChangesTheReceiver)
{
    constexpr std::string_view kFiles = "file AAA.Q01 10 2026-03-14 01:30\n"
                                        "file BBB.Q01 10 2026-03-14 01:30\n";
    constexpr std::string_view kNames[] = {"AAA.Q01", "CCC.Q01", "BBB.Q01", "EEE.Q01"};
    for (const std::uint32_t rate : std::span(kRates).first(3)) {
        for (std::size_t late = 0; late < std::size(kNames); ++late) {
            SCOPED_TRACE(std::to_string(rate) + ", late: " + std::string(kNames[late]));
            VirtualReceiver receiver(kFiles, rate);
            receiver.Open(kReplyTimeout);
            receiver.AddFault("delay 1700 on A0 count 1 skip " + std::to_string(late));
            std::array<int, std::size(kNames)> results{};
            bool isOpen = false; // what became of the late one
            for (std::size_t i = 0; i < std::size(kNames); ++i) {
                const std::wstring name(kNames[i].begin(), kNames[i].end());
                results[i] = receiver.command.DeleteFile_Lark(name);
                isOpen = isOpen || (i == late && results[i] == 0 &&
                                    receiver.command.Fault() != CommandFault::Refused);
            }
            receiver.clock.Sleep(3 *
                                 kReplyTimeout); // everything that was sent has been carried out
            EXPECT_TRUE(receiver.simulator.Files().empty());
            for (std::size_t i = 0; i < std::size(kNames); ++i) {
                const bool wasThere = kFiles.find(kNames[i]) != std::string_view::npos;
                EXPECT_TRUE((i == late && isOpen) || results[i] == (wasThere ? 1 : 0))
                    << kNames[i] << ": " << results[i];
            }
        }
    }
}

/// A receiver at 9600 bit/s that wakes up slowly.
TEST(LateAnswers, DoNotKeepASlowReceiverFromBeingConnected)
{
    for (int delayMs = 2050; delayMs <= 3000; delayMs += 50) {
        VirtualReceiver receiver("", 9600);
        receiver.AddFault("delay " + std::to_string(delayMs) + " count 1");
        ConnectTarget target;
        target.devicePath = receiver.line.FarPort().Path();
        ConnectSequence sequence(receiver.command, target);
        EXPECT_EQ(sequence.Run(), 1) << delayMs << " ms: " << sequence.FailureDetail();
    }
}

} // namespace
} // namespace fieldcore
