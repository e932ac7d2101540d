// The receiver's time against the controller's. Setting is only ever noted down.

#include "core/platform/FastClock.h"
#include "tests/cli/Runner.h"
#include "tests/support/StartReceiver.h"

#include <chrono>
#include <memory>

namespace fieldcore::cli::test {
namespace {

class TimeTest : public ::testing::Test
{
protected:
    TimeTest()
    {
        runner.world.clock = &clock; // the pauses of connecting go fast
        runner.world.setClock = [this](Clock::UtcTime time) {
            set.push_back(time);
            return refusal;
        };
    }
    /// The command at a receiver whose clock nearly stands still.
    std::string Plug(const std::string& lines)
    {
        receiver = testing::StartReceiver(
            runner.Scenario("start 2026-03-14 00:00:05\nspeed 0.001\n" + lines));
        return "time --port " + receiver->PortPath();
    }

    FastClock clock{20.0};
    Runner runner;
    std::unique_ptr<simulator::Simulator> receiver;
    std::vector<Clock::UtcTime> set;
    std::string refusal;
};

TEST_F(TimeTest, SetsTheClockOnlyWhenItMay)
{
    using namespace std::chrono;
    std::string time = Plug("") + " --timeout 60";
    const std::string isSet = "/result/set";
    runner.Expect({{time, 0, "", "/result/receiverUtc", "2026-03-14T00:00:05Z"},
                   {time, 0, "", isSet, false},
                   {time + " --set --dry-run", 0, "nothing was changed", isSet, false},
                   {time + " --set", 2}}); // nobody to ask
    EXPECT_TRUE(set.empty());
    runner.Expect({{time + " --set --yes", 0, "", isSet, true}});
    ASSERT_EQ(set.size(), 1U);
    // Within the offset after midnight, too, it is the day of UTC.
    EXPECT_GE(set.front() - sys_days(2026y / 3 / 14), 5s);
    EXPECT_LT(set.front() - sys_days(2026y / 3 / 14), 65s);
    refusal = "Operation not permitted";
    runner.Expect({{time + " --set --yes", 1, refusal, "/error/code", "clock-not-set"}});
    EXPECT_EQ(set.size(), 2U) << "it is not even tried";
    for (const std::string lines : {"fix searching", "time-valid no\nfix searching"}) { // no trust
        time = Plug(lines) + " --timeout 60";
        runner.Expect({{time + " --set --yes", 1, "", "/error/code", "time-not-known"}});
    }
    EXPECT_EQ(set.size(), 2U);
}

TEST_F(TimeTest, CountsWhatPassesWhileAnAnswerIsLost)
{
    using namespace std::chrono;
    // Seconds of the clock that runs fast.
    runner.Expect({{Plug("fault drop on 41 skip 1 count 1") + " --timeout 5 --set --yes", 0}});
    ASSERT_EQ(set.size(), 1U);
    EXPECT_GE(set.front() - sys_days(2026y / 3 / 14), 10s) << "5 at first, and the wait";
}

TEST_F(TimeTest, NeverTakesTheTimeOfASimulator)
{
    runner.Expect({{OnSim("time --set --yes"), 2},
                   {OnSim("time --set --dry-run"), 0, "nothing was changed"},
                   {OnSim("time --yes"), 2}}); // nothing to agree to
    EXPECT_TRUE(set.empty());
}

} // namespace
} // namespace fieldcore::cli::test
