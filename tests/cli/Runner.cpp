#include "tests/cli/Runner.h"

#include "cli/CommandLine.h"

#include <cstdlib>
#include <iomanip>
#include <optional>

#include <sys/wait.h>

namespace fieldcore::cli::test {

nlohmann::json Outcome::Json() const
{
    EXPECT_TRUE(out.ends_with('\n') && out.find('\n') + 1 == out.size()) << "no one line: " << out;
    nlohmann::json document = nlohmann::json::parse(out, nullptr, false);
    EXPECT_FALSE(document.is_discarded()) << out;
    return document;
}

Runner::Runner()
{
    world.variable = [this](const std::string& name) -> std::optional<std::string> {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    };
    world.stopSignal = [] { return 0; };
    world.clock = &SystemClock::Instance();
    world.system = {m_folder.Path() / "dev", m_folder.Path() / "sys", m_folder.Path() / "proc"};
    world.folders = {world.variable, m_folder.Path() / "home", "surveyor",
                     m_folder.Path() / "mounts"};
    world.listJapaneseFonts = [] { return std::optional<std::string>("VL Gothic\n"); };
    world.serialGroup = [] { return World::SerialGroup{"dialout", true, true}; };
}

std::string Runner::Path(const std::string& name) const
{
    return (m_folder.Path() / name).string();
}

std::string Runner::Scenario(const std::string& lines)
{
    const std::string healthy =
        ContentOf(std::filesystem::path(FIELDCORE_SOURCE_DIR) / "simulator/scenarios/lark.txt");
    const std::string name = "scenario" + std::to_string(++m_scenarios) + ".txt";
    return m_folder.Write(name, healthy + "\n" + lines + "\n").string();
}

void Runner::Type(const std::string& answers)
{
    world.inIsTerminal = world.errIsTerminal = true;
    input = answers;
}

std::string Runner::Expanded(const std::string& text) const
{
    std::string expanded = text;
    for (std::size_t at = expanded.find("@/"); at != std::string::npos; at = expanded.find("@/")) {
        expanded.replace(at, 2, m_folder.Path().string() + "/");
    }
    return expanded;
}

Outcome Runner::Run(const std::string& arguments)
{
    std::istringstream typed(Expanded(arguments));
    std::vector<std::string> words;
    for (std::string word; typed >> std::quoted(word, '\'');) {
        words.push_back(word);
    }
    return Run(std::move(words));
}

Outcome Runner::Run(std::vector<std::string> arguments)
{
    std::ostringstream out;
    std::ostringstream err;
    std::istringstream in(input);
    world.out = &out;
    world.err = &err;
    world.in = &in;
    const int code = RunCommandLine(world, std::move(arguments));
    return {code, out.str(), err.str()};
}

nlohmann::json Runner::Result(const std::string& arguments)
{
    const Outcome outcome = Run(arguments + " --json");
    EXPECT_EQ(outcome.code, 0) << arguments << "\n" << outcome.err;
    return outcome.Json()["result"];
}

void Runner::Expect(std::initializer_list<Told> rows)
{
    for (const Told& row : rows) {
        SCOPED_TRACE(row.arguments);
        const bool isJson = !row.place.empty();
        const Outcome outcome = Run(row.arguments + (isJson ? " --json" : ""));
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_NE(outcome.err.find(row.told), std::string::npos) << outcome.err;
        if (row.code == 0) {
            EXPECT_EQ(outcome.err.empty(), row.told.empty()) << outcome.err;
        } else if (!isJson) {
            EXPECT_EQ(outcome.out, "");
        }
        if (isJson) {
            EXPECT_EQ(outcome.Json()[nlohmann::json::json_pointer(row.place)], row.value);
        }
    }
}

Outcome Runner::RunInShell(const std::string& command) const
{
    const std::string out = Path("stdout");
    const std::string err = Path("stderr");
    // Not the settings of whoever runs the tests.
    const std::string whole =
        "export FIELDCORE_HOME=" + Path("home") + " XDG_CONFIG_HOME=" + Path("config") +
        " PATH=" + std::filesystem::path(FIELDCORE_CLI).parent_path().string() + ":$PATH; exec >" +
        out + " 2>" + err + " </dev/null; " + command;
    const int status = std::system(whole.c_str()); // NOLINT: a shell is what users have
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ContentOf(out), ContentOf(err)};
}

Outcome Runner::RunProgram(const std::string& arguments) const
{
    return RunInShell(std::string("exec ") + FIELDCORE_CLI + " " + Expanded(arguments));
}

std::string OnSim(const std::string& command, const std::string& scenario)
{
    return command + " --speed 20 --timeout 60 --port sim:" + scenario;
}

} // namespace fieldcore::cli::test
