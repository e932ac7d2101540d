#include "core/input/Parts.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Parts, RoundsHalfAwayFromZeroThroughText)
{
    const std::tuple<const char*, double, std::uint8_t, double> rows[] = {
        {"below half", 0.0049, 2, 0.0},
        {"tie", 0.125, 2, 0.13},
        {"tie without decimals", 2.5, 0, 3.0},
        {"zeros in front", 0.05, 3, 0.05},
        // 3 x 0.1 is 0.30000000000000004.
        {"binary product", 0.3, 1, 0.3},
        // 100 x 1.005 and 100 x 0.285 are below the tie in binary, 100 x 1.115 is above it.
        {"product below the tie", 1.005, 2, 1.0},
        {"product above the tie", 1.115, 2, 1.12},
        // The sum with 0.5 rounds to 1.
        {"largest value below a half", 0.49999999999999994, 0, 1.0},
        {"nine decimals", 1.2345678912, 9, 1.234567891},
        {"last value in range", 4294967295.0, 0, 4294967295.0},
        {"beyond the range", 4294967296.0, 0, 4294967295.0},
        {"scaled beyond the range", -1e300, 2, -42949672.95},
        {"infinity", kInfinity, 3, 4294967.295},
        {"more decimals than a double has", 0.0, 255, 0.0},
    };
    for (const auto& [fault, value, decimals, rounded] : rows) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(CParts::round(value, decimals), rounded);
    }
    EXPECT_TRUE(std::isnan(CParts::round(std::numeric_limits<double>::quiet_NaN(), 2)));
    EXPECT_TRUE(std::signbit(CParts::round(-0.001, 2))) << "the sign is multiplied on at the end";
    EXPECT_FALSE(std::signbit(CParts::round(-0.0, 2))) << "-0.0 is not below zero";
}

TEST(Parts, WritesTextRoundedToThreeDecimalsFirst)
{
    const std::tuple<const char*, double, std::uint8_t, const wchar_t*> rows[] = {
        {"no decimals", 2.0, 0, L"2"},
        {"more than three", 1.23456, 5, L"1.23500"},
        // 0.1249 with 2 is 0.12, but 0.12449 goes by way of 0.124.
        {"three first, then two", 0.12449, 2, L"0.12"},
        // 0.12495 becomes 0.125, a tie in binary, and the formatter takes the even digit.
        {"tie made by the first rounding", 0.37495, 2, L"0.38"},
        {"tie made by the first rounding, even", 0.12495, 2, L"0.12"},
        {"tie of the formatter", 2.5, 0, L"2"},
        {"sign of a zero", -0.0001, 3, L"-0.000"},
        {"half a thousandth", 0.0005, 3, L"0.001"},
        {"beyond the range", 1e10, 2, L"4294967.29"},
    };
    for (const auto& [fault, value, decimals, text] : rows) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(CParts::Round(value, decimals), text);
    }
}

TEST(Parts, RoundsBeforeAndAfterCombining)
{
    EXPECT_EQ(CParts::RoundNega(0.125, 0.0, 2), 0.13);
    EXPECT_EQ(CParts::RoundNega(0.0, 0.125, 2), -0.13);
    EXPECT_EQ(CParts::RoundNega(0.04, -0.04, 1), 0.0) << "0.08 if only the difference is rounded";
    EXPECT_EQ(CParts::RoundNega(0.25, 0.24, 1), 0.1) << "0.3 - 0.2 is 0.09999999999999998";
    EXPECT_EQ(CParts::RoundAve(0.25, 0.5, 1), 0.4);
    EXPECT_EQ(CParts::RoundAve(0.1, 0.2, 1), 0.2) << "the mean is 0.15000000000000002";
    EXPECT_EQ(CParts::RoundAve(-0.25, -0.5, 1), -0.4);
    EXPECT_EQ(CParts::RoundAve(0.14, 0.15, 1), 0.2) << "0.1 and 0.2 first; 0.145 would give 0.1";
}

TEST(Parts, ReadsTextOfBothKinds)
{
    EXPECT_EQ(CParts::atof(std::wstring(L" -1.25m")), -1.25);
    EXPECT_EQ(CParts::atof(L"1.5"), 1.5);
    EXPECT_EQ(CParts::atof(L""), 0.0);
}

TEST(Parts, KnowsTheSections)
{
    const std::tuple<std::uint32_t, const wchar_t*, const wchar_t*> rows[] = {
        {0, L"RtkRov", L"Static"},          {1, L"RtkRov", L"Static"},
        {2, L"RtkKijun", L"FStatic"},       {4, L"2Set", L"KinemaRef"},
        {8, L"Calib", L"KinemaRov"},        {16, L"RtkRov", L"Static"},
        {32, L"1Set", L"Static"},           {256, L"RtkDGPS", L"Static"},
        {512, L"Single", L"Static"},        {4096, L"SokuLine", L"Static"},
        {0xFFFFFFFF, L"RtkRov", L"Static"}, {3, L"RtkRov", L"Static"},
    };
    for (const auto& [surveyType, realTime, post] : rows) {
        SCOPED_TRACE(surveyType);
        EXPECT_STREQ(CParts::GetRtkSec(surveyType, 1), realTime);
        EXPECT_STREQ(CParts::GetRtkSec(surveyType, -1), realTime);
        EXPECT_STREQ(CParts::GetRtkSec(surveyType, 0), L"RtkRef");
        EXPECT_STREQ(CParts::GetPostSec(surveyType), post);
    }
}

} // namespace
} // namespace fieldcore
