#include "core/platform/FastClock.h"

#include "core/platform/Clock.h"

#include <chrono>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

using Watch = std::chrono::steady_clock;

constexpr Clock::UtcTime kStart = std::chrono::sys_days(std::chrono::year{2026} / 3 / 1) + 12h;

// What the watch shows is read around each step, so the bounds hold however slow the machine is.
TEST(FastClock, RunsFasterThanAWatch)
{
    const auto beforeStart = Watch::now();
    const FastClock clock(1000.0, kStart);
    const auto afterStart = Watch::now();

    const auto beforeReading = Watch::now();
    const Clock::Duration steady = clock.Steady();
    const Clock::Duration date = clock.Utc() - kStart;
    const auto afterReading = Watch::now();

    EXPECT_GE(steady, 1000 * (beforeReading - afterStart));
    EXPECT_GE(date, steady);
    EXPECT_LE(date, 1000 * (afterReading - beforeStart));
}

TEST(FastClock, ConvertsWaits)
{
    EXPECT_EQ(FastClock(1000.0).RealTime(2s), 2ms);
    EXPECT_EQ(FastClock(0.5).RealTime(2s), 4s);
    EXPECT_EQ(FastClock(1000.0).RealTime(0s), 0s);
}

TEST(FastClock, LeapsWithItsDate)
{
    FastClock clock(2.0, kStart);
    const Clock::Duration before = clock.Steady();
    clock.Leap(1h);
    EXPECT_GE(clock.Steady() - before, 1h);
    EXPECT_GE(clock.Utc() - kStart, 1h);
}

TEST(FastClock, MovesItsDateOnly)
{
    constexpr double kSpeed = 1e6;
    constexpr Clock::UtcTime kNewDate = kStart - std::chrono::years{3};
    FastClock clock(kSpeed, kStart);
    while (clock.Steady() < 1000s) { // a millisecond
    }
    const auto before = Watch::now();
    const Clock::Duration steady = clock.Steady();
    ASSERT_TRUE(clock.SetUtc(kNewDate));
    const Clock::Duration date = clock.Utc() - kNewDate;
    const Clock::Duration steadyAfter = clock.Steady();
    const auto elapsed = kSpeed * (Watch::now() - before);

    EXPECT_GE(date, 0s);
    EXPECT_LE(date, elapsed) << "it counts on from the new date";
    EXPECT_GE(steadyAfter, steady) << "time-outs must not notice";
    EXPECT_LE(steadyAfter - steady, elapsed) << "time-outs must not notice";
}

} // namespace
} // namespace fieldcore
