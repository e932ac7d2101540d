#include "core/planning/GPSTime.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <tuple>

#include <gtest/gtest.h>

#include "tests/core/planning/Zone.h"

namespace fieldcore {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t kWeek = 604800;
constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kFirst = std::numeric_limits<std::int64_t>::min();

CTime AfterEpoch(std::int64_t seconds)
{
    return CGPSTime::m_OriginalTime + CTimeSpan(seconds);
}

TEST(GPSTime, IsBuiltAndSetFromWeekAndSeconds)
{
    // What is built and what is set, seconds since the epoch; nothing where it is ignored.
    const std::tuple<const char*, int, double, std::int64_t, std::optional<std::int64_t>> rows[] = {
        {"week 0 of the second cycle", 0, 0.0, 1024 * kWeek, 1024 * kWeek},
        {"both repair 999", 999, 0.0, 2023 * kWeek, 2023 * kWeek},
        {"only the constructor repairs 1000", 1000, 0.0, 2024 * kWeek, 1000 * kWeek},
        {"only the constructor repairs 1023", 1023, 5.0, 2047 * kWeek + 5, 1023 * kWeek + 5},
        {"nobody repairs 1024", 1024, 0.0, 1024 * kWeek, 1024 * kWeek},
        {"fraction never rounded up", 2200, 59.999999, 2200 * kWeek + 59, 2200 * kWeek + 59},
        {"hours, minutes, seconds", 2200, 452096.0, 2200 * kWeek + 452096, 2200 * kWeek + 452096},
        {"nine days", 2200, 777601.0, 2200 * kWeek + 777601, 2200 * kWeek + 777601},
        {"week below zero", -1, 10.0, 1023 * kWeek + 10, std::nullopt},
        {"seconds below zero", 1500, -1.0, 1500 * kWeek - 1, std::nullopt},
        {"a fraction below zero", 1500, -0.5, 1500 * kWeek, std::nullopt},
        {"days below zero", 1500, -90061.5, 1500 * kWeek - 90061, std::nullopt},
        {"week before the epoch", -1025, 0.0, 0, std::nullopt},
        {"smallest week", std::numeric_limits<int>::min(), 0.0, 0, std::nullopt},
        {"largest week", std::numeric_limits<int>::max(), 0.0, 2147483647 * kWeek,
         2147483647 * kWeek},
        {"seconds before the epoch", 1500, -1e300, 0, std::nullopt},
        {"not a number", 1500, kNotANumber, 1500 * kWeek, std::nullopt},
        {"infinite", 1500, kInfinity, 1500 * kWeek, std::nullopt},
        {"infinite below zero", 1500, -kInfinity, 1500 * kWeek, std::nullopt},
    };
    constexpr std::int64_t kBefore = 777;
    for (const auto& [fault, week, seconds, built, set] : rows) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(CGPSTime(week, seconds).GetUtcTime().GetTime(), AfterEpoch(built).GetTime());
        CGPSTime time(AfterEpoch(kBefore));
        time.SetGpsTime(week, seconds);
        EXPECT_EQ(time.GetUtcTime().GetTime(), AfterEpoch(set.value_or(kBefore)).GetTime());
    }
}

// The numbers are from a calendar library of another language: days since the local midnight of
// 1980-01-06, and the clock on the wall.
TEST(GPSTime, ReadsWeekAndSecondsOfTheZone)
{
    // instant: seconds since 1970, UTC
    using Row = std::tuple<std::string_view, const char*, std::int64_t, double, int, std::uint32_t>;
    const Row rows[] = {
        {kTokyo, "epoch", 315932400, 0.0, 0, 0},
        {kTokyo, "summer", 1719837296, 164096.0, 2321, 1403904896},
        {kTokyo, "midnight", 1719846000, 172800.0, 2321, 1403913600},
        {kTokyo, "end of a 32-bit clock", 4294967295, 55695.0, 6579, 3979034895},
        {kUtc, "epoch", 315964800, 0.0, 0, 0},
        {kUtc, "summer", 1719837296, 131696.0, 2321, 1403872496},
        {kUtc, "end of a 32-bit clock", 4294967295, 23295.0, 6579, 3979002495},
        {kNewYork, "epoch", 315982800, 0.0, 0, 0},
        {kNewYork, "an hour late in summer", 1719837296, 117296.0, 2321, 1403858096},
        {kNewYork, "hour that is left out", 1710054000, 10800.0, 2305, 1394074800},
        {kNewYork, "hour that comes twice", 1731222000, 7200.0, 2340, 1415239200},
        {kNewYork, "summer midnight is of the day before", 1719806400, 0.0, 2321, 1403740800},
        {kNewYork, "end of a 32-bit clock", 4294967295, 5295.0, 6579, 3978984495},
    };
    for (const auto& [zone, fault, instant, seconds, week, sinceEpoch] : RowsOfThisZone(rows)) {
        SCOPED_TRACE(fault);
        const CGPSTime time{CTime(instant)};
        EXPECT_EQ(time.GetGpsWeek(), week);
        EXPECT_EQ(time.GetGpsTime(), seconds);
        EXPECT_EQ(time.GetGpsTimeInSecond(), sinceEpoch);
    }
}

TEST(GPSTime, CountsItsSecondsInThirtyTwoBits)
{
    // 2^32 s after the epoch: 2116-02-12 06:28:16, winter.
    const CGPSTime time(AfterEpoch(4294967296));
    EXPECT_EQ(time.GetUtcTime(), CTime(2116, 2, 12, 6, 28, 16));
    EXPECT_EQ(time.GetGpsTimeInSecond(), 0U);
}

TEST(GPSTime, NeverLiesBeforeTheEpoch)
{
    EXPECT_EQ(CGPSTime(AfterEpoch(-1)).GetUtcTime(), AfterEpoch(0));
    EXPECT_EQ(CGPSTime(CTime(kFirst)).GetUtcTime(), AfterEpoch(0));

    CGPSTime time(AfterEpoch(100));
    time.SetUtcTime(AfterEpoch(-1));
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(100)) << "set before the epoch";
    time -= CTimeSpan(101);
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(100)) << "subtracted more than there was";
    time - CTimeSpan(101);
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(100)) << "subtracted by the other operator";
    time -= CTimeSpan(100);
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(0)) << "subtracted to the epoch itself";
    time.SetUtcTime(AfterEpoch(5));
    time.SetUtcTime(AfterEpoch(0));
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(0)) << "set to the epoch itself";
}

TEST(GPSTime, IsSteppedByAllFourOperators)
{
    CGPSTime time(AfterEpoch(0));
    EXPECT_EQ(&(time + CTimeSpan(1, 2, 3, 4)), &time);
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(93784));
    EXPECT_EQ(&(time += CTimeSpan(6)), &time);
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(93790));
    EXPECT_EQ(&(time - CTimeSpan(90)), &time);
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(93700));
    EXPECT_EQ(&(time -= CTimeSpan(700)), &time);
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(93000));
    time += CTimeSpan(-93001);
    EXPECT_EQ(time.GetUtcTime(), AfterEpoch(-1)) << "adding is not checked";
}

// Far beyond any calendar: every answer stays defined, which the sanitizers watch.
TEST(GPSTime, StopsAtTheEndOfItsCount)
{
    CGPSTime time;
    time.SetGpsTime(2200, 1e300);
    EXPECT_EQ(time.GetUtcTime().GetTime(), kLast);
    EXPECT_EQ(CGPSTime(2200, 1e300).GetUtcTime().GetTime(), kLast);
    time += CTimeSpan(kLast);
    EXPECT_EQ(time.GetUtcTime().GetTime(), kLast);
    EXPECT_EQ(time.GetGpsWeek(), std::numeric_limits<int>::max());
    EXPECT_LT(time.GetGpsTime(), 604800.0);
    static_cast<void>(time.GetGpsTimeInSecond());

    time = CGPSTime(AfterEpoch(0));
    time += CTimeSpan(-kLast);
    time += CTimeSpan(-kLast);
    EXPECT_EQ(time.GetGpsWeek(), std::numeric_limits<int>::min());
    EXPECT_GT(time.GetGpsTime(), -604800.0);
    time -= CTimeSpan(-kLast);
    EXPECT_EQ(time.GetUtcTime().GetTime(), kFirst) << "would still be before the epoch: ignored";
}

TEST(GPSTime, ComparesBeyondThirtyTwoBits)
{
    const CGPSTime a(AfterEpoch(1));
    const CGPSTime b(AfterEpoch(5000000000));
    const CGPSTime same(AfterEpoch(1));
    EXPECT_TRUE(a < b && !(b < a) && !(a < same));
    EXPECT_TRUE(a <= b && !(b <= a) && a <= same);
    EXPECT_TRUE(b > a && !(a > b) && !(a > same));
    EXPECT_TRUE(b >= a && !(a >= b) && a >= same);
    EXPECT_TRUE(a == same && (a == b) == 0);
}

} // namespace
} // namespace fieldcore
