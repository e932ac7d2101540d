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
        runner.Scenario("model 3017\nbattery 90 60\npower-source 2\nfault nak on 14 skip 15"));
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    std::vector<nlohmann::json> readings;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) {
        readings.push_back(nlohmann::json::parse(line)["result"]);
    }
    ASSERT_EQ(readings.size(), 16U);
    const nlohmann::json& first = readings.front();
    const nlohmann::json& last = readings.back();
    EXPECT_EQ(first["powerSourceName"], "電源B");
    EXPECT_TRUE(first["batteryTrendPercentPerHour"].is_null()) << "one reading has no trend";
    EXPECT_TRUE(first["batteryMinutesLeft"].is_null());
    EXPECT_NEAR(last["batteryTrendPercentPerHour"].get<double>(), -60.0, 6.0);
    EXPECT_NEAR(last["batteryMinutesLeft"].get<double>(), last["batteryPercent"].get<double>(), 9);
    // They are asked for in this order.
    EXPECT_GT(last["agesS"]["status"], last["agesS"]["position"]);
    EXPECT_GT(last["agesS"]["position"], last["agesS"]["powerSource"]);
    EXPECT_TRUE(first["agesS"]["time"].is_number());
    EXPECT_TRUE(last["agesS"]["time"].is_null()) << "it was refused";
}

} // namespace
} // namespace fieldcore::cli::test
