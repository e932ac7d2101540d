// Settings from the command line, in the real store.

#include "tests/cli/Runner.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace fieldcore::cli::test {
namespace {

using Words = std::vector<std::string>;

/// What the user's root holds, whole.
std::string Saved(Runner& runner)
{
    return runner.Run("settings export --all").out;
}

TEST(Settings, KeepTheTypeThatAValueHas)
{
    struct Row
    {
        std::string_view fault;
        Words set; ///< behind "set Plan Value"
        int code;
        std::string type; ///< afterwards
        nlohmann::json value;
    };
    const Row rows[] = {
        {"a new one is a text", {"17"}, 0, "text", "17"},
        {"made a number", {"0x11", "--type", "number"}, 0, "number", 17},
        {"stays a number", {"18"}, 0, "number", 18},
        {"a number must be one", {"many"}, 2, "number", 18},
        {"made bytes", {"00 fF1a", "--type", "binary"}, 0, "binary", "00 FF 1A"},
        {"half a byte", {"0"}, 2, "binary", "00 FF 1A"},
        {"a type that does not exist", {"1", "--type", "real"}, 2, "binary", "00 FF 1A"},
        {"made a text", {"\xE6\xB8\xAC \"%\"", "--type", "text"}, 0, "text", "\xE6\xB8\xAC \"%\""},
        {"an empty text", {""}, 0, "text", ""},
    };
    Runner runner;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Words words{"settings", "set", "Plan", "Value"};
        words.insert(words.end(), row.set.begin(), row.set.end());
        const Outcome outcome = runner.Run(words);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        const nlohmann::json result = runner.Result("settings get plan value");
        EXPECT_EQ(result["type"], row.type);
        EXPECT_EQ(result["value"], row.value);
    }
}

TEST(Settings, FindTheRootAndKeyThatAreMeant)
{
    Runner runner;
    ASSERT_EQ(runner.Run("settings set A n user").code, 0);
    ASSERT_EQ(runner.Run("settings set A n machine --machine").code, 0);
    ASSERT_EQ(runner.Run("settings set A n root --all").code, 0);
    EXPECT_EQ(runner.Run("settings get A n").out, "user\n");
    EXPECT_EQ(runner.Run("settings get A n --machine").out, "machine\n");
    EXPECT_EQ(runner.Run("settings get A n --all").out, "root\n");
    EXPECT_EQ(
        runner.Run({"settings", "get", "Software\\Aldex-Corvane\\olen+(GPS)\\A", "n", "--all"}).out,
        "user\n");
    EXPECT_EQ(runner.Run("settings list").out, "Software\\Aldex-Corvane\\olen+(GPS)\\\n"
                                               "  A\\\n"
                                               "    n  text    user\n");
}

TEST(Settings, AStoreThatCannotBeReadIsToldByEveryCommand)
{
    Runner runner;
    ASSERT_EQ(runner.Run("settings set A n 1").code, 0);
    runner.Folder().Write("saved", runner.Run("settings export").out);
    const std::string file = runner.Path("home/.config/fieldcore/user.db");
    sqlite3* database = nullptr;
    sqlite3_open(file.c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, "DROP TABLE value", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
    const std::string before = Content(file);
    for (const char* const command :
         {"list", "get A n", "set A n 2", "delete A --yes", "delete A n --yes", "export",
          "import @/saved", "import @/saved --dry-run"}) {
        SCOPED_TRACE(command);
        const Outcome outcome = runner.Run(std::string("settings ") + command);
        EXPECT_EQ(outcome.code, 8);
        EXPECT_NE(outcome.err.find("no such table: value"), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(Content(file), before);
}

TEST(Settings, AreDeletedOnlyWhenItIsAgreed)
{
    struct Row
    {
        std::string_view fault;
        std::string arguments;
        std::string answer; ///< typed on a terminal; empty: there is none
        int code;
        std::string left; ///< keys and names
    };
    const std::string all = R"(A] A\B] "n" "m" "o")";
    const Row rows[] = {
        {"nobody can be asked", "delete A", "", 2, all},
        {"declined", "delete A", "n\n", 7, all},
        {"dry run", "delete A --dry-run", "", 0, all},
        {"a value that is not there", "delete A x --yes", "", 1, all},
        {"a key that is not there", "delete X --yes", "", 1, all},
        {"the key all stands in", "delete \\ --yes", "", 2, all},
        {"one value", "delete A n --yes", "", 0, R"(A] A\B] "m" "o")"},
        {"agreed", "delete A\\B", "y\n", 0, R"(A] "n" "m")"},
        {"with all below", "delete A --yes", "", 0, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Runner runner;
        for (const char* const value : {"A n", "A m", "A\\B o"}) {
            ASSERT_EQ(runner.Run("settings set " + std::string(value) + " x").code, 0);
        }
        runner.world.inIsTerminal = runner.world.errIsTerminal = !row.answer.empty();
        runner.input = row.answer;
        EXPECT_EQ(runner.Run("settings " + row.arguments).code, row.code);
        const std::string saved = Saved(runner);
        for (const std::string name : {"A]", "A\\B]", "\"n\"", "\"m\"", "\"o\""}) {
            const bool isLeft = row.left.find(name) != std::string::npos;
            EXPECT_EQ(saved.find(name) != std::string::npos, isLeft) << name << " in " << saved;
        }
    }
}

TEST(Settings, ComeBackFromAnExport)
{
    Runner runner;
    ASSERT_EQ(runner.Run("settings set A n 1 --type number").code, 0);
    ASSERT_EQ(runner.Run("settings set A m old").code, 0);
    const std::string before = Saved(runner);
    ASSERT_EQ(runner.Run("settings export @/saved.txt").code, 0);
    ASSERT_EQ(runner.Run("settings set A m new").code, 0);
    ASSERT_EQ(runner.Run("settings set A added x").code, 0);
    const std::string changed = Saved(runner);

    // One damaged line, behind a good one: nothing of it may be stored.
    const std::string good = Content(runner.Path("saved.txt"));
    runner.Folder().Write("bad.txt", good + "\"x\" = number 1,5\n");
    runner.Expect({{"settings import @/bad.txt", 8, "bad.txt, line 8: "}});
    EXPECT_EQ(Saved(runner), changed);

    const nlohmann::json changes =
        runner.Result("settings import @/saved.txt --dry-run")["changes"];
    EXPECT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0]["value"], "old");
    EXPECT_EQ(Saved(runner), changed);

    EXPECT_EQ(runner.Run("settings import @/saved.txt").code, 0);
    EXPECT_EQ(runner.Run("settings get A added").out, "x\n") << "what is not in the file stays";
    ASSERT_EQ(runner.Run("settings delete A added --yes").code, 0);
    EXPECT_EQ(Saved(runner), before);
    runner.input = good;
    EXPECT_EQ(runner.Run("settings import -").code, 0);
}

TEST(Settings, ReplaceNoFileUnasked)
{
    Runner runner;
    runner.Folder().Write("mine.txt", "mine");
    runner.Expect({{"settings export @/mine.txt", 2}});
    EXPECT_EQ(Content(runner.Path("mine.txt")), "mine");
    runner.Expect({{"settings export @/mine.txt --yes", 0},
                   {"settings export --yes @/", 8}, // a folder
                   {"settings export @/none/file", 8},
                   {"settings import @/", 8},
                   {"settings import @/none", 8}});
    EXPECT_NE(Content(runner.Path("mine.txt")), "mine");
}

TEST(Settings, SayWhenTheyCannotBeKept)
{
    Runner runner;
    runner.Folder().Write("home/.config", ""); // where the folder should be
    const Outcome outcome = runner.Run("settings set A n 1 --json");
    EXPECT_EQ(outcome.code, 8);
    EXPECT_EQ(outcome.Json()["messages"][0]["kind"], "warning");
    EXPECT_NE(outcome.err.find("cannot be saved"), std::string::npos) << outcome.err;
    EXPECT_EQ(runner.Run("settings list").code, 0);
}

TEST(Settings, SayWhichDeviceAComNumberMeans)
{
    Runner runner;
    runner.Folder().Write("device", "");
    ASSERT_EQ(runner.Run("settings set Ports COM9 @/device").code, 0);
    const Outcome outcome = runner.Run("identify --port com9");
    EXPECT_EQ(outcome.code, 3);
    EXPECT_NE(outcome.err.find(runner.Path("device")), std::string::npos) << outcome.err;
    const Outcome relative = runner.Run("settings set Ports COM8 ttyUSB0");
    EXPECT_NE(relative.err.find("COM8"), std::string::npos) << "told only when it is used";
}

} // namespace
} // namespace fieldcore::cli::test
