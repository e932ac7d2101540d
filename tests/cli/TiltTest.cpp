// The signals and the tilt sensor from the terminal, with simulated receivers.

#include "tests/cli/Runner.h"

#include <algorithm>
#include <csignal>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

constexpr const char* kFast = " --speed 50 --timeout 100";

TEST(Signal, SetsWhatIsNamedAndKeepsIt)
{
    Runner runner;
    const std::string locked = runner.Scenario("signals-locked yes");
    const Runner other; // one scenario each
    const std::string refused = other.Scenario("options l2 glonass meridian\nfault nak on 53");
    struct Row
    {
        const char* fault;
        std::string arguments;
        int code;
        std::string error;
        std::string data;
        bool sent;
    };
    const Row rows[] = {
        {"both", "set glonass qzss --port sim:", 0, "", "8E 03 00 00 84", true},
        {"none", "set none --port sim:", 0, "", "0E 00 00", true},
        {"only looked at", "set l5 --dry-run --port sim:", 0, "", "4E 00 00", false},
        {"no such signal", "set gps --port sim:", 2, "usage", "", false},
        {"none and one", "set none l5 --port sim:", 2, "usage", "", false},
        {"the receiver lacks it", "set galileo --port sim:pica", 1, "signal-absent", "", false},
        {"fixed", "set glonass --port sim:" + locked, 1, "signals-locked", "", false},
        {"no answer", "set glonass --port sim:silent", 4, "no-answer", "", false},
        {"refused, then told to the board", "set glonass --port sim:" + refused, 6, "nak", "",
         false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Outcome outcome = runner.Run("signal " + row.arguments + " --json" + kFast);
        EXPECT_EQ(outcome.code, row.code);
        const nlohmann::json document = outcome.Json();
        if (row.code != 0) {
            EXPECT_EQ(document["error"]["code"], row.error);
            continue;
        }
        EXPECT_EQ(document["result"]["data"], row.data);
        EXPECT_EQ(document["result"]["sent"], row.sent);
        EXPECT_EQ(document["result"]["stored"], row.sent);
    }
    ASSERT_EQ(runner.Run(std::string("signal set l2c --port sim:") + kFast).code, 0);
    const nlohmann::json shown =
        runner.Run(std::string("signal show --port sim: --json") + kFast).Json()["result"];
    EXPECT_EQ(shown["signals"][0]["signal"], "l2c");
    EXPECT_EQ(shown["signals"][0]["chosen"], true);
    EXPECT_EQ(shown["signals"][4]["chosen"], false);
}

TEST(Tilt, ShowsCalibratesAndSets)
{
    Runner runner;
    struct Row
    {
        const char* fault;
        std::string arguments;
        int code;
        std::string key; // of the result, or of the error
        nlohmann::json value;
    };
    const Row rows[] = {
        {"reading", "show --port sim:tilted", 0, "tiltDeg", 0.573}, // 0.01 rad
        {"no sensor", "show --port sim:", 6, "code", "nak"},
        {"nobody can be asked", "calibrate --port sim:tilted", 2, "code", "usage"},
        {"only looked at", "calibrate --dry-run --port sim:tilted", 0, "outcome", "not-started"},
        {"done", "calibrate --yes --port sim:tilted", 0, "outcome", "completed"},
        {"too short", "expiry 0 --port sim:tilted", 2, "code", "usage"},
        {"too long", "expiry 30001 --port sim:tilted", 2, "code", "usage"},
        {"longest", "expiry 30000 --port sim:tilted", 0, "expiryHours", 30000},
        {"speed", "speed slow --port sim:tilted", 0, "sent", true},
        {"speed, only looked at", "speed fast --dry-run --port sim:tilted", 0, "sent", false},
        {"no such speed", "speed 3 --port sim:tilted", 2, "code", "usage"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Outcome outcome = runner.Run("tilt " + row.arguments + " --json" + kFast);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_EQ(outcome.Json()[row.code == 0 ? "result" : "error"][row.key], row.value);
    }
    const Outcome kept = runner.Run("settings get GPS\\eBubble Viscosity --json --port sim:");
    EXPECT_EQ(kept.Json()["result"]["value"], "2") << "as the controller's screen shows it";
    const Outcome watched =
        runner.Run(std::string("tilt show --watch --count 3 --port sim:tilted") + kFast);
    EXPECT_EQ(watched.code, 0);
    EXPECT_EQ(std::count(watched.out.begin(), watched.out.end(), '\n'), 4) << "head and readings";
}

TEST(Tilt, CtrlCCancelsACalibrationAtTheReceiver)
{
    Runner runner;
    int looks = 0;
    runner.world.stopSignal = [&looks] { return ++looks > 40 ? SIGINT : 0; };
    const std::string log = runner.Path("log.txt");
    const Outcome outcome = runner.Run("tilt calibrate --yes --port sim:tilted --speed 2 --json "
                                       "--timeout 4 --log " +
                                       log);
    EXPECT_EQ(outcome.code, 7) << outcome.err;
    EXPECT_NE(Content(log).find("C8 01 05 CE"), std::string::npos) << "the cancel command";
}

} // namespace
} // namespace fieldcore::cli::test
