#include "simulator/Transmitter.h"
#include "tests/simulator/Support.h"

namespace fieldcore::simulator::test {

namespace {

/// Everything that may go out by @p now, as the worker takes it.
std::size_t Drain(Transmitter& transmitter, Clock::Duration now)
{
    std::size_t bytes = 0;
    while (transmitter.Current(now) != nullptr) {
        const std::size_t due = transmitter.DueBytes(now).size();
        transmitter.Sent(due);
        bytes += due;
        if (!transmitter.IsCurrentDone()) {
            break;
        }
        transmitter.Next(now);
    }
    return bytes;
}

} // namespace

TEST(Transmitter, PacedBytesTakeTenBitsEach)
{
    Transmitter transmitter(true, 9600);
    transmitter.Queue({Piece{Bytes(960), 100ms}}, 0s);
    // So many bytes more than at the row before.
    const std::pair<Clock::Duration, std::size_t> rows[] = {
        {99ms, 0}, {100ms, 0}, {200ms, 96}, {600ms, 384}, {1100ms, 480}, {2s, 0}};
    for (const auto& [now, bytes] : rows) {
        EXPECT_EQ(Drain(transmitter, now), bytes) << now.count();
    }
}

TEST(Transmitter, SomethingIsDueWheneverItSaysSo)
{
    // Otherwise the worker would spin until it is. 57600 has no whole nanoseconds a byte.
    Transmitter transmitter(true, 57600);
    transmitter.Queue({Piece{Bytes(1000), 3ms}}, 1s);
    std::size_t sent = 0;
    for (int wakeUps = 0; !transmitter.IsEmpty(); ++wakeUps) {
        ASSERT_LT(wakeUps, 1000);
        const Clock::Duration now = *transmitter.NextDue();
        const std::size_t bytes = Drain(transmitter, now);
        ASSERT_GT(bytes, 0U);
        sent += bytes;
    }
    EXPECT_EQ(sent, 1000U);
}

TEST(Transmitter, ANewRateCountsFromItsTime)
{
    Transmitter transmitter(true, 9600);
    transmitter.SetBaudRate(19200, 200ms);
    transmitter.Queue({Piece{Bytes(96), 0ms}}, 0ms);
    EXPECT_EQ(Drain(transmitter, 50ms), 48U);
    EXPECT_EQ(Drain(transmitter, 100ms), 48U);
    transmitter.Queue({Piece{Bytes(96), 0ms}}, 300ms);
    EXPECT_EQ(Drain(transmitter, 350ms), 96U);
}

TEST(Transmitter, DoesNotGrowWhenNobodyReads)
{
    Transmitter transmitter(false, 9600);
    for (int i = 0; i < 100; ++i) {
        transmitter.Queue({Piece{Bytes(100'000), 0ms}}, 0s);
    }
    EXPECT_LE(Drain(transmitter, 1s), Transmitter::kMaxWaiting);
    transmitter.Queue({Piece{Bytes(100'000), 0ms}}, 1s);
    EXPECT_EQ(Drain(transmitter, 1s), 100'000U) << "what was sent still counts as waiting";
}

} // namespace fieldcore::simulator::test
