#include "core/link/Command.h"

#include "core/platform/FastClock.h"
#include "simulator/Simulator.h"
#include "tests/core/link/ProcessCounts.h"

#include <span>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using simulator::FaultKind;
using simulator::FaultRule;
using simulator::Simulator;

constexpr double kSpeed = 100.0;
constexpr auto kReplyTimeout = 1000ms; // 10 ms on a watch
constexpr auto kLongestDelay = 1400ms;
constexpr auto kPatientTimeout = 10000ms; // where no time-out is to come
// What the machine may take for itself, on a watch: now and then, and at the very worst.
constexpr auto kSlack = 20ms;
constexpr auto kWorstSlack = 10000ms;
constexpr int kExchanges = 1000;
constexpr int kMostDisturbed = kExchanges / 20; // exchanges that a busy machine may spoil

enum class Ask
{
    Status, ///< expects a reply
    Abort,  ///< expects an ACK
};

/// A fault, and how the exchange whose first attempt it hits must end.
struct Fault
{
    const char* name;
    const char* rule;
    Ask ask;
    std::size_t sends; ///< 0: one or two, as the bytes happen to fall
    int result;        ///< -1: either
    std::chrono::milliseconds replyTimeout = kReplyTimeout;
};

void PrintTo(const Fault& fault, std::ostream* out)
{
    *out << fault.rule;
}

constexpr Fault kFaults[] = {
    {"Dropped", "drop", Ask::Status, 2, 1},
    {"DroppedAck", "drop", Ask::Abort, 2, 1},
    {"CorruptedCheckByte", "corrupt", Ask::Status, 2, 1, kPatientTimeout},
    {"CorruptedLength", "corrupt 3", Ask::Status, 2, -1},
    {"CorruptedStart", "corrupt 0", Ask::Status, 2, -1},
    {"Duplicated", "duplicate", Ask::Status, 1, 1, kPatientTimeout},
    {"SplitAtEveryByte", "split", Ask::Status, 1, 1, kPatientTimeout},
    {"SplitInTheHeader", "split 3", Ask::Status, 1, 1, kPatientTimeout},
    {"DelayedBelowTheTimeOut", "delay 300", Ask::Status, 1, 1, kPatientTimeout},
    {"DelayedAboveTheTimeOut", "delay 1400", Ask::Status, 2, 1},
    {"Nak", "nak", Ask::Status, 1, 0, kPatientTimeout},
    {"NakToACommand", "nak", Ask::Abort, 1, 0, kPatientTimeout},
    {"NakStorm", "nak-storm", Ask::Status, 0, -1},
    {"AckForAReply", "ack", Ask::Status, 1, 0, kPatientTimeout},
    {"ReplyForAnAck", "reply-for-ack", Ask::Abort, 1, 0, kPatientTimeout},
    {"WrongType", "wrong-type", Ask::Status, 1, 0, kPatientTimeout},
    {"Unsolicited", "unsolicited", Ask::Status, 1, 1, kPatientTimeout},
    {"FrameBeforeTheRequest", "early", Ask::Status, 1, -1, kPatientTimeout},
    {"TwoFramesInABurst", "burst", Ask::Status, 1, -1, kPatientTimeout},
    {"GarbageBetweenFrames", "garbage", Ask::Status, 0, -1},
    {"ZeroLength", "zero-length", Ask::Status, 1, 0, kPatientTimeout},
    {"OversizeLength", "oversize-length", Ask::Status, 2, 1},
    {"OversizeLongFrame", "oversize-length 65535", Ask::Status, 2, -1},
};

class FaultsTest : public ::testing::TestWithParam<Fault>
{
protected:
    FaultsTest() : m_simulator(simulator::Scenario{}, m_clock) {}

    void SetUp() override
    {
        std::string error;
        ASSERT_TRUE(m_simulator.Start(error)) << error;
        PortSettings settings;
        settings.replyTimeout = GetParam().replyTimeout;
        ASSERT_EQ(m_command.OpenPort(m_simulator.PortPath(), settings), 1) << m_command.LastError();
        m_command.SetFrameObserver([this](Direction direction, std::span<const std::uint8_t>) {
            m_sends += direction == Direction::Sent ? 1 : 0;
        });
    }

    int Exchange(Ask ask)
    {
        StatusReply status;
        return ask == Ask::Status ? m_command.RequestStatus(status) : m_command.SendAbort();
    }

    void AddFault(std::size_t count)
    {
        FaultRule rule;
        std::string error;
        ASSERT_TRUE(ParseFaultRule(GetParam().rule, rule, error)) << error;
        rule.count = count;
        m_simulator.AddFault(rule);
    }

    /// One exchange under the rules that stand; checks its time.
    /// @return whether the machine was quick enough for its outcome to count
    bool Measured(int& result, std::size_t& sends)
    {
        m_sends = 0;
        const auto start = m_clock.Steady();
        result = Exchange(GetParam().ask);
        const auto took = m_clock.Steady() - start;
        sends = m_sends;
        const auto limit = 2 * GetParam().replyTimeout + 600ms;
        EXPECT_LT(took, limit + kSpeed * kWorstSlack) << "it hangs";
        m_late += took > limit + kSpeed * kSlack ? 1 : 0;
        // On a busy machine an attempt may time out that had its answer coming, or learn of its
        // time-out so late that the answer is there.
        const int attempts = GetParam().sends == 1 || sends == 1 ? 1 : 2;
        return took < attempts * GetParam().replyTimeout;
    }

    bool LineIsClean()
    {
        constexpr int kMost = 50;
        for (int i = 0; i < kMost; ++i) {
            if (Exchange(GetParam().ask) == 1) {
                return true;
            }
        }
        return false;
    }

    static bool EndedAsItMust(int result, std::size_t sends)
    {
        const Fault& fault = GetParam();
        const bool asOften = fault.sends == 0 ? sends == 1 || sends == 2 : sends == fault.sends;
        return asOften && (fault.result == -1 || result == fault.result);
    }

    FastClock m_clock{kSpeed};
    Simulator m_simulator;
    std::size_t m_sends = 0;
    int m_late = 0;
    CCommand m_command{{nullptr, &m_clock, nullptr, nullptr}};
};

TEST_P(FaultsTest, EveryExchangeEndsAsItMust)
{
    const Fault& fault = GetParam();
    const auto before = testing::CountProcess();
    int slow = 0;
    for (int i = 0; i < kExchanges; ++i) {
        SCOPED_TRACE(i);
        const bool bothAttempts = i % 10 == 9;
        AddFault(bothAttempts ? 2 : 1);
        int result = 0;
        std::size_t sends = 0;
        const bool quickEnough = Measured(result, sends);
        if (bothAttempts) {
            EXPECT_LE(sends, 2U);
        } else if (!quickEnough) {
            ++slow;
        } else if (!EndedAsItMust(result, sends)) {
            // Under a short time-out an answer that the machine held up may serve a later request.
            ++slow;
            EXPECT_NE(fault.replyTimeout, kPatientTimeout)
                << sends << " sends, result " << result << "; " << m_command.LastError();
        }
        m_simulator.ClearFaults();
        // What a failed second attempt left in the line costs one exchange, or a few where the
        // machine holds it up.
        if (bothAttempts || !quickEnough) {
            EXPECT_TRUE(LineIsClean()) << "a clean line stays spoilt: " << m_command.LastError();
            m_clock.Sleep(kLongestDelay); // the answers that are still under way
        }
        if (HasFailure()) {
            break; // one report is enough
        }
    }
    EXPECT_LT(slow, kMostDisturbed) << "exchanges end otherwise than they must";
    EXPECT_LT(m_late, kMostDisturbed) << "exchanges last longer than they may";
    EXPECT_EQ(testing::CountProcessAgain(before), before);
}

INSTANTIATE_TEST_SUITE_P(Link, FaultsTest, ::testing::ValuesIn(kFaults),
                         [](const auto& test) { return std::string(test.param.name); });

/// Pulls the cable after every number of bytes of a request and of a reply.
TEST(HangUp, AtEveryByteOfRequestAndReply)
{
    const FastClock clock(kSpeed);
    Simulator receiver(simulator::Scenario{}, clock);
    std::string error;
    ASSERT_TRUE(receiver.Start(error)) << error;
    CCommand command({nullptr, &clock, nullptr, nullptr});
    PortSettings settings;
    settings.replyTimeout = kPatientTimeout;
    constexpr std::size_t kRequestLength = 6;
    constexpr std::size_t kReplyLength = 27;
    for (std::size_t at = 0; at < kRequestLength + kReplyLength; ++at) {
        SCOPED_TRACE(at);
        ASSERT_EQ(command.OpenPort(receiver.PortPath(), settings), 1) << command.LastError();
        FaultRule rule;
        rule.kind = FaultKind::HangUp;
        rule.place =
            at < kRequestLength ? simulator::HangUpPlace::Request : simulator::HangUpPlace::Reply;
        rule.amount = static_cast<int>(at < kRequestLength ? at + 1 : at - kRequestLength);
        rule.count = 1;
        receiver.AddFault(rule);
        StatusReply status;
        EXPECT_EQ(command.RequestStatus(status), 0);
        EXPECT_EQ(command.Fault(), CommandFault::LinkLost) << command.LastError();
        const auto start = clock.Steady();
        EXPECT_EQ(command.RequestStatus(status), 0);
        EXPECT_LT(clock.Steady() - start, kPatientTimeout + kSpeed * kWorstSlack);
        command.ClosePort();
        receiver.ClearFaults();
        ASSERT_TRUE(receiver.Plug());
        ASSERT_EQ(command.OpenPort(receiver.PortPath(), settings), 1) << command.LastError();
        EXPECT_EQ(command.RequestStatus(status), 1) << command.LastError();
        command.ClosePort();
    }
}

} // namespace
} // namespace fieldcore
