// Answers that go on, over the port: lists of files and downloads.

#include "simulator/Simulator.h"
#include "tests/simulator/Client.h"
#include "tests/simulator/Support.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::simulator::test {

namespace {

constexpr std::size_t kFullBlock = 1012;
constexpr std::string_view kOneFile = "file A 3000000 2026-03-14 01:30";
const Bytes kAbort = Hex("02 00 5A 09 00 00 00 00 00 00 00 00 00 63 03");

Bytes Download(std::string_view name, std::uint32_t offset = 0)
{
    DataWriter out;
    return out.Text(name, 14).U32(offset).U16(0).Frame(0x96);
}

Bytes Content(const ReceiverFile& file)
{
    Bytes bytes(file.size);
    ReadFileContent(file, 0, bytes);
    return bytes;
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
        DataWriter wanted;
        wanted.U32(offset);
        if (std::equal(block.begin() + 5, block.begin() + 9, wanted.Data().begin())) {
            return blocks;
        }
    }
    return 0;
}

} // namespace

TEST(Download, BringsEveryByteOfAFileOfMegabytes)
{
    const auto simulator = Started(Shipped("lark"));
    const ReceiverFile file = simulator->Files()[4];
    ASSERT_GT(file.size, 3'000'000U);
    const Client client(simulator->PortPath());
    ASSERT_TRUE(client.Send(Download(file.name)));
    Bytes content;
    while (content.size() < file.size) {
        const std::size_t here = std::min<std::size_t>(file.size - content.size(), 1000);
        const Bytes block = client.Receive(here + 12);
        ASSERT_EQ(block.size(), here + 12);
        content.insert(content.end(), block.begin() + 10, block.end() - 2);
    }
    EXPECT_TRUE(content == Content(file));
    ASSERT_TRUE(client.Send(kAbort));
    EXPECT_EQ(client.Receive(1), Bytes{kAck}) << "nothing comes behind the last block";
    EXPECT_EQ(simulator->Requests(), (std::vector<Bytes>{Download(file.name), kAbort}));
}

TEST(Download, EndsBetweenTwoBlocksWhenSomethingElseIsAsked)
{
    const auto simulator = Started(Parsed(kOneFile));
    const Client client(simulator->PortPath());
    ASSERT_TRUE(client.Send(Download("A.Q01")));
    ASSERT_EQ(BlocksUntil(client, 5000), 6);
    // The pipe holds some blocks more; behind them stands the block that was asked for.
    ASSERT_TRUE(client.Send(Download("A.Q01", 1'000'500)));
    const int inThePipe = BlocksUntil(client, 1'000'500);
    EXPECT_GT(inThePipe, 0);
    EXPECT_LT(inThePipe, 100) << "the old download went on";
    ASSERT_TRUE(client.Send(kAbort));
    Bytes rest = client.Receive(1);
    while (rest == Bytes{kStx}) {
        ASSERT_EQ(client.Receive(kFullBlock - 1).size(), kFullBlock - 1);
        rest = client.Receive(1);
    }
    EXPECT_EQ(rest, Bytes{kAck});
    simulator->Send(Bytes{0x55});
    EXPECT_EQ(client.Receive(1), Bytes{0x55}) << "the download is over";
}

TEST(Download, FaultsOfTheLineStrikeItsBlocksAndItsEnd)
{
    Scenario scenario = Parsed(kOneFile);
    std::string error;
    FaultRule rule;
    ASSERT_TRUE(ParseFaultRule("drop of 95 skip 3 count 1", rule, error)) << error;
    scenario.faults.push_back(rule);
    ASSERT_TRUE(ParseFaultRule("hang-up reply 8500 on 96", rule, error)) << error;
    scenario.faults.push_back(rule);
    const auto simulator = Started(scenario);
    const Client client(simulator->PortPath());
    ASSERT_TRUE(client.Send(Download("A.Q01")));
    EXPECT_EQ(BlocksUntil(client, 4000), 4) << "the fourth block was to be lost";
    const Bytes rest = client.Receive(100'000);
    EXPECT_EQ(rest.size(), 8500 - 4 * kFullBlock);
    EXPECT_TRUE(client.SeesHangUp());
    // The port comes back to a receiver that has forgotten the download.
    ASSERT_TRUE(simulator->Plug());
    const Client again(simulator->PortPath());
    ASSERT_TRUE(again.Send(kAbort));
    EXPECT_EQ(again.Receive(1), Bytes{kAck});
}

TEST(Download, ABlockThatHasNotBegunIsNotSentBehindAnAbort)
{
    Scenario scenario = Parsed(kOneFile);
    std::string error;
    ASSERT_TRUE(ParseFaultRule("delay 3600000 of 95 skip 2", scenario.faults.emplace_back(), error))
        << error;
    const auto simulator = Started(scenario);
    const Client client(simulator->PortPath());
    ASSERT_TRUE(client.Send(Download("A.Q01")));
    ASSERT_EQ(client.Receive(2 * kFullBlock).size(), 2 * kFullBlock);
    ASSERT_TRUE(client.Send(kAbort));
    EXPECT_EQ(client.Receive(1), Bytes{kAck}) << "it waits behind the late block";
}

TEST(Download, AnEndlessListEndsWhenItIsAborted)
{
    const auto simulator = Started(Parsed("listing endless\nfiles 8 1 2"));
    const Client client(simulator->PortPath());
    DataWriter pattern;
    ASSERT_TRUE(client.Send(pattern.Text("*.Q01", 14).Frame(0x9C)));
    constexpr std::size_t kPage = 6 + 2 + 8 * 24;
    for (int page = 0; page < 500; ++page) {
        ASSERT_EQ(client.Receive(kPage)[2], 0x9D);
    }
    ASSERT_TRUE(client.Send(kAbort));
    Bytes start = client.Receive(1);
    for (int page = 0; page < 200 && start == Bytes{kStx}; ++page) {
        ASSERT_EQ(client.Receive(kPage - 1).size(), kPage - 1);
        start = client.Receive(1);
    }
    EXPECT_EQ(start, Bytes{kAck});
}

TEST(Download, DeletingIsSeenFromOutside)
{
    const auto simulator = Started(Shipped("lettered-power"));
    const std::size_t before = simulator->Files().size();
    const Client client(simulator->PortPath());
    DataWriter name;
    ASSERT_TRUE(client.Send(name.Text("A0314A00.Q01", 14).Frame(0xA0)));
    ASSERT_EQ(client.Receive(1), Bytes{kAck});
    const std::vector<ReceiverFile> files = simulator->Files();
    ASSERT_EQ(files.size(), before) << "its firmware has a recycle bin";
    EXPECT_EQ(files[0].name, "A0314A00.Q1D");
    EXPECT_EQ(files[0].state, FileState::Deleted);
    EXPECT_EQ(simulator->LastCommand(0x53), Bytes());
}

} // namespace fieldcore::simulator::test
