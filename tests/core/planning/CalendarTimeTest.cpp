#include "core/planning/CalendarTime.h"

#include "tests/core/planning/Zone.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <limits>
#include <string_view>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kFirst = std::numeric_limits<std::int64_t>::min();
constexpr int kMaxInt = std::numeric_limits<int>::max();
constexpr int kMinInt = std::numeric_limits<int>::min();

using Parts = std::array<int, 7>; // year to second, day of the week

Parts PartsOf(CTime time)
{
    const CTime::LocalParts p = time.GetLocalParts();
    return {p.year, p.month, p.day, p.hour, p.minute, p.second, p.dayOfWeek};
}

TEST(CalendarTime, SpansAddUpTheirParts)
{
    // The parts are days, hours, minutes, seconds.
    const std::tuple<const char*, CTimeSpan, std::int64_t, std::array<std::int64_t, 4>> rows[] = {
        {"one of each", CTimeSpan(1, 2, 3, 4), 93784, {1, 2, 3, 4}},
        {"parts beyond their ranges", CTimeSpan(0, 25, 61, 61), 93721, {1, 2, 2, 1}},
        {"negative", CTimeSpan(-1, -2, -3, -4), -93784, {-1, -2, -3, -4}},
        {"mixed signs", CTimeSpan(1, 0, 0, -1), 86399, {0, 23, 59, 59}},
        {"too long", CTimeSpan(kLast, 0, 0, 0), kLast / 86400 * 86400, {kLast / 86400, 0, 0, 0}},
        {"too long in all", CTimeSpan(kLast, kLast, 0, 0), kLast, {106751991167300, 15, 30, 7}},
        {"too long backwards",
         CTimeSpan(kFirst, kFirst, 0, 0),
         kFirst,
         {-106751991167300, -15, -30, -8}},
    };
    for (const auto& [fault, span, total, expected] : rows) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(span.GetTotalSeconds(), total);
        const std::array<std::int64_t, 4> parts{span.GetDays(), span.GetHours(), span.GetMinutes(),
                                                span.GetSeconds()};
        EXPECT_EQ(parts, expected);
    }
}

TEST(CalendarTime, ArithmeticStopsAtTheEnds)
{
    EXPECT_EQ((CTime(kLast) + CTimeSpan(1)).GetTime(), kLast);
    EXPECT_EQ((CTime(kFirst) + CTimeSpan(-1)).GetTime(), kFirst);
    EXPECT_EQ((CTime(kFirst) - CTimeSpan(1)).GetTime(), kFirst);
    EXPECT_EQ((CTime(0) - CTimeSpan(kFirst)).GetTime(), kLast);
    EXPECT_EQ((CTime(-1) - CTimeSpan(kFirst)).GetTime(), kLast) << "just fits";
    EXPECT_EQ((CTime(kLast) - CTime(kFirst)).GetTotalSeconds(), kLast);
    EXPECT_EQ((CTime(100) - CTime(30)).GetTotalSeconds(), 70);
}

// Instants from a calendar library of another language.
TEST(CalendarTime, IsReadAndBuiltInTheZone)
{
    // instant: seconds since 1970, UTC
    const std::tuple<std::string_view, const char*, std::int64_t, Parts> rows[] = {
        {kTokyo, "start of the count", 0, {1970, 1, 1, 9, 0, 0, 4}},
        {kTokyo, "summer", 1719837296, {2024, 7, 1, 21, 34, 56, 1}},
        {kTokyo, "leap day", 951750000, {2000, 2, 29, 0, 0, 0, 2}},
        {kTokyo, "before the count", -1, {1970, 1, 1, 8, 59, 59, 4}},
        {kUtc, "start of the count", 0, {1970, 1, 1, 0, 0, 0, 4}},
        {kUtc, "before the count", -1, {1969, 12, 31, 23, 59, 59, 3}},
        {kUtc, "beyond 32 bits", 4294967295, {2106, 2, 7, 6, 28, 15, 0}},
        {kNewYork, "winter", 315982800, {1980, 1, 6, 0, 0, 0, 0}},
        {kNewYork, "summer", 1719837296, {2024, 7, 1, 8, 34, 56, 1}},
        {kNewYork, "last second before the gap", 1710053999, {2024, 3, 10, 1, 59, 59, 0}},
        {kNewYork, "behind the gap", 1710054000, {2024, 3, 10, 3, 0, 0, 0}},
    };
    for (const auto& [zone, fault, instant, parts] : RowsOfThisZone(rows)) {
        SCOPED_TRACE(fault);
        const auto& [year, month, day, hour, minute, second, dayOfWeek] = parts;
        EXPECT_EQ(PartsOf(CTime(instant)), parts);
        EXPECT_EQ(CTime(year, month, day, hour, minute, second).GetTime(), instant);
    }
}

// 2024-11-03 01:30:00, which comes twice where daylight saving ends on that day.
TEST(CalendarTime, ObeysTheDaylightSavingFlag)
{
    const std::tuple<std::string_view, const char*, int, std::int64_t> rows[] = {
        {kTokyo, "standard time", 0, 1730565000},
        {kUtc, "standard time", 0, 1730597400},
        {kNewYork, "first time", 1, 1730611800},
        {kNewYork, "second time", 0, 1730615400},
    };
    for (const auto& [zone, fault, daylightSaving, instant] : RowsOfThisZone(rows)) {
        EXPECT_EQ(CTime(2024, 11, 3, 1, 30, 0, daylightSaving).GetTime(), instant) << fault;
    }
}

TEST(CalendarTime, RollsOverPartsBeyondTheirRanges)
{
    EXPECT_EQ(CTime(2023, 13, 1, 0, 0, 0), CTime(2024, 1, 1, 0, 0, 0));
    EXPECT_EQ(CTime(2023, 2, 29, 0, 0, 0), CTime(2023, 3, 1, 0, 0, 0));
    EXPECT_EQ(CTime(2024, 1, 1, 24, 0, -1), CTime(2024, 1, 1, 23, 59, 59));
    EXPECT_EQ(CTime(2024, 0, 0, 0, 0, 0), CTime(2023, 11, 30, 0, 0, 0));
}

// What no calendar holds: every answer stays defined, which the sanitizers watch.
TEST(CalendarTime, BeyondTheCalendar)
{
    EXPECT_EQ(PartsOf(CTime(kLast)), Parts{});
    EXPECT_EQ(PartsOf(CTime(kFirst)), Parts{});
    EXPECT_EQ(PartsOf(CTime(67767976233619200)), Parts{}) << "second day of the year 2^31";
    EXPECT_EQ(CTime(kMaxInt, kMaxInt, kMaxInt, kMaxInt, kMaxInt, kMaxInt).GetTime(), 0);
    EXPECT_EQ(CTime(kMinInt, kMinInt, kMinInt, kMinInt, kMinInt, kMinInt).GetTime(), 0);
}

TEST(CalendarTime, TakesTheSecondInWhichAnInstantLies)
{
    using namespace std::chrono_literals;
    const std::chrono::system_clock::time_point start;
    EXPECT_EQ(CTime(start + 1999ms).GetTime(), 1);
    EXPECT_EQ(CTime(start - 1ms).GetTime(), -1) << "cut towards zero";
}

} // namespace
} // namespace fieldcore
