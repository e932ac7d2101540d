// Typed texts from the command line. Which texts are valid is tested with the library.

#include "tests/cli/Runner.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

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
