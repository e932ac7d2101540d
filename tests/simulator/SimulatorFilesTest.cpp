// What the simulator leaves in the file system: its link, its records, and nothing else.

#include "simulator/Simulator.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/simulator/Client.h"
#include "tests/simulator/Support.h"

#include <filesystem>
#include <fstream>

namespace fieldcore::simulator::test {

namespace fs = std::filesystem;

TEST(SimulatorFiles, RecordsWhatWasSaidAndReplaysIt)
{
    const TemporaryFolder folder;
    const fs::path log = folder.Path() / "exchange.log";
    Bytes serial;
    {
        const auto simulator =
            StartReceiver(Shipped("lark"), SystemClock::Instance(), {{}, log, {}});
        const Client client(simulator->PortPath());
        serial = client.Ask(kSerialRequest, kSerialSize);
        const std::vector<RecordedBytes> record = simulator->Record();
        ASSERT_EQ(record.size(), 2U);
        EXPECT_EQ(record[0].bytes, kSerialRequest);
        EXPECT_EQ(record[1].bytes, serial);
        EXPECT_LE(record[0].time, record[1].time);
    }
    EXPECT_EQ(ContentOf(log), "00:1.000 Rcvr Tx [02 00 06 00 06 03 ]\r\n" +
                                  LogLine(Direction::FromReceiver, serial));

    const auto simulator =
        StartReceiver(Shipped("unsupported"), SystemClock::Instance(), {{}, {}, log});
    const Client client(simulator->PortPath());
    EXPECT_EQ(client.Ask(kSerialRequest, kSerialSize), serial);
}

TEST(SimulatorFiles, NeverOverwritesWhatIsNotItsOwnLink)
{
    const TemporaryFolder folder;
    std::ofstream(folder.Path() / "file") << "precious";
    fs::create_symlink("/dev/null", folder.Path() / "elsewhere");
    fs::create_symlink("nowhere", folder.Path() / "dangling");
    fs::create_symlink("/dev/pts/999999", folder.Path() / "stale");
    const auto first = StartReceiver(Shipped("lark"), SystemClock::Instance(),
                                     {folder.Path() / "running", {}, {}});
    constexpr std::pair<const char*, bool> kRows[] = {
        {"file", false}, {"elsewhere", false}, {"dangling", false}, {"running", false},
        {"stale", true}, {"new", true},        {"none/such", false}};
    for (const auto& [name, starts] : kRows) {
        SCOPED_TRACE(name);
        std::string error;
        Simulator simulator(Shipped("lark"), SystemClock::Instance(),
                            {folder.Path() / name, {}, {}});
        EXPECT_EQ(simulator.Start(error), starts) << error;
        EXPECT_EQ(error.empty(), starts);
    }
    EXPECT_EQ(ContentOf(folder.Path() / "file"), "precious");
    EXPECT_EQ(fs::read_symlink(folder.Path() / "elsewhere"), "/dev/null");
    EXPECT_FALSE(fs::exists(fs::symlink_status(folder.Path() / "stale")))
        << "its link stayed behind";
    EXPECT_TRUE(fs::exists(first->PortPath()));
}

TEST(SimulatorFiles, FilesThatCannotBeOpenedAreNamed)
{
    const TemporaryFolder folder;
    std::ofstream(folder.Path() / "bad.log") << "no log\n";
    const SimulatorOptions rows[] = {{{}, folder.Path() / "none/record.log", {}},
                                     {{}, {}, folder.Path() / "missing.log"},
                                     {{}, {}, folder.Path() / "bad.log"}};
    for (const SimulatorOptions& options : rows) {
        const std::string name =
            (options.recordFile.empty() ? options.replayFile : options.recordFile).string();
        SCOPED_TRACE(name);
        std::string error;
        Simulator simulator(Shipped("lark"), SystemClock::Instance(), options);
        EXPECT_FALSE(simulator.Start(error));
        EXPECT_NE(error.find(name + ": "), std::string::npos) << error;
    }
}

} // namespace fieldcore::simulator::test
