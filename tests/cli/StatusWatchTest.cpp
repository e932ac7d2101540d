// What a watch knows beyond one reading: how the battery goes, and how old each value is.

#include "tests/cli/Runner.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

TEST(StatusWatch, FollowsTheBatteryAndTellsAges)
{
    Runner runner;
    const Outcome outcome = runner.Run(
        "status --json --watch 60 --count 16 --speed 1000 --timeout 600 --port sim:" +
        runner.Scenario("model 3017\nbattery 90 60\npower-source 2\nfault nak on 34 skip 15"));
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    std::vector<nlohmann::json> readings;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) {
        readings.push_back(nlohmann::json::parse(line)["result"]);
    }
    ASSERT_EQ(readings.size(), 16U);
    const nlohmann::json& first = readings.front();
    const nlohmann::json& last = readings.back();
    EXPECT_EQ(first["powerSourceName"], "Power B");
    EXPECT_TRUE(first["batteryTrendPercentPerHour"].is_null()) << "one reading has no trend";
    EXPECT_TRUE(first["batteryMinutesLeft"].is_null());
    EXPECT_NEAR(last["batteryTrendPercentPerHour"].get<double>(), -60.0, 6.0);
    EXPECT_NEAR(last["batteryMinutesLeft"].get<double>(), last["batteryPercent"].get<double>(), 9);
    // They are asked for in this order.
    EXPECT_GT(first["agesS"]["status"], first["agesS"]["position"]);
    EXPECT_GT(first["agesS"]["position"], first["agesS"]["powerSource"]);
    EXPECT_EQ(first["agesS"]["time"], first["agesS"]["position"]) << "the time of the position";
    EXPECT_TRUE(last["agesS"]["position"].is_null()) << "it was refused";
    EXPECT_TRUE(last["pdop"].is_null() && last["utc"].is_null()) << "nothing of the reading before";
}

} // namespace
} // namespace fieldcore::cli::test
