// Scripts stand on the exit codes and on one JSON document, whatever happens.

#include "core/platform/PosixSerialDevice.h"
#include "tests/cli/Runner.h"
#include "tests/support/StartReceiver.h"

#include <csignal>
#include <memory>

namespace fieldcore::cli::test {
namespace {

TEST(ExitCode, UsageIsTwoAndSaysWhatWouldBeRight)
{
    struct Row
    {
        std::string arguments;
        std::string_view wrong = "";
        std::string_view right = "";
    };
    const Row rows[] = {
        {""},
        {"info"},
        {"info --port COM0"},
        {"info --port sim:no-such"},
        {"info --port /dev/null --speed 2"},
        {"info --port sim: --baud 38401"},
        {"info --port sim: --parity 9"},
        {"info --port sim: -- true"},
        {"sim run --scenario no-such"},
        {"sim run --"},
        {"reset --port sim:"},
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
    for (const Row& row : rows) {
        SCOPED_TRACE(row.arguments);
        const Outcome said = runner.Run(row.arguments);
        EXPECT_EQ(said.code, 2);
        EXPECT_EQ(said.out, "");
        EXPECT_NE(said.err.find(row.wrong), std::string::npos) << said.err;
        EXPECT_NE(said.err.find(row.right), std::string::npos) << said.err;
        const nlohmann::json document = runner.Run("--json " + row.arguments).Json();
        EXPECT_EQ(document["schema"], 1);
        EXPECT_EQ(document["ok"], false);
        EXPECT_EQ(document["error"]["exitCode"], 2);
        EXPECT_EQ(document["error"]["code"], "usage");
        EXPECT_NE(document["error"]["message"], "");
    }
}

TEST(ExitCode, TellsPortsReceiversAndFilesApart)
{
    Runner runner;
    const auto with = [&runner](const std::string& lines) {
        return "sim:" + runner.Scenario(lines) + " --speed 20 --timeout 60";
    };
    const std::string code = "/error/code";
    runner.Expect({
        {"info --port @/a-file-that-is-none --log @/log", 3, "", code, "port-absent"},
        {"info --port @/log", 3, "", code, "port-not-serial"},
        {"status --port COM9", 3, "", code, "port-absent"},
        {"identify --port sim:silent --speed 20", 4, "", code, "no-answer"},
        {"info --port " + with("fault nak on 06 skip 1"), 6, "", code, "nak"},
        {"reset --yes --port " + with("fault nak on 58"), 6, "", code, "nak"},
        {"status --port " + with("fault corrupt on 08"), 1, "", code, "damaged-answer"},
        {"info --port " + with("fault wrong-type 126 on 4A"), 1, "", code, "unexpected-answer"},
        {"status --port " + with("fault hang-up reply 4 on 34"), 3, "", code, "link-lost"},
        {"info --port sim: --log @/none/log", 8, "", code, "local-file"},
        {"trace @/log", 8, "", code, "local-file"}, // there is nothing in it
    });
}

TEST(ExitCode, PortsOfThisMachineAreThree)
{
    const auto receiver = fieldcore::testing::StartReceiver("lark");
    PosixSerialDevice other;
    ASSERT_TRUE(other.Open(receiver->PortPath()));
    Runner runner;
    const std::string info = "info --port " + receiver->PortPath();
    runner.world.system = {}; // who holds a port is seen in the real process table
    runner.Expect({{"info --port /dev/null", 3, "", "/error/code", "port-not-serial"},
                   {info, 3, "", "/error/code", "port-in-use"}});
    runner.world.system.proc = runner.Folder().Path(); // somebody who is not to be seen
    runner.Expect({{info, 3, "", "/error/code", "port-in-use"}});
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
        return ContentOf(runner.Path("log")).find("[02 00 58 07 FF 02 52 45 53 45 54 E3 03 ]") !=
               std::string::npos;
    };
    const std::pair<std::string, int> answers[] = {
        {"y\ny\n", 0}, {"y\nn\n", 7}, {"n\ny\n", 7}, {"\n\n", 7}, {"", 7}};
    for (const auto& [input, code] : answers) {
        SCOPED_TRACE(input);
        Runner runner;
        runner.Type(input);
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
    const auto expect = [&runner](const std::string& before, const std::string& behind,
                                  bool isOne) {
        const Outcome outcome = runner.Run(before + "almanac get --port sim:almanac-5" + behind);
        // Every kana and kanji begins so.
        const auto at = (outcome.out + outcome.err).find_first_of("\xE3\xE4\xE5\xE6\xE7\xE8\xE9");
        EXPECT_EQ(at != std::string::npos, isOne) << before << behind;
    };
    expect("", "", false);
    expect("", " --language ja", true);
    runner.variables["FIELDCORE_LANGUAGE"] = "ja";
    expect("", "", true);
    expect("--language en ", "", false);
    runner.variables["FIELDCORE_LANGUAGE"] = "japanese";
    runner.Expect({{"ports", 2}, {"ports --language ja", 0}}); // the option wins
    runner.variables.clear();
    runner.Expect({{"ports --language fr", 2}});
}

} // namespace
} // namespace fieldcore::cli::test
