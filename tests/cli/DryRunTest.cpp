// What must stay as it is: --dry-run changes nothing, and a simulated receiver nothing of the user.

#include "tests/cli/Runner.h"

#include <algorithm>

namespace fieldcore::cli::test {
namespace {

/// All that is stored and all files.
/// @param isReal  without what a simulated receiver leads to
std::vector<std::string> State(Runner& runner, bool isReal)
{
    std::vector<std::string> all{runner.Run("settings export --all").out,
                                 isReal ? "" : runner.Run("settings export --all --port sim:").out};
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(runner.Folder().Path())) {
        const std::string path = entry.path().string();
        if (!isReal || path.find("/simulator") == std::string::npos) {
            all.push_back(path + (path.ends_with(".alm") ? ContentOf(path) : ""));
        }
    }
    std::sort(all.begin(), all.end());
    return all;
}

TEST(SimulatedReceiver, LeadsToAStoreOfItsOwn)
{
    // Commands, and FIELDCORE_PORT.
    const std::pair<std::string, std::string> rows[] = {
        {OnSim("almanac get", "almanac-5"), ""},
        {OnSim("ports set 2 57600"), ""},
        {"ports set 2 57600", "sim:"},
        {"ports set 0 57600", "sim:"},
        {"ports set 2 57600", "stored"},
        {OnSim("signal set l2c"), ""},
        {OnSim("tilt speed slow", "tilted"), ""},
        {OnSim("identify --search --store"), ""},
        {"antenna set --height 1.5 --type 3 --port sim:", ""},
        {"settings set A n 2 --port sim:", ""},
    };
    for (const auto& [command, variable] : rows) {
        SCOPED_TRACE(command + " " + variable);
        Runner runner;
        ASSERT_EQ(runner.Run("almanac sample").code, 0);
        ASSERT_EQ(runner.Run("settings set A n 1").code, 0);
        if (variable == "stored") {
            ASSERT_EQ(runner.Run("settings set GPS\\Connect Port sim:").code, 0);
        } else if (!variable.empty()) {
            runner.variables["FIELDCORE_PORT"] = variable;
        }
        const std::vector<std::string> real = State(runner, true);
        const std::vector<std::string> all = State(runner, false);
        runner.Expect({{command, 0, "Kept in the simulator's own store."}});
        EXPECT_EQ(State(runner, true), real);
        EXPECT_NE(State(runner, false), all) << "it is kept nowhere";
    }
}

TEST(SimulatedReceiver, IsKnownToACommandOfSimRun)
{
    Runner runner;
    const std::string cli = std::string("sim run -- ") + FIELDCORE_CLI;
    EXPECT_EQ(runner.RunProgram(cli + " ports set 2 57600").code, 0);
    EXPECT_FALSE(std::filesystem::exists(runner.Path("config/fieldcore/settings.db")));
    EXPECT_NE(runner.RunProgram("ports show --port sim:").out.find("57600"), std::string::npos);
}

TEST(DryRun, ChangesNothing)
{
    Runner runner;
    const char* const commands[] = {
        "antenna set --height 1.5 --type 3",
        "settings set A n 2",
        "settings delete A",
        "settings export @/out.txt",
        "settings import @/saved.txt",
        "ports set 0 9600",
        "ports set 1 57600 --port sim:", // the one in use, and another
        "ports set 2 57600 --port sim:",
        "signal set l5 --port sim:",
        "tilt speed slow --port sim:tilted",
        "tilt expiry 5 --port sim:tilted",
        "almanac sample",
        "almanac get --port sim: --speed 20 --timeout 60",
        "reset --port sim:",
    };
    ASSERT_EQ(runner.Run("settings set A n 1").code, 0);
    ASSERT_EQ(runner.Run("settings export @/saved.txt").code, 0);
    ASSERT_EQ(runner.Run("settings set A m 1").code, 0);
    for (const char* const look :
         {"antenna list", "ports show", "ports show --port sim:", "signal show --port sim:"}) {
        ASSERT_EQ(runner.Run(look).code, 0); // which installs the catalogue and makes defaults
    }
    const std::vector<std::string> before = State(runner, false);
    for (const std::string command : commands) {
        runner.Expect({{command + " --dry-run", 0, "nothing was changed", "/dryRun", true}});
        EXPECT_EQ(State(runner, false), before) << command;
    }
}

} // namespace
} // namespace fieldcore::cli::test
