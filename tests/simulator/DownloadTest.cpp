// Answers that go on, over the port: lists of files and downloads.

#include "simulator/Simulator.h"
#include "tests/simulator/Client.h"
#include "tests/simulator/Support.h"

#include <thread>

namespace fieldcore::simulator::test {

namespace {

constexpr std::size_t kFullBlock = 1012;
constexpr std::string_view kOneFile = "file A 3000000 2026-03-14 01:30";

Bytes Download(std::string_view name, std::uint32_t offset = 0)
{
    DataWriter out;
    return out.Text(name, 14).U32(offset).U16(0).Frame(0x96);
}

/// Reads whole blocks until one of @p offset is there.
/// @return how many there were; 0 if it did not come or what came was no block
int BlocksUntil(const Client& client, std::uint32_t offset)
{
    for (int blocks = 1; blocks < 10'000; ++blocks) {
        const Bytes block = client.Receive(kFullBlock);
        if (block.size() != kFullBlock || block[0] != kStx || block[2] != 0x95) {
            return 0;
        }
        if (Bytes(block.begin() + 5, block.begin() + 9) == DataWriter().U32(offset).Data()) {
            return blocks;
        }
    }
    return 0;
}

} // namespace

TEST(Download, EndsBetweenTwoBlocksWhenSomethingElseIsAsked)
{
    const auto simulator = StartReceiver(Parsed(kOneFile));
    const Client client(simulator->PortPath());
    ASSERT_TRUE(client.Send(Download("A.Q01")));
    ASSERT_EQ(BlocksUntil(client, 5000), 6);
    // The pipe holds some blocks more; behind them stands the block that was asked for.
    ASSERT_TRUE(client.Send(Download("A.Q01", 1'000'500)));
    const int inThePipe = BlocksUntil(client, 1'000'500);
    EXPECT_GT(inThePipe, 0);
    EXPECT_LT(inThePipe, 100) << "the old download went on";
    Bytes rest = client.Ask(kAbortRequest, 1);
    while (rest == Bytes{kStx}) {
        ASSERT_EQ(client.Receive(kFullBlock - 1).size(), kFullBlock - 1);
        rest = client.Receive(1);
    }
    EXPECT_EQ(rest, Bytes{kAck});
    simulator->Send(Bytes{0x55});
    EXPECT_EQ(client.Receive(1), Bytes{0x55}) << "the download is over";
}

TEST(Download, ABlockThatHasNotBegunIsNotSentBehindAnAbort)
{
    Scenario scenario = Parsed(kOneFile);
    scenario.faults = {ParsedRule("delay 3600000 of 95 skip 2")};
    const auto simulator = StartReceiver(scenario);
    const Client client(simulator->PortPath());
    ASSERT_EQ(client.Ask(Download("A.Q01"), 2 * kFullBlock).size(), 2 * kFullBlock);
    // Behind whatever is read, before the next is, the late block is made.
    const Bytes noise = Hex("41 0A");
    ASSERT_TRUE(client.Send(noise));
    while (simulator->Record().back().bytes != noise) {
        std::this_thread::yield();
    }
    EXPECT_EQ(client.Ask(kAbortRequest, 1), Bytes{kAck}) << "it waits behind the late block";
}

} // namespace fieldcore::simulator::test
