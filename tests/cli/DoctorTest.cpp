#include "tests/cli/Runner.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

TEST(Doctor, FindsEachTroubleAndSaysWhatToDo)
{
    struct Row
    {
        std::string_view trouble;
        std::function<void(Runner&)> make;
        std::string check;
        std::string health;
        std::string told; ///< part of what is found or advised
        int code;
    };
    const auto group = [](World::SerialGroup found) {
        return [found = std::move(found)](Runner& runner) {
            runner.world.serialGroup = [found] { return found; };
        };
    };
    const auto noFontList = [](Runner& runner) {
        runner.world.listJapaneseFonts = [] { return std::nullopt; };
        runner.world.fontFolders = {runner.Path("fonts"), runner.Path("no-fonts")};
    };
    const Row rows[] = {
        {"nothing", [](Runner&) {}, "serial group", "ok", "dialout", 0},
        {"not in the group", group({"uucp", false, false}), "serial group", "bad",
         "sudo usermod -aG uucp", 1},
        {"put into the group since", group({"dialout", false, true}), "serial group", "attention",
         "log out and in", 0},
        {"no such group", group({}), "serial group", "attention", "no group", 0},
        {"no port", [](Runner&) {}, "serial ports", "attention", "sim:", 0},
        {"nothing", [](Runner&) {}, "version", "ok", "JSON schema 1", 0},
        {"no almanac", [](Runner&) {}, "almanac", "attention", "almanac get", 0},
        {"a new almanac", [](Runner& runner) { EXPECT_EQ(runner.Run("almanac sample").code, 0); },
         "almanac", "ok", "0.0 days old", 0},
        {"the controller's port is gone",
         [](Runner& runner) {
             EXPECT_EQ(runner.Run("settings set GPS\\Connect Port /no-such-port").code, 0);
         },
         "port /no-such-port", "bad", "There is no /no-such-port", 1},
        {"fonts cannot be listed, and there is no file", noFontList, "Japanese font", "attention",
         "fonts-vlgothic", 0},
        {"fonts cannot be listed, but there is a file",
         [&noFontList](Runner& runner) {
             noFontList(runner);
             runner.Folder().Write("fonts/truetype/vlgothic/VL-Gothic-Regular.ttf", "");
         },
         "Japanese font", "ok", "VL-Gothic-Regular.ttf", 0},
        {"folders that are not there yet", [](Runner&) {}, "settings", "ok",
         "is made when it is needed", 0},
        {"a file where a folder belongs",
         [](Runner& runner) { runner.Folder().Write("home/.config", ""); }, "settings", "bad",
         "is no folder", 1},
        {"machine store elsewhere",
         [](Runner& runner) {
             runner.Folder().Write("shared/file", "");
             runner.variables["FIELDCORE_MACHINE_STORE"] = runner.Path("shared");
         },
         "machine settings", "ok", "shared, ", 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.trouble);
        Runner runner;
        std::filesystem::create_directories(runner.Path("home"));
        row.make(runner);
        const Outcome outcome = runner.Run("doctor --json");
        EXPECT_EQ(outcome.code, row.code) << outcome.out;
        if (row.trouble == "nothing") {
            EXPECT_TRUE(std::filesystem::is_empty(runner.Path("home"))) << "it changes something";
        }
        const nlohmann::json document = outcome.Json();
        nlohmann::json checks;
        for (const nlohmann::json& each : document["result"]["checks"]) {
            checks[each["check"].get<std::string>()] = each;
        }
        const nlohmann::json check = checks[row.check];
        EXPECT_EQ(check["health"], row.health) << check;
        EXPECT_NE(check.dump().find(row.told), std::string::npos) << check;
        EXPECT_EQ(check["advice"].is_null(), row.health == "ok") << "all is well, or advice";
    }
}

} // namespace
} // namespace fieldcore::cli::test
