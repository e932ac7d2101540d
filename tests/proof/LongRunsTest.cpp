// The line for a long time: what is asked over and over while things go wrong now and then.

#include "core/link/ConnectSequence.h"
#include "core/link/DirectoryListing.h"
#include "core/link/FrameHistory.h"
#include "core/link/Questions.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/ObservationPlan.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/ProofSize.h"
#include "tests/support/Scarcity.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <new>
#include <random>
#include <string>
#include <vector>

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

long long MemoryInUse()
{
    if (__sanitizer_get_current_allocated_bytes != nullptr) {
        return static_cast<long long>(__sanitizer_get_current_allocated_bytes());
    }
    const auto info = mallinfo2();
    return static_cast<long long>(info.uordblks + info.hblkhd);
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

/// One exchange in a hundred is spoilt, in any way. What is answered behind it is right again at
/// once, and what is used does not grow.
TEST(LongRuns, FaultsNowAndThenSpoilNothingForLong)
{
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
    // The simulator, which is in this process, keeps the last 65,536 requests and pieces: until
    // these are there its memory grows.
    constexpr int kFirst = 70'000;
    const int count = testing::ProofSize("FIELDCORE_SOAK", 1500);
    std::mt19937 random(testing::Seed());
    constexpr std::uint32_t kRates[] = {0, 9600, 38400, 115200};
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

TEST(LongRuns, OpeningAndClosingLeavesNothing)
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

struct Operation
{
    const char* name;
    int frames; ///< of its answers, about: at any of them the receiver may go away
    bool (*run)(VirtualReceiver& receiver, const std::filesystem::path& folder);
};

constexpr int kFileSize = 9000;

const Operation kOperations[] = {
    {"poll", 4,
     [](VirtualReceiver& receiver, const std::filesystem::path&) {
         bool isDone = true;
         for (int i = 0; i < 4 && isDone; ++i) {
             StatusReply status;
             isDone = receiver.command.RequestStatus(status) == 1;
         }
         return isDone;
     }},
    {"list", 3,
     [](VirtualReceiver& receiver, const std::filesystem::path&) {
         DirectoryTable table;
         return receiver.command.RequestFiles_Lark(L"*.Q01", table, nullptr) == 1 &&
                table[0].Name() == L"A.Q01";
     }},
    {"almanac", 32,
     [](VirtualReceiver& receiver, const std::filesystem::path& folder) {
         return AlmanacStore(folder).Update(receiver.command) == AlmanacResult::Done;
     }},
    {"download", 10,
     [](VirtualReceiver& receiver, const std::filesystem::path& folder) {
         return receiver.command.DownloadFile(folder, L"A.Q01", kFileSize, {}, 5) == kFileSize;
     }},
};

/// The receiver starts anew, or its cable is pulled, anywhere in each operation: that ends, and
/// when the receiver is back, the port opens and the same is done well.
TEST(LongRuns, AnyOperationStandsAReceiverThatGoesAway)
{
    const int rounds = testing::ProofSize("FIELDCORE_REBOOTS", 3);
    std::mt19937 random(testing::Seed());
    const auto process = testing::CountProcess();
    int cases = 0;
    for (const Operation& operation : kOperations) {
        for (const char* const event : {"reboot 3000", "hang-up"}) {
            for (int i = 0; i < rounds; ++i) {
                const bool isPulled = std::string(event) == "hang-up";
                const auto frame = static_cast<int>(random()) % operation.frames;
                const std::string rule =
                    event + (isPulled ? " reply " + std::to_string(random() % 30) : "") + " skip " +
                    std::to_string(std::abs(frame)) + " count 1";
                SCOPED_TRACE(std::string(operation.name) + ", " + rule);
                const TemporaryFolder folder;
                VirtualReceiver receiver("file A.Q01 " + std::to_string(kFileSize) +
                                         " 2026-03-14 01:30\nalmanacs 31\n");
                receiver.Open(kReplyTimeout);
                receiver.AddFault(rule);
                const auto start = receiver.clock.Steady();
                static_cast<void>(operation.run(receiver, folder.Path()));
                EXPECT_LT(receiver.clock.Steady() - start, (operation.frames + 2) * kLongest);
                receiver.simulator.ClearFaults();
                receiver.clock.Sleep(4s);
                EXPECT_TRUE(receiver.simulator.Plug());
                receiver.Open(kReplyTimeout);
                EXPECT_TRUE(operation.run(receiver, folder.Path())) << receiver.command.LastError();
                ++cases;
            }
        }
    }
    EXPECT_EQ(testing::CountProcessAgain(process), process);
    Measured(cases, "reboots and hang-ups");
}

const Operation kFurtherOperations[] = {
    {"connect", 10,
     [](VirtualReceiver& receiver, const std::filesystem::path&) {
         ConnectTarget target;
         target.devicePath = receiver.line.FarPort().Path();
         receiver.command.ClosePort();
         ConnectSequence sequence(receiver.command, target);
         return sequence.Run() == 1;
     }},
    {"questions in the background", 20,
     [](VirtualReceiver& receiver, const std::filesystem::path&) {
         std::atomic<int> answers = 0;
         std::atomic<bool> hasBegun = false;
         Questions& questions = receiver.command.Background();
         const auto id = questions.Add({1s, 1s}, [&](CCommand& asking) {
             receiver.clock.Join();
             hasBegun = true;
             StatusReply status;
             answers += asking.RequestStatus(status);
             return true;
         });
         while (questions.HasThread() && !hasBegun) {
             receiver.clock.Poke(); // until it takes part time would pass without it
         }
         for (int i = 0; i < 20 && answers < 2; ++i) {
             receiver.clock.Sleep(500ms);
         }
         questions.Remove(id);
         return answers >= 2;
     }},
    {"plan for many sites", 1,
     [](VirtualReceiver&, const std::filesystem::path&) {
         ObservationPlan plan;
         plan.Calc().LoadAlmanac(testing::SampleFile(24));
         plan.Period() = {std::chrono::year(2022) / std::chrono::March / 10, 0, 6};
         plan.Compute();
         const std::vector<Observer> sites(8);
         std::vector<SiteView> views(sites.size());
         plan.ComputeSites(sites, views, 4);
         return views.back().count == views.front().count && views.back().count[0] > 3;
     }},
};

/// Memory or threads are refused at any place of each operation: it says so, or leaves with
/// std::bad_alloc, and is done well when there is enough again and the port was opened anew. One
/// that closes the port needs neither.
void StandsScarcity(testing::Scarcity::Of what, const char* measured)
{
    std::vector<Operation> operations(std::begin(kOperations), std::end(kOperations));
    operations.insert(operations.end(), std::begin(kFurtherOperations),
                      std::end(kFurtherOperations));
    const int stride = testing::ProofSize("FIELDCORE_STRIDE", 50); // behind the first 150
    PortSettings settings;
    settings.replyTimeout = kReplyTimeout;
    const auto process = testing::CountProcess();
    int cases = 0;
    for (const Operation& operation : operations) {
        int calls = 1;
        for (int n = 0; n <= calls; n += n < 150 ? 1 : stride) { // n == 0: nothing is refused
            for (const bool once : {true, false}) {
                SCOPED_TRACE(std::string(operation.name) + ", " + std::to_string(n) + " of " +
                             std::to_string(calls) + (once ? "" : ", and all later ones"));
                const TemporaryFolder folder;
                VirtualReceiver receiver("file A.Q01 " + std::to_string(kFileSize) +
                                         " 2026-03-14 01:30\nalmanacs 31\n");
                FrameHistory seen(receiver.clock);
                receiver.command.SetLineObserver(seen.Observer());
                const auto start = receiver.clock.Steady();
                bool isDone = false;
                {
                    const testing::Scarcity scarcity(what, n, once);
                    try {
                        isDone = receiver.command.OpenPort("in memory", settings) == 1 &&
                                 operation.run(receiver, folder.Path());
                    } catch (const std::bad_alloc&) {
                        EXPECT_EQ(what, testing::Scarcity::Of::Memory);
                    }
                    if (!once) {
                        receiver.command.ClosePort();
                    }
                    if (n == 0) {
                        EXPECT_TRUE(isDone);
                        calls = scarcity.Count();
                    }
                }
                const bool isDoneAgain = operation.run(receiver, folder.Path());
                const CCommand& asked = receiver.command.HasBackground()
                                            ? receiver.command.Background().Face()
                                            : receiver.command;
                EXPECT_TRUE(isDoneAgain || asked.Fault() != CommandFault::None);
                EXPECT_LT(receiver.clock.Steady() - start, (2 * operation.frames + 4) * kLongest);
                receiver.Open(kReplyTimeout);
                EXPECT_TRUE(operation.run(receiver, folder.Path())) << receiver.command.LastError();
                ++cases;
            }
        }
    }
    EXPECT_EQ(testing::CountProcessAgain(process), process);
    Measured(cases, measured);
}

TEST(LongRuns, AnyOperationStandsThatMemoryRunsOut)
{
    StandsScarcity(testing::Scarcity::Of::Memory, "allocations refused");
}

TEST(LongRuns, AnyOperationStandsThatThreadsRunOut)
{
    StandsScarcity(testing::Scarcity::Of::Threads, "threads refused");
}

} // namespace
} // namespace fieldcore
