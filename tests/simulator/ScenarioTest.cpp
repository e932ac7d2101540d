#include "simulator/Scenario.h"
#include "tests/simulator/Support.h"

#include <array>
#include <filesystem>

namespace fieldcore::simulator::test {

TEST(Scenario, ErrorsNameTheLineAndTheCause)
{
    constexpr std::pair<std::string_view, std::string_view> kRows[] = {
        {"title-ja \xFF",
         "line 1: the Japanese title must be UTF-8 of 1 to 200 bytes, not \"\xFF\""},
        {"modle 3017", R"(line 1: "modle" is not known)"},
        {"# all well\n\nmodel 9999", R"(line 3: "9999" is neither a type number nor a model name)"},
        {"pdop x", R"(line 1: the PDOP must be a number from 0 to 99.9, not "x")"},
        {"utc-offset 1.5", R"(line 1: seconds must be a whole number from -101 to 101, not "1.5")"},
        {"utc-offset 18 s", R"(line 1: "s" is one word too many)"},
        {"options l2 l9", R"(line 1: "l9" is no option of a receiver)"},
        {"satellite G33 10 10 40",
         R"(line 1: the satellite's number must be a whole number from 1 to 32, not "33")"},
        {"satellite Q1 10 10", R"(line 1: a satellite starts with G, S, R or X, not "Q1")"},
        {"obstruction 60", "line 1: the other azimuth must be a number from 0 to 360, not nothing"},
        {"antenna deaf", "line 1: an antenna is good, weak or dead"},
        {"start 2026-02-30 00:00:00",
         "line 1: a start is a date in UTC such as 2026-03-14 01:30:00, from 1980 to 2099"},
        {"answers maybe", R"(line 1: answers must be yes or no, not "maybe")"},
        {"serial 123456789",
         R"(line 1: the serial must be 1 to 8 ASCII characters, not "123456789")"},
        {"fault drop 3", R"(line 1: "drop" takes no number)"},
        {"fault corrupt on 8",
         "line 1: a request is two hexadecimal digits, any, break or line, not \"8\""},
        {"fault hang-up request of 95",
         "line 1: \"of\" is not understood here; a rule goes on with on, of, skip, every, first, "
         "chance, count, and back for a hang-up"},
        {"file A%4 1 2026-03-14 01:30",
         "line 1: behind % in a file's name two hexadecimal digits must stand"},
        {"file A0314A00.Q01234 1 2026-03-14 01:30",
         R"(line 1: a file's name has 1 to 14 bytes, not "A0314A00.Q01234")"},
        {"file A 1 2026-03-14 01:3x",
         "line 1: a file's time is a date in UTC such as 2026-03-14 01:30:00, from 1980 to 2099"},
        {"files 1200 1 2\nfiles 1200 1 2", "line 2: there are more than 2304 files"},
        {"files 2 9 8", "line 1: the largest size is smaller than the smallest"},
        {"fault delay back 5",
         "line 1: \"back\" is not understood here; a rule goes on with on, of, skip, every, first, "
         "chance, count, and back for a hang-up"},
    };
    for (const auto& [text, expected] : kRows) {
        std::string error;
        EXPECT_FALSE(ParseScenario(text, error)) << text;
        EXPECT_EQ(error, expected);
    }
}

TEST(Scenario, ReadsWhatIsWrittenWithAnyLineEndAndComment)
{
    std::string error;
    const auto scenario = ParseScenario("title  Two words # and a comment\r\n"
                                        "title-ja  二つの 語\n"
                                        "\tmodel Corvane VX2 GNSS\r\n"
                                        "battery 12.5 3\n"
                                        "options tilt\n"
                                        "satellite G2 41 63 48 - 47\n"
                                        "fault hang-up reply 10 back 2000 on 4A skip 5 count 1",
                                        error);
    ASSERT_TRUE(scenario) << error;
    EXPECT_EQ(std::tie(scenario->title, scenario->titleJa, scenario->typeText),
              std::tuple("Two words", "二つの 語", "VX2 GNSS"));
    EXPECT_EQ(
        std::tie(scenario->typeNumber, scenario->batteryPercent, scenario->batteryDrainPerHour),
        std::tuple(3022, 12.5, 3.0));
    EXPECT_TRUE(scenario->options.extended) << "an extended option needs the request for it";
    ASSERT_EQ(scenario->satellites.size(), 1U);
    EXPECT_EQ(scenario->satellites[0].signals,
              (std::array<std::optional<double>, 4>{48.0, std::nullopt, 47.0}));
    ASSERT_EQ(scenario->faults.size(), 1U);
    const FaultRule& rule = scenario->faults[0];
    EXPECT_EQ(std::tie(rule.kind, rule.amount, rule.requestType, rule.skip, rule.count),
              std::tuple(FaultKind::HangUp, 10, 0x4A, 5U, 1U));
    EXPECT_EQ(rule.backAfter, 2s);
}

TEST(Scenario, EveryShippedOneIsGoodAndHasATitleOfItsOwn)
{
    const std::filesystem::path folder =
        std::filesystem::path(FIELDCORE_SOURCE_DIR) / "simulator" / "scenarios";
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().stem().string();
        SCOPED_TRACE(name);
        std::string error;
        const auto byName = LoadScenario(name, error);
        ASSERT_TRUE(byName) << error;
        EXPECT_NE(byName->title, Scenario().title);
        EXPECT_FALSE(byName->titleJa.empty());
        EXPECT_TRUE(LoadScenario(entry.path().string(), error)) << error;
        ++files;
    }
    EXPECT_EQ(ShippedScenarios().size(), files) << "a file is not compiled in";
    EXPECT_EQ(ShippedScenarios().front().first, "lark");
}

TEST(Scenario, AnUnknownNameIsAnsweredWithTheNamesThereAre)
{
    std::string error;
    EXPECT_FALSE(LoadScenario("larch", error));
    EXPECT_NE(error.find("\"larch\""), std::string::npos) << error;
    EXPECT_NE(error.find("lark, pica"), std::string::npos) << error;
    EXPECT_FALSE(LoadScenario(std::filesystem::temp_directory_path().string(), error));
}

} // namespace fieldcore::simulator::test
