#include "tests/cli/Runner.h"

#include <functional>
#include <optional>
#include <regex>

namespace fieldcore::cli::test {
namespace {

TEST(Doctor, FindsEachTroubleAndSaysWhatToDo)
{
    struct Row
    {
        std::function<void(Runner&)> trouble;
        std::string line; ///< state, check, and part of what is found or advised
        int code = 0;
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
    const auto nothing = [](Runner&) {};
    const Row rows[] = {
        {nothing, "ok +version .*JSON schema 1"},
        {nothing, "ok +serial group .*dialout"},
        {nothing, "attention +serial ports .*sim:"},
        {nothing, "attention +almanac .*almanac get"},
        {nothing, "ok +settings .*is made when it is needed"},
        {group({"uucp", false, false}), "bad +serial group .*sudo usermod -aG uucp", 1},
        {group({"dialout", false, true}), "attention +serial group .*log out and in"},
        {group({}), "attention +serial group .*no group"},
        {[](Runner& runner) { EXPECT_EQ(runner.Run("almanac sample").code, 0); },
         "ok +almanac .*0.0 days old"},
        {[](Runner& runner) {
             EXPECT_EQ(runner.Run("settings set GPS\\Connect Port /no-such-port").code, 0);
         },
         "bad +port /no-such-port .*There is no /no-such-port", 1},
        {noFontList, "attention +Japanese font .*fonts-vlgothic"},
        {[&noFontList](Runner& runner) {
             noFontList(runner);
             runner.Folder().Write("fonts/truetype/vlgothic/VL-Gothic-Regular.ttf", "");
         },
         "ok +Japanese font .*VL-Gothic-Regular.ttf"},
        {[](Runner& runner) { runner.Folder().Write("home/.config", ""); },
         "bad +settings .*is no folder", 1},
        {[](Runner& runner) {
             runner.Folder().Write("shared/file", "");
             runner.variables["FIELDCORE_MACHINE_STORE"] = runner.Path("shared");
         },
         "ok +machine settings .*shared, "},
    };
    for (const auto& [trouble, line, code] : rows) {
        Runner runner;
        std::filesystem::create_directories(runner.Path("home"));
        trouble(runner);
        const Outcome outcome = runner.Run("doctor");
        EXPECT_EQ(outcome.code, code) << line;
        EXPECT_TRUE(std::regex_search(outcome.out, std::regex(line))) << line << "\n"
                                                                      << outcome.out;
    }
    Runner runner;
    std::filesystem::create_directories(runner.Path("home"));
    const nlohmann::json result = runner.Result("doctor");
    for (const nlohmann::json& check : result["checks"]) {
        EXPECT_EQ(check["advice"].is_null(), check["health"] == "ok") << check;
    }
    EXPECT_TRUE(std::filesystem::is_empty(runner.Path("home"))) << "it changes something";
}

} // namespace
} // namespace fieldcore::cli::test
