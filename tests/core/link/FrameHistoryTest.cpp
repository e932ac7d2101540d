#include "core/link/FrameHistory.h"

#include "tests/core/platform/TemporaryFolder.h"

#include <array>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(FrameHistory, KeepsTheLastAndForgetsTheOldest)
{
    FrameHistory history(SystemClock::Instance());
    const auto observe = history.Observer();
    const std::vector<std::uint8_t> older(9, 9);
    for (std::size_t i = 0; i < FrameHistory::kCapacity; ++i) {
        observe(Direction::Received, LineUnit::Frame, older);
    }
    const std::vector<std::uint8_t> last{0x99};
    observe(Direction::Sent, LineUnit::Noise, last);
    const auto kept = history.After(0);
    ASSERT_EQ(kept.size(), FrameHistory::kCapacity);
    EXPECT_EQ(kept.front().number, 2U);
    EXPECT_EQ(kept.back().number, 10001U);
    EXPECT_EQ(kept.back().bytes, last) << "memory of an older frame";
    EXPECT_EQ(kept.back().direction, Direction::Sent);
    EXPECT_EQ(kept.back().unit, LineUnit::Noise) << "the unit of an older one";
    EXPECT_EQ(history.After(10000).size(), 1U);
    EXPECT_TRUE(history.After(10001).empty());
    history.Clear();
    observe(Direction::Sent, LineUnit::Frame, last);
    ASSERT_EQ(history.After(0).size(), 1U);
    EXPECT_EQ(history.After(0).front().number, 10002U)
        << "numbers start anew under a reader's feet";
}

TEST(FrameHistory, TakesFromOneThreadWhatAnotherReads)
{
    FrameHistory history(SystemClock::Instance());
    constexpr std::uint64_t kFrames = 25000;
    std::thread writer([&] {
        const std::array<std::uint8_t, 6> frame{0x02, 0x00, 0x08, 0x00, 0x08, 0x03};
        for (std::uint64_t i = 0; i < kFrames; ++i) {
            history.Add(Direction::Sent, LineUnit::Frame, frame);
        }
    });
    std::uint64_t last = 0;
    while (last < kFrames) {
        const auto frames = history.After(last);
        EXPECT_LE(frames.size(), FrameHistory::kCapacity);
        for (const ExchangedFrame& frame : frames) {
            ASSERT_GT(frame.number, last);
            last = frame.number;
        }
    }
    writer.join();
    EXPECT_EQ(history.After(0).size(), FrameHistory::kCapacity);
}

TEST(FrameHistory, IsSavedAsAnExchangeLogOrNotAtAll)
{
    const TemporaryFolder folder;
    using namespace std::chrono_literals;
    const Clock::UtcTime day{std::chrono::sys_days(std::chrono::year(2024) / 2 / 29)};
    const std::vector<ExchangedFrame> frames{
        {1, day + 9h + 7min + 4s + 50ms, Direction::Sent, LineUnit::Frame, {2, 0, 8, 0, 8, 3}},
        {2, day + 9h + 59min + 59s + 999999us, Direction::Received, LineUnit::Frame, {0x15}},
        {3, day + 10h, Direction::Sent, LineUnit::Break, {0}},
        {4, day + 10h + 10s, Direction::Received, LineUnit::Noise, {0x99, 0xFF}}};
    const auto file = folder.Write("exchange.log", "old");
    ASSERT_FALSE(SaveFrameLog(file, frames));
    EXPECT_EQ(ContentOf(file),
              "07:4.050 Rcvr Tx [02 00 08 00 08 03 ]\r\n59:59.999 Rcvr Rx [15 ]\r\n"
              "00:0.000 Rcvr Tx [00 ]\r\n00:10.000 Rcvr Rx [99 FF ]\r\n");
    EXPECT_TRUE(SaveFrameLog(folder.Path() / "no-folder/exchange.log", frames));
    EXPECT_TRUE(SaveFrameLog(folder.Path(), frames)) << "a folder was replaced";
}

} // namespace
} // namespace fieldcore
