// What docs/cli.md shows is what the program says. Each block of it that begins with a command is
// run, on a machine of the test's own whose date stands still; and it is run in Japanese, in which
// no English is left.

#include "cli/Wording.h"
#include "core/link/FrameLayouts.h"
#include "core/resources/StringTable.h"
#include "tests/cli/Runner.h"
#include "tests/support/StartReceiver.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

namespace fs = std::filesystem;

struct Example
{
    std::string command; ///< as a shell takes it
    std::string shown;
    int code = 0;
};

/// The examples of one block share a folder.
struct Block
{
    std::string name;
    std::vector<Example> examples;

    friend void PrintTo(const Block& block, std::ostream* out) { *out << block.name; }
};

std::vector<Block> Blocks()
{
    std::istringstream text(Content(fs::path(FIELDCORE_SOURCE_DIR) / "docs/cli.md"));
    std::vector<Block> blocks;
    bool isInside = false;
    for (std::string line; std::getline(text, line);) {
        constexpr std::string_view kCode = "Exit code ";
        if (line == "```") {
            isInside = !isInside;
            if (isInside) {
                blocks.push_back({"Block" + std::to_string(blocks.size() + 1), {}});
            }
        } else if (isInside && line.starts_with("$ ")) {
            blocks.back().examples.push_back({line.substr(2), "", 0});
        } else if (isInside && !blocks.back().examples.empty()) {
            blocks.back().examples.back().shown += line + "\n";
        } else if (!isInside && line.starts_with(kCode) && !blocks.empty()) {
            blocks.back().examples.back().code = std::stoi(line.substr(kCode.size()));
        }
    }
    std::erase_if(blocks, [](const Block& block) { return block.examples.empty(); });
    return blocks;
}

/// A date that stands still, or goes on from there; time-outs are counted in real time.
class PageClock final : public Clock
{
public:
    bool goesOn = false;

    [[nodiscard]] Duration Steady() const override { return SystemClock::Instance().Steady(); }
    [[nodiscard]] UtcTime Utc() const override
    {
        using namespace std::chrono_literals;
        constexpr std::chrono::sys_seconds kDate =
            std::chrono::sys_days(2026y / std::chrono::November / 21) + 17h + 13min + 20s;
        return UtcTime(kDate) + std::chrono::duration_cast<UtcTime::duration>(
                                    goesOn ? Steady() - m_start : Duration::zero());
    }
    [[nodiscard]] bool SetUtc(UtcTime /*time*/) override { return false; }
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration; }

private:
    const Duration m_start = Steady();
};

/// What differs from run to run and from machine to machine is made the same.
std::string Comparable(std::string text, const std::string& folder)
{
    for (std::size_t at = text.find(folder); at != std::string::npos; at = text.find(folder)) {
        text.erase(at, folder.size());
    }
    const std::pair<const char*, const char*> rules[] = {
        // How long it took until the receiver was asked shows in its seconds and in its sky.
        {R"((\d\d:\d\d):\d\d)", "$1:SS"},
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

class ExamplesTest : public ::testing::TestWithParam<Block>
{
protected:
    ExamplesTest()
    {
        fs::create_directories(m_runner.Path("home"));
        fs::current_path(m_runner.Folder().Path());
        m_runner.world.clock = &m_clock;
        m_runner.world.system = {};
    }
    ~ExamplesTest() override { fs::current_path(m_before); }

    /// A serial port of the machine: that of a simulated receiver.
    void AddPort()
    {
        m_receiver = fieldcore::testing::StartReceiver("lark");
        const TemporaryFolder& machine = m_runner.Folder();
        machine.Link("sys/devices/port/driver", "some-driver");
        machine.Write("sys/devices/port/some-driver/name", "");
        machine.Link("sys/devices/port/tty/ttyS0/device", "../..");
        machine.Link("sys/class/tty/ttyS0", "../../devices/port/tty/ttyS0");
        machine.Link("dev/ttyS0", m_receiver->PortPath());
        m_runner.world.system = {machine.Path() / "dev", machine.Path() / "sys",
                                 machine.Path() / "proc"};
    }

    /// In this process, with the clock of the page.
    Outcome RunHere(const std::string& command)
    {
        std::vector<std::string> words;
        const std::regex word(R"('([^']*)'|(\S+))");
        for (std::sregex_iterator at(command.begin(), command.end(), word), end; at != end; ++at) {
            words.push_back((*at)[1].matched ? (*at)[1].str() : (*at)[2].str());
        }
        words.erase(words.begin());
        m_clock.goesOn = command.find("--watch") != std::string::npos;
        return m_runner.Run(std::move(words), true);
    }

    /// See EnglishIn().
    void ExpectJapanese(const std::string& command);

    Runner m_runner;
    PageClock m_clock;

private:
    const fs::path m_before = fs::current_path();
    std::unique_ptr<simulator::Simulator> m_receiver;
};

TEST_P(ExamplesTest, ShowWhatTheProgramSays)
{
    for (const Example& example : GetParam().examples) {
        SCOPED_TRACE(example.command);
        if (example.command == "fieldcore-cli ports" || example.command == "fieldcore-cli doctor") {
            AddPort();
        }
        if (example.command == "fieldcore-cli ports") { // it has no number at that path by itself
            EXPECT_EQ(m_runner.Run("settings set Ports COM1 @/dev/ttyS0").code, 0);
        }
        const bool isForShell = example.command.find_first_of("<>|;") != std::string::npos ||
                                example.command.find(" -- ") != std::string::npos;
        const Outcome outcome = isForShell ? m_runner.RunInShell("exec 2>&1; " + example.command)
                                           : RunHere(example.command);
        EXPECT_EQ(outcome.code, example.code);
        const std::string folder = m_runner.Folder().Path().string();
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

void ExamplesTest::ExpectJapanese(const std::string& command)
{
    m_runner.variables["FIELDCORE_LANGUAGE"] = "ja";
    if (command == "fieldcore-cli doctor") { // else it tells of this machine's ports
        AddPort();
    }
    const Outcome outcome = RunHere(command);
    std::string said = outcome.out;
    for (const auto& [name, title] : simulator::ShippedScenarios()) {
        said = std::regex_replace(said, std::regex("(^|\n)" + name + "  "), "\n");
    }
    EXPECT_EQ(EnglishIn(said, command), kNothing) << outcome.out;
}

TEST_P(ExamplesTest, SayNoEnglishInJapanese)
{
    for (const Example& example : GetParam().examples) {
        const bool isProgram = example.command.find_first_of("<>|;") != std::string::npos ||
                               example.command.find(" -- ") != std::string::npos;
        if (!isProgram && example.command.find("--json") == std::string::npos &&
            example.command.starts_with("fieldcore-cli")) {
            ExpectJapanese(example.command);
        }
    }
}

using UnshownCommands = ExamplesTest;
/// Commands that say much, of which the page shows nothing.
TEST_F(UnshownCommands, SayNoEnglishInJapanese)
{
    const char* const commands[] = {"almanac get --port sim:",
                                    "almanac show",
                                    "antenna height --slant 1.5 --r 0.1 --v 0.05",
                                    "check angle 135-07-04.5",
                                    "demo",
                                    "doctor",
                                    "files get 'A0314*' --to surveys --by-date --port sim:",
                                    "files ls --port sim:",
                                    "geo ecef 35:41:22.4 139:41:30.1 45",
                                    "identify --port sim:pica",
                                    "info --port sim:old-firmware",
                                    "plan",
                                    "plan best",
                                    "plan session --site 札幌 --site 大阪",
                                    "ports set 1 57600 --port sim:",
                                    "reset --port sim: --dry-run",
                                    "signal set glonass qzss --port sim:",
                                    "sim list",
                                    "status --port sim: --watch 0.1 --count 1",
                                    "tilt show --port sim:tilted",
                                    "time --port sim:"};
    for (const char* const command : commands) {
        ExpectJapanese(std::string("fieldcore-cli ") + command);
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

INSTANTIATE_TEST_SUITE_P(Docs, ExamplesTest, ::testing::ValuesIn(Blocks()),
                         [](const auto& block) { return block.param.name; });

} // namespace
} // namespace fieldcore::cli::test
