// Antennas and typed texts from the command line. Which texts are valid is tested with the library.

#include "tests/cli/Runner.h"

#include <fstream>
#include <string>
#include <vector>

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

TEST(Check, EndsWithTheVerdict)
{
    Runner runner;
    const auto codeOf = [&](std::vector<std::string> words) {
        words.insert(words.begin(), "check");
        return runner.Run(words).code;
    };
    EXPECT_EQ(codeOf({"number", "-3.5"}), 0);
    EXPECT_EQ(codeOf({"number", "11", "--max", "10"}), 1) << "limit not passed on";
    EXPECT_EQ(codeOf({"number", "1.5", "--integer"}), 1) << "flag not passed on";
    EXPECT_EQ(codeOf({"number", ""}), 0);
    EXPECT_EQ(codeOf({"number", "--text=-"}), 0) << "a lone minus is no option";
    EXPECT_EQ(codeOf({"point", "A-1"}), 0);
    EXPECT_EQ(codeOf({"point", "点"}), 1);
    EXPECT_EQ(codeOf({"point", "A\xFF"}), 1) << "bytes that are no UTF-8";
    EXPECT_EQ(codeOf({"angle", "-10-30-00"}), 0) << "it begins with a minus";
    EXPECT_EQ(codeOf({"angle", "91", "--max", "90"}), 1) << "degrees not passed on";
    EXPECT_EQ(codeOf({"number"}), 2);
    EXPECT_EQ(codeOf({"number", "1", "--decimals", "10"}), 2);
}

TEST(Check, TellsTheValueOrTheMessage)
{
    Runner runner;
    const nlohmann::json angle = runner.Result("check angle 90-30 --decimals 1");
    EXPECT_NEAR(angle["rad"].get<double>(), 90.5 / 180.0 * 3.141592653589793, 1e-15);
    EXPECT_EQ(angle["dms"], "90-30-00.0");
    EXPECT_EQ(runner.Result("check number 1.2345 --decimals 2")["rounded"], 1.23);

    const nlohmann::json refused = runner.Run("check number 11 --min 1 --max 10 --json").Json();
    EXPECT_EQ(refused["result"]["valid"], false);
    EXPECT_TRUE(refused["result"]["value"].is_null());
    EXPECT_EQ(refused["error"]["code"], "not-valid");
    EXPECT_EQ(refused["messages"][0]["text"],
              "The value must lie between [ 1.000 ] and [ 10.000 ].");
}

TEST(Next, CountsOn)
{
    Runner runner;
    const nlohmann::json names = runner.Result("next A-8 --count 3 --max 3");
    EXPECT_EQ(names["names"][0]["name"], "A-9");
    EXPECT_EQ(names["names"][1]["name"], "A-9") << "there is no room for A-10";
    EXPECT_EQ(names["names"][1]["changed"], false);
    EXPECT_EQ(names["names"].size(), 3U);
}

} // namespace
} // namespace fieldcore::cli::test
