// Scripts stand on the exit codes and on one JSON document, whatever happens.

#include "core/platform/PosixSerialDevice.h"
#include "simulator/Simulator.h"
#include "tests/cli/Runner.h"

#include <csignal>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

struct Row
{
    std::string_view fault;
    std::string arguments;
    int code;
    std::string error; ///< its code in the JSON document
};

void ExpectFailure(Runner& runner, const Row& row)
{
    SCOPED_TRACE(row.fault);
    const Outcome text = runner.Run(row.arguments);
    EXPECT_EQ(text.code, row.code) << text.err;
    EXPECT_NE(text.err, "");

    const Outcome json = runner.Run("--json " + row.arguments);
    EXPECT_EQ(json.code, row.code) << json.err;
    const nlohmann::json document = json.Json();
    EXPECT_EQ(document["schema"], 1);
    EXPECT_EQ(document["ok"], false);
    EXPECT_EQ(document["error"]["exitCode"], row.code);
    EXPECT_EQ(document["error"]["code"], row.error);
    EXPECT_FALSE(document["error"]["message"].get<std::string>().empty());
}

TEST(ExitCode, UsageIsTwoAndNothingIsOnStdout)
{
    Runner runner;
    const char* const commands[] = {"",
                                    "ports --port sim:",
                                    "info",
                                    "info --port ttyUSB0",
                                    "info --port COM0",
                                    "info --port sim:no-such",
                                    "info --port sim: --baud 38401",
                                    "info --port sim: --parity 9",
                                    "info --port /dev/null --speed 2",
                                    "sim run --scenario no-such",
                                    "info --port sim: -- true",
                                    "sim run --",
                                    "reset --port sim:"};
    for (const char* const command : commands) {
        ExpectFailure(runner, {command, command, 2, "usage"});
        EXPECT_EQ(runner.Run(command).out, "") << command;
    }
}

TEST(ExitCode, UsageSaysWhatWouldBeRight)
{
    struct WordRow
    {
        std::string arguments;
        std::string_view wrong;
        std::string_view right;
    };
    const WordRow rows[] = {
        {"stauts --port sim: --watch", "no command stauts.", "mean status?"},
        {"stauts --help", "no command stauts.", "mean status?"},
        {"help sim rnu", "no command sim rnu.", "mean run?"},
        {"sim", "sim needs one of: list, run.", "sim --help"},
        {"--port sim: info", "--port stands behind the command.", "info --port"},
        {"info --prot sim: behind", "info does not take --prot.", "mean --port?"},
        {"plan best --form 8", "plan best does not take --form.", "mean --from?"},
        {"info here", "info does not take here.", "info --help"},
        {"info --baud abc", "--baud cannot be \"abc\".", "115200 or 230400"},
        {"info --timeout nan", "--timeout cannot be \"nan\".", "0.05 to 600 s"},
        {"plan --from 8.5", "--from cannot be \"8.5\".", "0 to 23 h"},
        {"info --port", "--port needs a value.", "--port PORT: COM1"},
        {"geo unplane 1 2", "--zone is missing.", "1 to 19"},
        {"status --count 2", "--count goes only with --watch.", "status --help"},
        {"reset --yes --dry-run", "--yes does not go with --dry-run.", "reset --help"},
    };
    Runner runner;
    for (const WordRow& row : rows) {
        const std::string said = runner.Run(row.arguments).err;
        EXPECT_NE(said.find(row.wrong), std::string::npos) << row.arguments << "\n" << said;
        EXPECT_NE(said.find(row.right), std::string::npos) << row.arguments << "\n" << said;
    }
}

TEST(ExitCode, TellsPortsReceiversAndFilesApart)
{
    Runner runner;
    const auto with = [&runner](const std::string& name, const std::string& lines) {
        const std::string file = runner.Scenario(lines);
        std::filesystem::rename(file, runner.Path(name));
        return "sim:" + runner.Path(name) + " --speed 20 --timeout 60";
    };
    const Row rows[] = {
        {"a file", "info --port @/damaged", 3, "port-not-serial"},
        {"COM port that is not there", "status --port COM9", 3, "port-absent"},
        {"path that is not there", "identify --port @/nothing", 3, "port-absent"},
        {"a silent receiver asked by BREAK", "identify --port sim:silent --speed 20", 4,
         "no-answer"},
        {"NAK", "info --port " + with("nak", "fault nak on 06 skip 1"), 6, "nak"},
        {"NAK of a reset", "reset --yes --port " + with("nak-reset", "fault nak on 58"), 6, "nak"},
        {"every answer damaged", "status --port " + with("damaged", "fault corrupt on 08"), 1,
         "damaged-answer"},
        {"answer of another type", "info --port " + with("wrong", "fault wrong-type 126 on 4A"), 1,
         "unexpected-answer"},
        {"cable pulled", "status --port " + with("pulled", "fault hang-up reply 4 on 34"), 3,
         "link-lost"},
        {"log in a folder that is not there", "info --port sim: --log @/none/log", 8, "local-file"},
        {"log that is none", "trace @/damaged", 8, "local-file"},
        {"log without a line", "trace /dev/null", 8, "local-file"},
    };
    for (const Row& row : rows) {
        ExpectFailure(runner, row);
    }
}

TEST(ExitCode, PortsOfThisMachineAreThree)
{
    std::string error;
    simulator::Simulator receiver(*simulator::LoadScenario("lark", error));
    ASSERT_TRUE(receiver.Start(error)) << error;
    PosixSerialDevice other;
    ASSERT_TRUE(other.Open(receiver.PortPath()));
    Runner runner;
    runner.world.roots = {}; // who holds a port is seen in the real process table
    ExpectFailure(runner, {"no serial port", "info --port /dev/null", 3, "port-not-serial"});
    runner.world.roots.proc = runner.Folder().Path();
    ExpectFailure(runner, {"port in use by somebody who is not to be seen",
                           "info --port " + receiver.PortPath(), 3, "port-in-use"});
    runner.world.roots = {};
    ExpectFailure(runner, {"port in use", "info --port " + receiver.PortPath(), 3, "port-in-use"});
}

TEST(ExitCode, CtrlCIsSeven)
{
    // So many breaths are let through first.
    const std::pair<std::string, int> rows[] = {
        {"info --port sim: --speed 5", 1},
        {"info --port sim:silent --speed 5", 4}, // while nobody answers
        {"status --port sim: --watch --speed 5", 3},
    };
    for (const auto& [arguments, breaths] : rows) {
        SCOPED_TRACE(arguments);
        Runner runner;
        runner.world.stopSignal = [left = std::make_shared<int>(breaths)] {
            return (*left)-- > 0 ? 0 : SIGINT;
        };
        const Outcome outcome = runner.Run(arguments + " --json");
        EXPECT_EQ(outcome.code, 7);
        EXPECT_EQ(outcome.Json()["error"]["code"], "cancelled");
    }
}

TEST(ExitCode, ResetHappensOnlyWhenBothQuestionsAreAgreed)
{
    const std::string reset = "reset --port sim: --speed 20 --timeout 60 --log @/log";
    const auto isSent = [](const Runner& runner) {
        return Content(runner.Path("log")).find("[02 00 58 07 FF 02 52 45 53 45 54 E3 03 ]") !=
               std::string::npos;
    };
    const std::pair<std::string, int> answers[] = {
        {"y\ny\n", 0}, {"y\nn\n", 7}, {"n\ny\n", 7}, {"\n\n", 7}, {"", 7}};
    for (const auto& [input, code] : answers) {
        SCOPED_TRACE(input);
        Runner runner;
        runner.world.inIsTerminal = runner.world.errIsTerminal = true;
        runner.input = input;
        EXPECT_EQ(runner.Run(reset).code, code);
        EXPECT_EQ(isSent(runner), code == 0);
    }
    Runner runner;
    EXPECT_EQ(runner.Result(reset + " --dry-run")["reset"], false);
    EXPECT_FALSE(isSent(runner));
}

TEST(LanguageOfARun, IsOne)
{
    Runner runner;
    const char* const commands[] = {"info --port sim:silent --timeout 0.1", "files ls --port sim:",
                                    "almanac get --port sim:almanac-5 --speed 20"};
    const auto saysJapanese = [](const Outcome& outcome) { // every kana and kanji begins so
        return (outcome.out + outcome.err).find_first_of("\xE3\xE4\xE5\xE6\xE7\xE8\xE9") !=
               std::string::npos;
    };
    for (const char* const command : commands) {
        SCOPED_TRACE(command);
        EXPECT_FALSE(saysJapanese(runner.Run(command)));
        EXPECT_TRUE(saysJapanese(runner.Run(std::string(command) + " --language ja")));
        runner.variables["FIELDCORE_LANGUAGE"] = "ja";
        EXPECT_TRUE(saysJapanese(runner.Run(command)));
        EXPECT_FALSE(saysJapanese(runner.Run(std::string("--language en ") + command)));
        runner.variables.clear();
    }
    runner.Expect({{"ports --language fr", 2}});
    runner.variables["FIELDCORE_LANGUAGE"] = "japanese";
    runner.Expect({{"ports", 2}, {"ports --language ja", 0}}); // the option wins
}

} // namespace
} // namespace fieldcore::cli::test
