// Typed texts from the command line. Which texts are valid is tested with the library.

#include "tests/cli/Runner.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

TEST(Check, EndsWithTheVerdict)
{
    struct Row
    {
        std::string_view fault;
        std::vector<std::string> words;
        int code;
    };
    const Row rows[] = {
        {"number", {"check", "number", "-3.5"}, 0},
        {"limit not passed on", {"check", "number", "11", "--max", "10"}, 1},
        {"flag not passed on", {"check", "number", "1.5", "--integer"}, 1},
        {"full-width digit", {"check", "number", "\uFF11"}, 1},
        {"nothing typed", {"check", "number", ""}, 0},
        {"a lone minus is no option", {"check", "number", "--text=-"}, 0},
        {"point", {"check", "point", "A-1"}, 0},
        {"kanji", {"check", "point", "点"}, 1},
        {"angle that begins with a minus", {"check", "angle", "-10-30-00"}, 0},
        {"degrees not passed on", {"check", "angle", "91", "--max", "90"}, 1},
        {"bytes that are no UTF-8", {"check", "point", "A\xFF"}, 1},
        {"no text", {"check", "number"}, 2},
        {"decimals beyond any use", {"check", "number", "1", "--decimals", "10"}, 2},
        {"limit that is no number", {"check", "number", "1", "--max", "ten"}, 2},
        {"nothing to check", {"check"}, 2},
        {"a name of no length", {"next", "A", "--max", "0"}, 2},
    };
    Runner runner;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Outcome outcome = runner.Run(row.words);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
    }
}

TEST(Check, TellsTheValueOrTheMessage)
{
    Runner runner;
    const nlohmann::json angle =
        runner.Run("check angle 90-30 --decimals 1 --json").Json()["result"];
    EXPECT_NEAR(angle["rad"].get<double>(), 90.5 / 180.0 * 3.141592653589793, 1e-15);
    EXPECT_EQ(angle["dms"], "90-30-00.0");
    EXPECT_EQ(runner.Run("check number 1.2345 --decimals 2 --json").Json()["result"]["rounded"],
              1.23);

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
    const nlohmann::json names = runner.Run("next A-8 --count 3 --max 3 --json").Json()["result"];
    EXPECT_EQ(names["names"][0]["name"], "A-9");
    EXPECT_EQ(names["names"][1]["name"], "A-9") << "there is no room for A-10";
    EXPECT_EQ(names["names"][1]["changed"], false);
    EXPECT_EQ(names["names"].size(), 3U);
}

} // namespace
} // namespace fieldcore::cli::test
