// What is done over the line, where the receiver goes away or the machine has nothing to give.

#include "core/link/Connect.h"
#include "core/link/DirectoryListing.h"
#include "core/link/FrameHistory.h"
#include "core/link/Questions.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/ObservationPlan.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/ProofSize.h"
#include "tests/support/Refusal.h"
#include "tests/support/Scarcity.h"
#include "tests/support/VirtualReceiver.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <new>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Measured;
using testing::VirtualReceiver;

constexpr auto kReplyTimeout = 1000ms;
constexpr auto kLongest = 2 * kReplyTimeout + 600ms;

struct Operation
{
    const char* name;
    int frames; ///< of its answers, about: at any of them the receiver may go away
    bool (*run)(VirtualReceiver& receiver, const std::filesystem::path& folder);
};

constexpr int kFileSize = 9000;
constexpr auto kScenario = "file A.Q01 9000 2026-03-14 01:30\nalmanacs 31\n";

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
TEST(Operations, StandAReceiverThatGoesAway)
{
    const int rounds = testing::ProofSize("FIELDCORE_REBOOTS", 3);
    std::mt19937 random(testing::Seed());
    const auto process = testing::CountProcess();
    int cases = 0;
    for (const Operation& operation : kOperations) {
        for (int i = 0; i < 2 * rounds; ++i) {
            const std::string skip =
                " skip " + std::to_string(random() % static_cast<unsigned>(operation.frames));
            const std::string rule =
                (i < rounds ? "reboot 3000" : "hang-up reply " + std::to_string(random() % 30)) +
                skip + " count 1";
            SCOPED_TRACE(std::string(operation.name) + ", " + rule);
            const TemporaryFolder folder;
            VirtualReceiver receiver(kScenario);
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
    PortSettings settings;
    settings.replyTimeout = kReplyTimeout;
    const auto process = testing::CountProcess();
    int cases = 0;
    for (const Operation& operation : operations) {
        cases += testing::RefuseInTurn(operation.name, [&](testing::Refusal& refusal) {
            const TemporaryFolder folder;
            FrameHistory seen(SystemClock::Instance()); // until the receiver's threads have ended
            VirtualReceiver receiver(kScenario);
            receiver.command.SetLineObserver(seen.Observer());
            const auto start = receiver.clock.Steady();
            bool isDone = false;
            {
                const testing::Scarcity scarcity(what, refusal.n, refusal.once);
                try {
                    isDone = receiver.command.OpenPort("in memory", settings) == 1 &&
                             operation.run(receiver, folder.Path());
                } catch (const std::bad_alloc&) {
                    EXPECT_EQ(what, testing::Scarcity::Of::Memory);
                }
                if (!refusal.once) {
                    receiver.command.ClosePort();
                }
                refusal.asked = scarcity.Count();
            }
            EXPECT_TRUE(refusal.n > 0 || isDone);
            const bool isDoneAgain = operation.run(receiver, folder.Path());
            const CCommand& asked = receiver.command.HasBackground()
                                        ? receiver.command.Background().Face()
                                        : receiver.command;
            EXPECT_TRUE(isDoneAgain || asked.Fault() != CommandFault::None);
            EXPECT_LT(receiver.clock.Steady() - start, (2 * operation.frames + 4) * kLongest);
            receiver.Open(kReplyTimeout);
            EXPECT_TRUE(operation.run(receiver, folder.Path())) << receiver.command.LastError();
        });
    }
    EXPECT_EQ(testing::CountProcessAgain(process), process);
    Measured(cases, measured);
}

TEST(Operations, StandThatMemoryRunsOut)
{
    StandsScarcity(testing::Scarcity::Of::Memory, "allocations refused");
}

TEST(Operations, StandThatThreadsRunOut)
{
    StandsScarcity(testing::Scarcity::Of::Threads, "threads refused");
}

TEST(Operations, StandThatThreadsRunOutForTheSimulator)
{
    const testing::VirtualClock clock;
    testing::VirtualLine line(clock);
    simulator::Simulator receiver(testing::ParsedScenario(""), clock, testing::On(line.FarPort()));
    std::string error;
    {
        const testing::Scarcity scarcity(testing::Scarcity::Of::Threads, 1, true);
        EXPECT_FALSE(receiver.Start(error));
    }
    EXPECT_TRUE(error.starts_with("no thread: ")) << error;
}

} // namespace
} // namespace fieldcore
