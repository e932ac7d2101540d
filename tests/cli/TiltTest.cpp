// The signals and the tilt sensor from the terminal, with simulated receivers.

#include "tests/cli/Runner.h"

#include <algorithm>
#include <csignal>

namespace fieldcore::cli::test {
namespace {

/// Of the simulator that has signals set, or a sensor.
constexpr const char* kKept = "Kept in the simulator's own store.";

TEST(Signal, SetsWhatIsNamedAndKeepsIt)
{
    Runner runner;
    const std::string locked = runner.Scenario("signals-locked yes");
    const std::string refused = runner.Scenario("options l2 glonass meridian\nfault nak on 53");
    const std::string data = "/result/data";
    const std::string error = "/error/code";
    runner.Expect({
        {OnSim("signal set glonass qzss"), 0, kKept, data, "8E 03 00 00 84"},
        {OnSim("signal set none"), 0, kKept, data, "0E 00 00"},
        {OnSim("signal set l5 --dry-run"), 0, "nothing was changed", data, "4E 00 00"},
        {OnSim("signal set l5 --dry-run"), 0, "nothing was changed", "/result/sent", false},
        {OnSim("signal set gps"), 2, "", error, "usage"},
        {OnSim("signal set none l5"), 2, "", error, "usage"},
        {OnSim("signal set galileo", "pica"), 1, "", error, "signal-absent"},
        {OnSim("signal set glonass", locked), 1, "", error, "signals-locked"},
        {OnSim("signal set glonass", refused), 6, "", error, "nak"}, // told to the board alone
        {OnSim("signal set l2c"), 0, kKept, "/result/stored", true},
        {OnSim("signal show"), 0, "", "/result/signals/0/signal", "l2c"},
        {OnSim("signal show"), 0, "", "/result/signals/0/chosen", true},
        {OnSim("signal show"), 0, "", "/result/signals/4/chosen", false},
    });
}

TEST(Tilt, ShowsCalibratesAndSets)
{
    Runner runner;
    const auto tilted = [](const std::string& command) {
        return OnSim("tilt " + command, "tilted");
    };
    const std::string error = "/error/code";
    runner.Expect({
        {tilted("show"), 0, "", "/result/tiltDeg", 0.573}, // 0.01 rad
        {OnSim("tilt show"), 6, "", error, "nak"},         // no sensor
        {tilted("calibrate"), 2, "", error, "usage"},      // nobody can be asked
        {tilted("calibrate --dry-run"), 0, "nothing was changed", "/result/outcome", "not-started"},
        {tilted("calibrate --yes"), 0, "The tilt calibration begins.", "/result/outcome",
         "completed"},
        {tilted("expiry 30001"), 2, "", error, "usage"},
        {tilted("expiry 30000"), 0, "", "/result/expiryHours", 30000},
        {tilted("speed slow"), 0, kKept, "/result/sent", true},
        {tilted("speed fast --dry-run"), 0, "nothing was changed", "/result/sent", false},
        // As the controller's screen shows it.
        {"settings get GPS\\eBubble Viscosity --port sim:", 0, "", "/result/value", "2"},
    });
    const Outcome watched = runner.Run(tilted("show --watch --count 3"));
    EXPECT_EQ(watched.code, 0);
    EXPECT_EQ(std::count(watched.out.begin(), watched.out.end(), '\n'), 4) << "head and readings";
}

TEST(Tilt, CtrlCCancelsACalibrationAtTheReceiver)
{
    Runner runner;
    int looks = 0;
    runner.world.stopSignal = [&looks] { return ++looks > 40 ? SIGINT : 0; };
    const std::string calibrate = "tilt calibrate --yes --port sim:tilted --speed 2 --timeout 4";
    EXPECT_EQ(runner.Run(calibrate + " --log @/log").code, 7);
    EXPECT_NE(ContentOf(runner.Path("log")).find("C8 01 05 CE"), std::string::npos)
        << "the cancel command";
}

} // namespace
} // namespace fieldcore::cli::test
