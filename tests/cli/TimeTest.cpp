// The receiver's time against the controller's. Setting is only ever noted down.

#include "core/platform/FastClock.h"
#include "simulator/Simulator.h"
#include "tests/cli/Runner.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

/// A simulator that stands where a real receiver would: behind a path.
class TimeTest : public ::testing::Test
{
protected:
    std::string Plug(const std::string& lines)
    {
        std::string error;
        const auto scenario = simulator::LoadScenario(runner.Scenario(lines), error);
        EXPECT_TRUE(scenario) << error;
        receiver = std::make_unique<simulator::Simulator>(*scenario);
        EXPECT_TRUE(receiver->Start(error)) << error;
        runner.world.clock = &clock; // the pauses of connecting go fast
        runner.world.setClock = [this](Clock::UtcTime time) {
            set.push_back(time);
            return refusal;
        };
        return "time --json --timeout 60 --port " + receiver->PortPath();
    }

    FastClock clock{20.0};
    Runner runner;
    std::unique_ptr<simulator::Simulator> receiver;
    std::vector<Clock::UtcTime> set;
    std::string refusal;
};

constexpr const char* kThen = "start 2026-03-14 00:00:05\nspeed 0.001";

TEST_F(TimeTest, SetsTheClockOnlyWhenItMay)
{
    using namespace std::chrono;
    struct Row
    {
        std::string_view fault;
        std::string scenario;
        std::string options;
        std::string refusal;
        int code;
        bool isSet; ///< tried
    };
    const Row rows[] = {
        {"shown only", kThen, "", "", 0, false},
        {"dry run", kThen, " --set --dry-run", "", 0, false},
        {"nobody to ask", kThen, " --set", "", 2, false},
        {"agreed beforehand", kThen, " --set --yes", "", 0, true},
        {"no permission", kThen, " --set --yes", "Operation not permitted", 1, true},
        {"no fix, no trust", std::string(kThen) + "\nfix searching", " --set --yes", "", 1, false},
        {"no time, no trust", "time-valid no\nfix searching", " --set --yes", "", 1, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        set.clear();
        const std::string command = Plug(row.scenario) + row.options;
        refusal = row.refusal;
        const Outcome outcome = runner.Run(command);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_EQ(set.size(), row.isSet ? 1U : 0U);
        const nlohmann::json document = outcome.Json();
        if (row.code == 0) {
            EXPECT_EQ(document["result"]["receiverUtc"], "2026-03-14T00:00:05Z");
            EXPECT_EQ(document["result"]["set"], row.isSet);
        }
        if (row.isSet) { // within the offset after midnight, too, it is the day of UTC
            const auto later = set.front() - (sys_days(2026y / 3 / 14) + 5s);
            EXPECT_GE(later, 0s);
            EXPECT_LT(later, 60s);
        }
        if (!row.refusal.empty()) {
            EXPECT_NE(outcome.err.find(row.refusal), std::string::npos) << outcome.err;
        }
    }
}

TEST_F(TimeTest, CountsWhatPassesWhileAnAnswerIsLost)
{
    using namespace std::chrono;
    std::string command = Plug(std::string(kThen) + "\nfault drop on 41 skip 1 count 1");
    command.replace(command.find("60"), 2, "5"); // seconds of the clock that runs fast
    EXPECT_EQ(runner.Run(command + " --set --yes").code, 0);
    ASSERT_EQ(set.size(), 1U);
    EXPECT_GE(set.front() - sys_days(2026y / 3 / 14), 10s) << "5 at first, and the wait";
}

TEST_F(TimeTest, NeverTakesTheTimeOfASimulator)
{
    runner.world.setClock = [this](Clock::UtcTime time) {
        set.push_back(time);
        return std::string();
    };
    const std::string command = "time --speed 20 --timeout 60 --port sim: --set";
    EXPECT_EQ(runner.Run(command + " --yes").code, 2);
    EXPECT_EQ(runner.Run(command + " --dry-run").code, 0);
    EXPECT_EQ(runner.Run("time --port sim: --yes").code, 2) << "nothing to agree to";
    EXPECT_TRUE(set.empty());
}

} // namespace
} // namespace fieldcore::cli::test
