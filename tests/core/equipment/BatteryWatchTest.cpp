#include "core/equipment/BatteryWatch.h"

#include <chrono>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using enum BatteryWatch::Warning;

TEST(BatteryWatch, WarnsOnceUntilChargedAgain)
{
    const std::tuple<const char*, std::vector<int>, std::vector<BatteryWatch::Warning>> rows[] = {
        {"at the limits", {21, 20, 11, 10, 0}, {None, Low, None, VeryLow, None}},
        {"low from the start", {15, 14}, {Low, None}},
        {"very low from the start says both", {8, 12, 20}, {VeryLow, None, None}},
        {"a charge that wavers", {20, 21, 20, 22, 20}, {Low, None, None, None, None}},
        {"charged above", {20, 23, 20}, {Low, None, Low}},
        {"charged above the lower limit only", {10, 13, 10}, {VeryLow, None, VeryLow}},
        {"another battery", {5, 100, 20, 10}, {VeryLow, None, Low, VeryLow}},
    };
    for (const auto& [fault, charges, expected] : rows) {
        SCOPED_TRACE(fault);
        BatteryWatch watch;
        std::vector<BatteryWatch::Warning> warnings;
        for (const int charge : charges) {
            warnings.push_back(watch.Take(charge, 30s * warnings.size()));
        }
        EXPECT_EQ(warnings, expected);
    }
}

TEST(BatteryWatch, TellsHowLongTheBatteryLasts)
{
    BatteryWatch watch;
    const auto drain = [&watch](auto from, auto to, double start, double perHour) {
        for (Clock::Duration at = from; at <= to; at += 30s) {
            const double hours = std::chrono::duration<double, std::ratio<3600>>(at - from).count();
            watch.Take(static_cast<int>(start + perHour * hours), at);
        }
    };
    drain(0s, 570s, 80.0, -12.0);
    EXPECT_FALSE(watch.Trend()) << "too short";
    drain(600s, 3600s, 78.0, -12.0);
    ASSERT_TRUE(watch.Trend());
    EXPECT_NEAR(watch.Trend()->percentPerHour, -12.0, 0.2); // whole percents: a tenth of a step
    ASSERT_TRUE(watch.Trend()->left);
    EXPECT_NEAR(std::chrono::duration<double>(*watch.Trend()->left).count(), 68.0 / 12.0 * 3600.0,
                400.0)
        << "s";
    drain(3630s, 7400s, 68.0, -6.0);
    EXPECT_NEAR(watch.Trend()->percentPerHour, -6.0, 0.2) << "what is older than an hour counts";
    watch.Take(95, 7430s);
    EXPECT_FALSE(watch.Trend()) << "another battery";
    drain(7460s, 9000s, 95.0, 4.0);
    ASSERT_TRUE(watch.Trend());
    EXPECT_GT(watch.Trend()->percentPerHour, 3.0);
    EXPECT_FALSE(watch.Trend()->left) << "it is being charged";
}

} // namespace
} // namespace fieldcore
