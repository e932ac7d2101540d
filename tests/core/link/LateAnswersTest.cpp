#include "core/link/ConnectSequence.h"
#include "tests/support/ProofSize.h"
#include "tests/support/VirtualReceiver.h"

#include <array>
#include <iterator>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::VirtualReceiver;

constexpr auto kReplyTimeout = 1s;
constexpr std::uint32_t kRates[] = {0, 9600, 38400}; // 0: in bursts
constexpr int kFollowing = 60;                       // exchanges after the one that was disturbed

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

void AskToStop(VirtualReceiver& receiver)
{
    receiver.command.SendAbort();
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
    {"DoubledAck", "duplicate count 1", AskToStop},
    {"LateAck", "delay 1700 count 1", AskToStop},
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
    for (const std::uint32_t rate : kRates) {
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
    for (const std::uint32_t rate : kRates) {
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
    int connected = 0;
    constexpr int kRounds = 20;
    for (int round = 0; round < kRounds; ++round) {
        VirtualReceiver receiver("", 9600);
        receiver.AddFault("delay " + std::to_string(2050 + 50 * round) + " count 1");
        ConnectTarget target;
        target.devicePath = receiver.line.FarPort().Path();
        ConnectSequence sequence(receiver.command, target);
        connected += sequence.Run();
        EXPECT_EQ(receiver.command.IsPortOpen(), 1)
            << 2050 + 50 * round << " ms: " << sequence.FailureDetail();
    }
    EXPECT_EQ(connected, kRounds);
}

} // namespace
} // namespace fieldcore
