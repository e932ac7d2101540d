// Antennas from the command line: what is printed, stored and refused.

#include "tests/cli/Runner.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

TEST(Antenna, ReducesASlantHeight)
{
    Runner runner;
    EXPECT_EQ(runner.Run("antenna height --slant 1.5 --r 0.1 --v 0.05").out,
              "1.547   sqrt(1.5000^2 - 0.10000^2) + 0.05000 = 1.546663\n");
    const Outcome tooShort = runner.Run("antenna height --slant 0.05 --r 0.1 --v 0.05 --json");
    EXPECT_EQ(tooShort.Json()["result"]["verticalM"], 0.1);
    EXPECT_EQ(tooShort.Json()["messages"].size(), 1U) << "no warning";
}

TEST(Antenna, StoresWhatIsNamedAndKeepsTheRest)
{
    Runner runner;
    const std::string block("\x08\x0f"
                            "01AB12    \x01\x00\x00\x3c\x46",
                            17);
    runner.Folder().Write("logged", block);
    runner.Folder().Write("unknown", std::string(block).replace(2, 2, "??"));
    runner.Expect({
        {"antenna set --type 3", 2}, // no height yet
        {"antenna set --height -0.1", 2},
        {"antenna set --height 1e0", 2}, // nor at the screen
        {"antenna set --height 154.3", 2},
        {"antenna set --height 1 --type 7", 2},
        {"antenna set --height 1 --type -1", 2},
        {"antenna set --height 1 --type 6 --method 2", 2},
        {"antenna set --height 1 --serial a_b", 2},
        {"antenna set --height 1 --role base", 2},
        {"antenna set --from @/unknown", 1},
        {"antenna set --from @/none", 8},
        {"antenna set --height 1.543 --dry-run", 0, "nothing was changed"},
    });
    EXPECT_EQ(runner.Result("antenna show")["isMeasured"], false);
    runner.Expect({{"antenna set --height 1.543 --type 3 --method 1 --serial A1", 0}});
    nlohmann::json now = runner.Result("antenna set --height 1.6");
    EXPECT_EQ(now["type"], 3);
    EXPECT_EQ(now["method"], 1);
    EXPECT_EQ(now["serial"], "A1");
    EXPECT_EQ(now["verticalM"], 1.647); // sqrt(2.56 - 0.01) + 0.05 = 1.64687
    now = runner.Result("antenna set --type 4");
    EXPECT_EQ(now["method"], 0) << "a method of the antenna before";
    now = runner.Run("antenna set --role rover-second --from @/logged --serial C3 --json").Json();
    EXPECT_EQ(now["result"]["measuredM"], 1.543);
    EXPECT_EQ(now["result"]["serial"], "C3") << "what is named goes before the file";
    EXPECT_GT(now["result"]["number"], 0);
    EXPECT_EQ(runner.Result("antenna show --role reference")["isMeasured"], false);
}

TEST(Antenna, IsNotReplacedByItsNeighbour)
{
    Runner runner;
    ASSERT_EQ(runner.Run("antenna set --height 1.5 --type 6 --method 1").code, 0);
    const nlohmann::json list = runner.Result("antenna list");
    std::ofstream(list["file"].get<std::string>())
        << "[ANTENNATYPE]\nDATA0=A\n[A]\nMeasMethod0=0.1,0.05,0,\"m\"\n";
    const Outcome show = runner.Run("antenna show --json");
    EXPECT_EQ(show.Json()["result"]["type"], 6);
    EXPECT_EQ(show.Json()["result"]["verticalM"], 1.5);
    EXPECT_EQ(show.Json()["messages"].size(), 1U) << "nobody is told";
    EXPECT_EQ(runner.Run("antenna set --height 1.6 --json").Json()["error"]["code"],
              "antenna-unknown");
    EXPECT_EQ(runner.Run("antenna set --type 0 --method 1").code, 0);
}

} // namespace
} // namespace fieldcore::cli::test
