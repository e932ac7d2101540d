// The signals and the tilt sensor from the terminal, with simulated receivers.

#include "tests/cli/Runner.h"

#include <algorithm>
#include <csignal>
#include <string>
#include <utility>

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
    const auto set = [&](const std::string& arguments) {
        return runner.Run("signal set " + arguments + " --json" + kFast).Json();
    };
    EXPECT_EQ(set("glonass qzss --port sim:")["result"]["data"], "8E 03 00 00 84");
    EXPECT_EQ(set("none --port sim:")["result"]["data"], "0E 00 00");
    const nlohmann::json dry = set("l5 --dry-run --port sim:")["result"];
    EXPECT_EQ(dry["data"], "4E 00 00");
    EXPECT_EQ(dry["sent"], false);
    EXPECT_EQ(dry["stored"], false);
    const std::pair<std::string, std::string> failures[] = {
        {"gps --port sim:", "usage"},
        {"none l5 --port sim:", "usage"},
        {"galileo --port sim:pica", "signal-absent"},
        {"glonass --port sim:" + locked, "signals-locked"},
        {"glonass --port sim:" + refused, "nak"}, // then told to the board
    };
    for (const auto& [arguments, code] : failures) {
        EXPECT_EQ(set(arguments)["error"]["code"], code) << arguments;
    }
    ASSERT_EQ(runner.Run(std::string("signal set l2c --port sim:") + kFast).code, 0);
    const nlohmann::json shown = runner.Result(std::string("signal show --port sim:") + kFast);
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
        {"too long", "expiry 30001 --port sim:tilted", 2, "code", "usage"},
        {"longest", "expiry 30000 --port sim:tilted", 0, "expiryHours", 30000},
        {"speed", "speed slow --port sim:tilted", 0, "sent", true},
        {"speed, only looked at", "speed fast --dry-run --port sim:tilted", 0, "sent", false},
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
