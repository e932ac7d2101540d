// The line for a long time: what is asked over and over while things go wrong now and then.

#include "tests/core/link/ProcessCounts.h"
#include "tests/support/ProofSize.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <malloc.h>

// Where a sanitizer keeps the memory; null without one.
extern "C" std::size_t
__sanitizer_get_current_allocated_bytes() // NOLINT(bugprone-reserved-identifier)
    __attribute__((weak));

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Measured;
using testing::VirtualReceiver;

constexpr auto kReplyTimeout = 1000ms;
constexpr int kBattery = 85; // percent, of the simulator
constexpr auto kLongest = 2 * kReplyTimeout + 600ms;
constexpr std::uint32_t kRates[] = {0, 9600, 38400, 115200}; // 0: in bursts

long long MemoryInUse()
{
    if (__sanitizer_get_current_allocated_bytes != nullptr) {
        return static_cast<long long>(__sanitizer_get_current_allocated_bytes());
    }
    const auto info = mallinfo2();
    return static_cast<long long>(info.uordblks) + static_cast<long long>(info.hblkhd);
}

/// Asks one of several things, and checks what comes against what the receiver holds.
enum class Outcome
{
    Right,
    Failed, ///< and says of what
    Wrong
};
Outcome Ask(VirtualReceiver& receiver, int number)
{
    CCommand& command = receiver.command;
    int result = 0;
    bool isRight = false;
    switch (number % 4) {
    case 0:
    case 1: {
        const auto low = static_cast<std::uint8_t>(number / 2);
        result = command.RequestHostData(0x20, low);
        if (result == 1 && command.Reader().DataLength() == 0) {
            return Outcome::Failed; // what is in a reply of this kind, its caller looks at
        }
        isRight = result == 1 && command.GetWord() == (0x2000U | low);
        break;
    }
    case 2: {
        StatusReply status;
        result = command.RequestStatus(status);
        isRight = result == 1 && status.batteryPercent == kBattery;
        break;
    }
    default: {
        const auto last = static_cast<std::uint8_t>(number / 4 % 200);
        result = command.SetBoardSignals(1, 2, last);
        const auto held = receiver.simulator.LastCommand(0xA3);
        isRight = result == 1 && !held.empty() && held.back() == last;
    }
    }
    if (result == 0) {
        EXPECT_NE(command.Fault(), CommandFault::None);
        return Outcome::Failed;
    }
    return isRight ? Outcome::Right : Outcome::Wrong;
}

constexpr const char* kRules[] = {"drop",
                                  "corrupt",
                                  "corrupt 3",
                                  "corrupt 0",
                                  "duplicate",
                                  "split",
                                  "delay 300",
                                  "nak",
                                  "nak-storm",
                                  "delay 1400",
                                  "ack",
                                  "reply-for-ack",
                                  "early",
                                  "burst",
                                  "garbage",
                                  "unsolicited",
                                  "oversize-length",
                                  "wrong-type",
                                  "reboot",
                                  "delay 1700",
                                  "truncate 3",
                                  "zero-length",
                                  "oversize-length 65535"};

/// One exchange in a hundred is spoilt, in any way. What is answered behind it is right again at
/// once, and what is used does not grow.
TEST(Soak, FaultsNowAndThenSpoilNothingForLong)
{
    // The simulator, which is in this process, keeps the last 65,536 requests and pieces: until
    // these are there its memory grows.
    constexpr int kFirst = 70'000;
    const int count = testing::ProofSize("FIELDCORE_SOAK", 1500);
    std::mt19937 random(testing::Seed());
    const std::uint32_t rate = kRates[random() % std::size(kRates)];
    VirtualReceiver receiver("chance-start " + std::to_string(random() % 1000 + 1) + "\n", rate);
    SCOPED_TRACE("bit/s: " + std::to_string(rate));
    receiver.Open(kReplyTimeout);
    const auto process = testing::CountProcess();
    long long memory = 0;
    int wrong = 0;
    int commands = 0; // of the wrong ones
    int failed = 0;
    int sinceFault = 0; // answers that were wrong
    int mostBehindOne = 0;
    constexpr int kMostStale = 1; // behind one fault
    std::string rule = "none yet";
    for (int i = 0; i < count; ++i) {
        if (random() % 100 == 0) {
            rule = kRules[random() % std::size(kRules)];
            receiver.simulator.ClearFaults();
            receiver.AddFault(rule + " count 1");
            sinceFault = 0;
        }
        const auto start = receiver.clock.Steady();
        const auto number = static_cast<int>(random() % 100'000);
        const Outcome outcome = Ask(receiver, number);
        EXPECT_LE(receiver.clock.Steady() - start, 2 * kLongest) << rule << ", " << i;
        failed += outcome == Outcome::Failed ? 1 : 0;
        if (outcome == Outcome::Wrong) {
            ++wrong;
            commands += number % 4 == 3 ? 1 : 0;
            mostBehindOne = std::max(mostBehindOne, ++sinceFault);
            EXPECT_LE(sinceFault, kMostStale) << rule << ", exchange " << i;
        }
        if (i == kFirst) {
            memory = MemoryInUse();
        }
    }
    EXPECT_LT(failed, count / 10 + 10);
    EXPECT_EQ(testing::CountProcessAgain(process), process);
    if (memory > 0) {
        const long long grown = MemoryInUse() - memory;
        EXPECT_LE(grown, 64 * 1024);
        Measured(std::max(grown, 0LL), "bytes grown");
    }
    Measured(count, "exchanges");
    Measured(wrong, "wrong answers");
    EXPECT_EQ(commands, 0) << "took the answers of others";
    Measured(commands, "commands among them");
    Measured(mostBehindOne, "at most behind one fault");
    Measured(failed, "told as failed");
}

TEST(Soak, OpeningAndClosingLeavesNothing)
{
    const int count = testing::ProofSize("FIELDCORE_OPENINGS", 50);
    VirtualReceiver receiver;
    receiver.Open(kReplyTimeout);
    receiver.command.ClosePort();
    const auto process = testing::CountProcess();
    for (int i = 0; i < count; ++i) {
        receiver.Open(kReplyTimeout);
        StatusReply status;
        ASSERT_EQ(receiver.command.RequestStatus(status), 1) << receiver.command.LastError();
        receiver.command.ClosePort();
    }
    EXPECT_EQ(testing::CountProcessAgain(process), process);
    Measured(count, "openings");
}

class PairsOfFaults : public ::testing::TestWithParam<const char*>
{};

/// Both spoil the same answer, or the second one the answer behind it: it ends in time, with what
/// the receiver holds or a named fault, and soon all is right again.
TEST_P(PairsOfFaults, SpoilNothingForLong)
{
    const int count = std::max(testing::ProofSize("FIELDCORE_EXCHANGES", 10) / 100, 1);
    std::mt19937 random(testing::Seed());
    int pairs = 0;
    int commands = 0;
    int mostWrong = 0; // of the answers behind one pair
    for (const std::uint32_t rate : kRates) {
        VirtualReceiver receiver("", rate);
        receiver.Open(kReplyTimeout);
        for (const char* const second : kRules) {
            for (int i = 0; i < count; ++i) {
                const std::string skip = random() % 2 == 0 ? "" : " skip 1";
                SCOPED_TRACE(std::string(GetParam()) + ", " + second + skip + ", at rate " +
                             std::to_string(rate) + ", " + std::to_string(i));
                receiver.AddFault(std::string(GetParam()) + " count 1");
                receiver.AddFault(second + skip + " count 1");
                int wrong = 0;
                Outcome outcome = Outcome::Failed;
                for (int exchange = 0; exchange < 6; ++exchange) {
                    const auto start = receiver.clock.Steady();
                    const auto number = static_cast<int>(random() % 100'000);
                    outcome = Ask(receiver, number);
                    EXPECT_LE(receiver.clock.Steady() - start, 2 * kLongest) << "it hangs";
                    if (outcome == Outcome::Wrong) {
                        ++wrong;
                        commands += number % 4 == 3 ? 1 : 0;
                    } else if (outcome == Outcome::Right && exchange > 2) {
                        break;
                    }
                }
                EXPECT_EQ(outcome, Outcome::Right) << receiver.command.LastError();
                EXPECT_LE(wrong, 1) << "more than the stale answer";
                mostWrong = std::max(mostWrong, wrong);
                ++pairs;
                receiver.simulator.ClearFaults();
            }
        }
    }
    EXPECT_EQ(commands, 0) << "took the answers of others";
    Measured(pairs, "pairs");
    Measured(mostWrong, "at most wrong behind one pair");
}

INSTANTIATE_TEST_SUITE_P(Soak, PairsOfFaults, ::testing::ValuesIn(kRules), [](const auto& test) {
    std::string name = test.param;
    std::erase_if(name, [](char c) { return c == ' ' || c == '-'; });
    return name;
});

} // namespace
} // namespace fieldcore
