// Settings from the command line, in the real store.

#include "tests/cli/Runner.h"

#include <sqlite3.h>

namespace fieldcore::cli::test {
namespace {

/// What the user's root holds, whole.
std::string Saved(Runner& runner)
{
    return runner.Run("settings export --all").out;
}

TEST(Settings, KeepTheTypeThatAValueHas)
{
    struct Row
    {
        std::string set;
        int code;
        std::string type; ///< afterwards
        nlohmann::json value;
    };
    const Row rows[] = {
        {"17", 0, "text", "17"},
        {"0x11 --type number", 0, "number", 17},
        {"18", 0, "number", 18},
        {"many", 2, "number", 18},
        {"'00 fF1a' --type binary", 0, "binary", "00 FF 1A"},
        {"0", 2, "binary", "00 FF 1A"}, // half a byte
        {"1 --type real", 2, "binary", "00 FF 1A"},
        {"'\xE6\xB8\xAC \"%\"' --type text", 0, "text", "\xE6\xB8\xAC \"%\""},
        {"''", 0, "text", ""},
    };
    Runner runner;
    for (const auto& [set, code, type, value] : rows) {
        SCOPED_TRACE(set);
        EXPECT_EQ(runner.Run("settings set Plan Value " + set).code, code);
        runner.Expect({{"settings get plan value", 0, "", "/result/type", type},
                       {"settings get plan value", 0, "", "/result/value", value}});
    }
}

TEST(Settings, FindTheRootAndKeyThatAreMeant)
{
    Runner runner;
    for (const std::string set : {"user", "machine --machine", "root --all"}) {
        ASSERT_EQ(runner.Run("settings set A n " + set).code, 0);
    }
    const std::pair<std::string, std::string> rows[] = {
        {"get A n", "user\n"},
        {"get A n --machine", "machine\n"},
        {"get A n --all", "root\n"},
        {"get Software\\Aldex-Corvane\\olen+(GPS)\\A n --all", "user\n"},
        {"list", "Software\\Aldex-Corvane\\olen+(GPS)\\\n  A\\\n    n  text    user\n"}};
    for (const auto& [words, shown] : rows) {
        EXPECT_EQ(runner.Run("settings " + words).out, shown) << words;
    }
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
    const std::string before = ContentOf(file);
    for (const std::string command :
         {"list", "get A n", "set A n 2", "delete A --yes", "delete A n --yes", "export",
          "import @/saved", "import @/saved --dry-run"}) {
        runner.Expect({{"settings " + command, 8, "no such table: value"}});
    }
    EXPECT_EQ(ContentOf(file), before);
}

TEST(Settings, AreDeletedOnlyWhenItIsAgreed)
{
    Runner runner;
    for (const std::string value : {"A n", "A m", "A\\B o", "C p"}) {
        ASSERT_EQ(runner.Run("settings set " + value + " x").code, 0);
    }
    const std::string all = Saved(runner);
    runner.Expect({{"settings delete A", 2}, // nobody can be asked
                   {"settings delete A x --yes", 1},
                   {"settings delete X --yes", 1},
                   {"settings delete \\ --yes", 2}}); // the key all stands in
    runner.Type("n\n");
    EXPECT_EQ(runner.Run("settings delete A").code, 7);
    EXPECT_EQ(Saved(runner), all);
    runner.Type("y\n");
    EXPECT_EQ(runner.Run("settings delete A\\B").code, 0);
    EXPECT_EQ(runner.Run("settings delete A n --yes").code, 0);
    runner.Expect({{"settings get A\\B o", 1}, {"settings get A n", 1}, {"settings get A m", 0}});
    EXPECT_EQ(runner.Run("settings delete A --yes").code, 0); // with all that is left below
    runner.Expect({{"settings list A", 1}, {"settings get C p", 0}});
}

TEST(Settings, ComeBackFromAnExport)
{
    Runner runner;
    runner.Expect({{"settings set A n 1 --type number", 0}, {"settings set A m old", 0}});
    const std::string before = Saved(runner);
    runner.Expect({{"settings export @/saved.txt", 0},
                   {"settings set A m new", 0},
                   {"settings set A added x", 0}});
    const std::string changed = Saved(runner);

    // One damaged line, behind a good one: nothing of it may be stored.
    const std::string good = ContentOf(runner.Path("saved.txt"));
    runner.Folder().Write("bad.txt", good + "\"x\" = number 1,5\n");
    runner.Expect({{"settings import @/bad.txt", 8, "bad.txt, line 8: "}});
    EXPECT_EQ(runner.Result("settings import @/saved.txt --dry-run")["changes"].size(), 1U);
    EXPECT_EQ(Saved(runner), changed);

    runner.Expect({{"settings import @/saved.txt", 0},
                   {"settings delete A added --yes", 0}}); // what is not in the file stays
    EXPECT_EQ(Saved(runner), before);
    runner.input = good;
    runner.Expect({{"settings import -", 0}});
}

TEST(Settings, ReplaceNoFileUnasked)
{
    Runner runner;
    runner.Folder().Write("mine.txt", "mine");
    runner.Expect({{"settings export @/mine.txt", 2}});
    EXPECT_EQ(ContentOf(runner.Path("mine.txt")), "mine");
    runner.Expect({{"settings export @/mine.txt --yes", 0},
                   {"settings export --yes @/", 8}, // a folder
                   {"settings export @/none/file", 8},
                   {"settings import @/", 8},
                   {"settings import @/none", 8}});
    EXPECT_NE(ContentOf(runner.Path("mine.txt")), "mine");
}

TEST(Settings, SayWhenTheyCannotBeKept)
{
    Runner runner;
    runner.Folder().Write("home/.config", ""); // where the folder should be
    runner.Expect({{"settings set A n 1", 8, "cannot be saved", "/messages/0/kind", "warning"}});
    EXPECT_EQ(runner.Run("settings list").code, 0);
}

TEST(Settings, SayWhichDeviceAComNumberMeans)
{
    Runner runner;
    runner.Folder().Write("device", "");
    const std::string device = runner.Path("device");
    runner.Expect({{"settings set Ports COM9 @/device", 0},
                   {"identify --port com9", 3, device},
                   {"settings set Ports COM8 ttyUSB0", 0, "COM8"}}); // not only when it is used
}

} // namespace
} // namespace fieldcore::cli::test
