#include "core/platform/AutoResetEvent.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

constexpr auto kOnlyLook = 0ms;
constexpr auto kNever = 60s; // a test that waits this long has failed

TEST(AutoResetEvent, WakesOncePerSet)
{
    AutoResetEvent event;
    EXPECT_FALSE(event.Wait(kOnlyLook)) << "set from the start";
    event.Set();
    EXPECT_TRUE(event.Wait(kOnlyLook));
    EXPECT_FALSE(event.Wait(kOnlyLook)) << "not reset by the wait";

    event.Set();
    event.Set();
    EXPECT_TRUE(event.Wait(kOnlyLook));
    EXPECT_FALSE(event.Wait(kOnlyLook)) << "set twice before anyone waits counts once";

    event.Set();
    event.Reset();
    EXPECT_FALSE(event.Wait(kOnlyLook)) << "not taken back";
    event.Set();
    EXPECT_TRUE(event.Wait(kOnlyLook)) << "reset for good";
}

TEST(AutoResetEvent, GivesUpAfterItsLimit)
{
    AutoResetEvent event;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(event.Wait(2ms));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 2ms);
    EXPECT_FALSE(event.Wait(-1s)) << "a limit that has passed already";
}

// Two threads hand a plain number back and forth: each sees what the other wrote before Set(),
// and no wake-up is lost.
TEST(AutoResetEvent, HandsOverBetweenThreads)
{
    constexpr int kRounds = 1000;
    AutoResetEvent request;
    AutoResetEvent reply;
    int number = 0;
    std::jthread other([&] {
        for (int i = 0; i < kRounds && request.Wait(kNever); ++i) {
            ++number;
            reply.Set();
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        request.Set();
        ASSERT_TRUE(reply.Wait(kNever)) << i;
        ASSERT_EQ(number, i + 1);
    }
}

} // namespace
} // namespace fieldcore
