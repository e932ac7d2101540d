// What docs/cli.md shows is what the program says, on a machine of the test's own; and in what it
// says in Japanese no English is left.

#include "cli/Wording.h"
#include "core/link/FrameLayouts.h"
#include "core/resources/StringTable.h"
#include "tests/cli/Runner.h"
#include "tests/support/HandClock.h"
#include "tests/support/StartReceiver.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <regex>
#include <set>

namespace fieldcore::cli::test {
namespace {

namespace fs = std::filesystem;

struct Example
{
    std::string command; ///< as a shell takes it
    std::string shown;
    int code = 0;
};

std::vector<Example> Examples()
{
    std::istringstream text(ContentOf(fs::path(FIELDCORE_SOURCE_DIR) / "docs/cli.md"));
    std::vector<Example> examples;
    bool isInside = false;
    for (std::string line; std::getline(text, line);) {
        constexpr std::string_view kCode = "Exit code ";
        if (line == "```") {
            isInside = !isInside;
        } else if (isInside && line.starts_with("$ ")) {
            examples.push_back({line.substr(2), ""});
        } else if (isInside) {
            examples.back().shown += line + "\n";
        } else if (line.starts_with(kCode)) {
            examples.back().code = std::stoi(line.substr(kCode.size()));
        }
    }
    return examples;
}

/// What differs from run to run and from machine to machine is made the same.
std::string Comparable(std::string text, const std::string& folder)
{
    const std::pair<std::string, const char*> rules[] = {
        {folder, ""},
        // How long it took until the receiver was asked shows in its time and in its sky.
        {R"((T\d\d):\d\d:\d\d)", "$1:MM:SS"},
        {R"((gpsSecondsOfWeek\W+)\d+)", "$1S"},
        {R"(((?:satellites[TU]|pdop|hdop|vdop)\w*\W+)[\d.]+)", "$1N"},
        {R"("agesS":\{[^}]*\})", "\"agesS\":{}"},
        {R"(  +)", "  "}, // columns are as wide as the paths in them
    };
    for (const auto& [pattern, replacement] : rules) {
        text = std::regex_replace(text, std::regex(pattern), replacement);
    }
    return text;
}

/// A machine with one serial port, which has its number from the settings: a simulated receiver's.
class ExamplesTest : public ::testing::Test
{
protected:
    ExamplesTest()
    {
        const TemporaryFolder& machine = m_runner.Folder();
        machine.Link("sys/devices/port/driver", "some-driver");
        machine.Write("sys/devices/port/some-driver/name", "");
        machine.Link("sys/devices/port/tty/ttyS0/device", "../..");
        machine.Link("sys/class/tty/ttyS0", "../../devices/port/tty/ttyS0");
        machine.Link("dev/ttyS0", m_receiver->PortPath());
        m_clock.runs = true;
        m_clock.utc = std::chrono::sys_days(std::chrono::year(2026) / 11 / 21) +
                      std::chrono::hours(17) + std::chrono::minutes(13);
        m_runner.world.clock = &m_clock;
        EXPECT_EQ(m_runner.Run("settings set Ports COM1 @/dev/ttyS0").code, 0);
        fs::current_path(machine.Path()); // where the examples write
    }
    ~ExamplesTest() override { fs::current_path(m_workingFolder); }

    Runner m_runner;

private:
    const fs::path m_workingFolder = fs::current_path();
    fieldcore::testing::HandClock m_clock;
    const std::unique_ptr<simulator::Simulator> m_receiver =
        fieldcore::testing::StartReceiver("lark");
};

TEST_F(ExamplesTest, ShowWhatTheProgramSays)
{
    const std::string cli = "fieldcore-cli ";
    const std::string folder = m_runner.Folder().Path().string();
    const std::vector<Example> examples = Examples();
    EXPECT_GE(examples.size(), 3U);
    for (const Example& example : examples) {
        SCOPED_TRACE(example.command);
        ASSERT_TRUE(example.command.starts_with(cli));
        const bool isForShell = example.command.find_first_of("<>|;") != std::string::npos;
        const Outcome outcome = isForShell ? m_runner.RunInShell(example.command)
                                           : m_runner.Run(example.command.substr(cli.size()));
        EXPECT_EQ(outcome.code, example.code);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(Comparable(outcome.out, folder), Comparable(example.shown, folder));
    }
}

const std::vector<std::string> kNothing;

/// Words of English in what a Japanese run says. What was typed, examples of commands, options,
/// paths, files and what is quoted are none, nor are units and names.
std::vector<std::string> EnglishIn(const std::string& said, const std::string& typed = {})
{
    static const std::set<std::string> kNames{
        "Aldex",   "Baudlate",  "Bessel",  "Bluetooth", "Conditions", "Corvane", "Ctrl-C",
        "Flow",    "Galileo",   "Gothic",  "Lark",      "Length",     "Linux",   "Parity",
        "Pica",    "Ports",     "Rcvr",    "Stopbit",   "SurveyPlan", "bessel",  "deg",
        "dialout", "fieldcore", "galileo", "glonass",   "number",     "qzss",    "rad",
        "sqrt",    "text",      "today",   "tomorrow",  "Meridian",   "Solace"};
    static const std::regex kTyped(
        R"re((?:sudo )?fieldcore-cli [ -~]*|sim run|[\w-]+ ではありませんか|シナリオ：[^\n]*|--?[a-z][\w-]*|\S*[/\\]\S*|\w[\w-]*\.\w+|sim:\S*|"[^"\n]*")re");
    static const std::regex kWord("[A-Za-z][A-Za-z'-]*");
    const std::string text = std::regex_replace(said, kTyped, "|");
    std::vector<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), kWord), end; at != end; ++at) {
        const std::string word = at->str();
        const bool isShort = !std::regex_search(word, std::regex("[a-z]{3}")); // a unit, a code
        if (!isShort && !kNames.contains(word) && typed.find(word) == std::string::npos) {
            found.push_back(word);
        }
    }
    return found;
}

/// Commands that say much.
TEST_F(ExamplesTest, SayNoEnglishInJapanese)
{
    m_runner.variables["FIELDCORE_LANGUAGE"] = "ja";
    const char* const commands[] = {"almanac get --port sim:",
                                    "almanac show",
                                    "antenna height --slant 1.5 --r 0.1 --v 0.05",
                                    "check angle 135-07-04.5",
                                    "demo",
                                    "doctor",
                                    "files get 'A0314*' --to @/surveys --by-date --port sim:",
                                    "files ls --port sim:",
                                    "geo ecef 35:41:22.4 139:41:30.1 45",
                                    "identify --port sim:pica",
                                    "info --port sim:old-firmware",
                                    "info --port sim:silent --timeout 0.2",
                                    "plan",
                                    "plan best",
                                    "plan session --site 札幌 --site 大阪",
                                    "ports",
                                    "ports set 1 57600 --port sim:",
                                    "reset --port sim: --dry-run",
                                    "signal set glonass qzss --port sim:",
                                    "sim list",
                                    "status --port sim: --watch 0.1 --count 1",
                                    "tilt show --port sim:tilted",
                                    "time --port sim:"};
    for (const std::string command : commands) {
        const Outcome outcome = m_runner.Run(command);
        std::string said = outcome.out + outcome.err;
        for (const auto& [name, title] : simulator::ShippedScenarios()) {
            said = std::regex_replace(said, std::regex("(^|\n)" + name + "  "), "\n");
        }
        EXPECT_EQ(EnglishIn(said, command), kNothing) << command << "\n" << said;
    }
}

/// The pages of help of a command and of those below it.
void ExpectJapaneseHelp(Runner& runner, const std::string& command)
{
    static const std::regex kPair("[a-z]{2,} [a-z]{2,}"); // names of options stand alone
    const Outcome outcome = runner.Run(command + " --help");
    ASSERT_EQ(outcome.code, 0) << command;
    const std::string text = std::regex_replace(
        outcome.out, std::regex(R"((?:sudo )?fieldcore-cli [ -~]*|  [a-z-]+  |--?[a-z]+|sim:)"),
        "|");
    std::smatch pair;
    EXPECT_FALSE(std::regex_search(text, pair, kPair)) << command << ": " << pair.str();
    const std::string_view list("\nコマンド:\n");
    const std::size_t at = outcome.out.find(list);
    std::istringstream lines(at == std::string::npos ? "" : outcome.out.substr(at + list.size()));
    for (std::string line; std::getline(lines, line);) {
        ExpectJapaneseHelp(runner, command + " " + line.substr(2, line.find(' ', 2) - 2));
    }
}

TEST(Japanese, HasEveryFieldOfATrace)
{
    SetLanguage(Language::Japanese);
    const auto expect = [](std::string_view words) {
        EXPECT_EQ(EnglishIn(Translated(std::string(words))), kNothing) << words;
    };
    for (const FrameLayout& layout : FrameLayouts()) {
        EXPECT_FALSE(layout.title.empty()) << layout.name;
        for (const auto& fields : {layout.fields, layout.record}) {
            for (const FieldLayout& field : fields) {
                expect(field.name);
                expect(field.unit);
                std::for_each(field.meanings.begin(), field.meanings.end(),
                              [&](const Meaning& meaning) { expect(meaning.words); });
            }
        }
    }
    SetLanguage(Language::English);
}

TEST(Japanese, IsTheLanguageOfHelpAndOfFailures)
{
    Runner runner;
    runner.variables["FIELDCORE_LANGUAGE"] = "ja";
    ExpectJapaneseHelp(runner, "");
    runner.Folder().Write("bad.txt", "1 2 3\n");
    runner.Folder().Write(
        "cut.rnx",
        "     3.05           NAVIGATION DATA     MIXED               RINEX VERSION / TYPE\n");
    // Those that the parser, the library or the system says a part of.
    const char* const commands[] = {"stauts",
                                    "info --baud abc --port sim:",
                                    "info --language xx",
                                    "info --port COM300",
                                    "info --port @/",
                                    "info --port sim:nosuch",
                                    "info --port sim:silent --timeout 0.1",
                                    "settings set Plan X zz --type binary",
                                    "settings import @/bad.txt",
                                    "settings export @/nosuch/x",
                                    "ports set 1 abc --port sim:",
                                    "plan --curtain @/bad.txt",
                                    "plan best --sites @/bad.txt",
                                    "almanac import @/cut.rnx",
                                    "almanac import @/bad.txt",
                                    "check number 5x"};
    for (const char* const typed : commands) {
        SCOPED_TRACE(typed);
        runner.world.serialGroup = [] { return World::SerialGroup{"dialout", false, false}; };
        const Outcome outcome = runner.Run(typed);
        EXPECT_NE(outcome.code, 0);
        EXPECT_EQ(EnglishIn(outcome.out + outcome.err, typed), kNothing) << outcome.err;
    }
}

} // namespace
} // namespace fieldcore::cli::test
