// --dry-run: whatever it is given to, nothing is different afterwards.

#include "tests/cli/Runner.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

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
        "ports set 1 57600 --port sim:",
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
    for (const char* const look : {"antenna list", "ports show", "signal show --port sim:"}) {
        ASSERT_EQ(runner.Run(look).code, 0); // which installs the catalogue and makes defaults
    }
    const auto state = [&] {
        std::vector<std::string> all{runner.Run("settings export --all").out};
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(runner.Folder().Path())) {
            all.push_back(entry.path().string());
        }
        std::sort(all.begin(), all.end());
        return all;
    };
    const std::vector<std::string> before = state();
    for (const char* const command : commands) {
        SCOPED_TRACE(command);
        const Outcome outcome = runner.Run(std::string(command) + " --dry-run --json");
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.Json().value("dryRun", false), true);
        EXPECT_NE(outcome.err.find("nothing was changed"), std::string::npos) << "not told";
        EXPECT_EQ(state(), before);
    }
}

} // namespace
} // namespace fieldcore::cli::test
