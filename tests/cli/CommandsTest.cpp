// What the commands show, against what the shipped scenarios and the made-up ones say.

#include "simulator/Simulator.h"
#include "tests/cli/Runner.h"
#include "tests/core/link/FarEnd.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

/// The value behind a label of a text report.
std::string Shown(const std::string& text, const std::string& label)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t start = line.find_first_not_of(' ');
        if (start != std::string::npos &&
            line.compare(start, label.size() + 2, label + "  ") == 0) {
            return line.substr(line.find_first_not_of(' ', start + label.size()));
        }
    }
    return "(not shown)";
}

TEST(Info, ShowsTheReceiverOfTheScenario)
{
    Runner runner;
    const Outcome text = runner.Run("info --port sim: --speed 20 --timeout 60");
    ASSERT_EQ(text.code, 0) << text.err;
    const nlohmann::json result = runner.Result("info --port sim: --speed 20 --timeout 60");
    struct Row
    {
        std::string label;
        std::string shown;
        std::string key;
        nlohmann::json value;
    };
    const Row rows[] = {
        {"model", "Corvane VX1", "model", "Corvane VX1"},
        {"type number", "3017", "typeNumber", 3017},
        {"family", "Lark", "family", "lark"},
        {"serial number", "00301701", "serial", "00301701"},
        {"long serial number", "5017000001", "longSerial", "5017000001"},
        {"navigation firmware", "4.43", "navigationFirmware", 4.43},
        {"signal firmware", "2.10", "signalFirmware", 2.1},
        {"boot firmware", "1.05", "bootFirmware", 1.05},
        {"memory", "64 MB", "memoryMb", 64},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(Shown(text.out, row.label), row.shown);
        EXPECT_EQ(result[row.key], row.value);
    }
    const auto options = result["options"].get<std::vector<std::string>>();
    const auto has = [&options](const std::string& option) {
        return std::find(options.begin(), options.end(), option) != options.end();
    };
    EXPECT_TRUE(has("GLONASS") && has("QZSS") && has("RTK") && has("L5"));
    // Its CMRx bit counts only with a Solace board.
    EXPECT_FALSE(has("CMRx input") || has("tilt sensor") || has("Solace board"));
}

TEST(Info, ExplainsItsDecision)
{
    struct Row
    {
        std::string_view fault;
        std::string scenario;
        int code;
        std::string_view told; ///< on stderr
    };
    const Row rows[] = {
        {"a good receiver needs no words", "lark", 0, ""},
        {"beta firmware is accepted with a warning", "beta-firmware", 0,
         "The firmware of the receiver is a beta version; its operation is not guaranteed."},
        {"old firmware: the lowest that is supported", "old-firmware", 5, "2.03"},
        {"unsupported type: its number", "unsupported", 5,
         "This software does not support the receiver [ 2040 ]."},
        {"nobody answers: the step", "silent", 4, "Asking the receiver for its status"},
    };
    Runner runner;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Outcome outcome =
            runner.Run("info --speed 20 --timeout 40 --port sim:" + row.scenario);
        EXPECT_EQ(outcome.code, row.code);
        EXPECT_NE(outcome.err.find(row.told), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.empty(), row.told.empty()) << outcome.err;
    }
}

TEST(Status, ShowsTheUnknownAsUnknown)
{
    struct Row
    {
        std::string_view fault;
        std::string scenario; ///< what it says besides
        std::string label;
        std::string shown;
        std::string pointer; ///< in the JSON document
        nlohmann::json value;
    };
    const Row rows[] = {
        {"battery", "battery 7", "battery", "7 %", "/batteryPercent", 7},
        {"battery above all", "battery 105", "battery", "--", "/batteryPercent", nullptr},
        {"battery far above all", "battery 250", "battery", "--", "/batteryPercent", nullptr},
        {"PDOP", "pdop 2.0", "PDOP", "2.0", "/pdop", 2.0},
        {"large PDOP", "pdop 99.5", "PDOP", "99.5", "/position/pdop", 99.5},
        {"no PDOP is not 99.9", "pdop 99.9", "PDOP", "--", "/pdop", nullptr},
        {"no PDOP without trust", "fix searching", "PDOP", "--", "/position/pdop", nullptr},
        {"no seconds without trust", "fix searching\nstart 2026-03-14 01:30:00\nspeed 0.001",
         "time", "2026-03-14 01:30 UTC", "/jst", "2026-03-14T10:30+09:00"},
        {"GPS time minus leap seconds", "start 2026-03-14 01:30:00\nspeed 0.001", "time",
         "2026-03-14 01:30:00 UTC", "/utc", "2026-03-14T01:30:00Z"},
        {"Japanese time is nine hours ahead", "start 2026-03-14 15:30:00\nspeed 0.001", "time",
         "2026-03-14 15:30:00 UTC", "/jst", "2026-03-15T00:30:00+09:00"},
        {"a time that is not valid", "time-valid no\nfix searching", "time", "--", "/utc", nullptr},
        {"fix in words", "fix float", "fix", "RTK float", "/fix", "float"},
        {"no place without a fix", "fix searching", "latitude", "--", "/position/latitudeDeg",
         nullptr},
        {"degrees, south and west", "position -35.5 -120.25 12.3", "longitude", "-120.25000000 deg",
         "/position/longitudeDeg", -120.25},
        {"height", "position 35 139 -1.5", "ellipsoidal height", "-1.500 m", "/position/heightM",
         -1.5},
        {"origin of plane zone 9", "position 36 139.83333333333333 70", "plane x", "0.000 m",
         "/position/planeZone", 9},
        {"no plane without a fix", "fix searching", "plane x", "--", "/position/planeXM", nullptr},
        {"offset", "utc-offset 17", "GPS time minus UTC", "17 s", "/utcOffsetS", 17},
        {"no trust without a fix", "fix searching", "time can be trusted", "no", "/synchronised",
         false},
        {"memory in percent", "free-memory 3", "free memory", "30 %", "/freeMemoryPercent", 30},
        {"a running survey", "survey ST01", "running survey", "ST01", "/survey", "ST01"},
        {"power source", "power-source 3", "power source", "3", "/powerSource", 3},
        {"refused request", "fault nak on 41", "power source", "--", "/powerSource", nullptr},
    };
    Runner runner;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const std::string command =
            "status --speed 20 --timeout 60 --port sim:" + runner.Scenario(row.scenario);
        const Outcome text = runner.Run(command);
        EXPECT_EQ(text.code, 0) << text.err;
        EXPECT_EQ(Shown(text.out, row.label), row.shown) << text.out;
        const nlohmann::json result = runner.Result(command);
        EXPECT_EQ(result[nlohmann::json::json_pointer(row.pointer)], row.value);
    }
}

TEST(Status, WatchGoesOnAfterSilenceAndEndsWithTheCable)
{
    struct Row
    {
        std::string_view fault;
        std::string scenario;
        int code;
        std::vector<bool> readings; ///< which documents are good ones
    };
    // Two status requests connect; the watch asks for the status once a reading.
    const Row rows[] = {
        {"healthy", "", 0, {true, true, true}},
        {"both attempts of one reading dropped",
         "fault drop on 08 skip 3 count 2",
         0,
         {true, false, true}},
        {"cable out at the second reading",
         "fault hang-up reply 4 on 08 skip 3 count 1",
         3,
         {true, false}},
        {"never a good one", "fault drop on 08 skip 2", 4, {false, false, false}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Runner runner;
        const Outcome outcome =
            runner.Run("status --json --watch 0.5 --count 3 --speed 20 --timeout 40 --port sim:" +
                       runner.Scenario(row.scenario));
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        std::vector<bool> readings;
        std::istringstream lines(outcome.out);
        for (std::string line; std::getline(lines, line);) {
            const nlohmann::json document = nlohmann::json::parse(line, nullptr, false);
            readings.push_back(document.value("ok", false));
            EXPECT_EQ(document.value("schema", 0), 1) << line;
        }
        EXPECT_EQ(readings, row.readings);
    }
}

TEST(Status, CtrlCEndsAWatchWell)
{
    Runner runner;
    runner.world.stopSignal = [&runner] {
        const auto* out = dynamic_cast<std::ostringstream*>(runner.world.out);
        return out->str().empty() ? 0 : SIGINT; // as soon as a reading was shown
    };
    const Outcome outcome = runner.Run("status --watch --speed 20 --timeout 60 --port sim:");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("RTK fixed"), std::string::npos);
}

TEST(Identify, ReadsTheIdentificationPacket)
{
    Runner runner;
    const nlohmann::json result = runner.Result("identify --speed 20 --timeout 60 --port sim:pica");
    EXPECT_EQ(result["typeNumber"], 3010);
    EXPECT_EQ(result["baudRate"], 38400);
    EXPECT_EQ(result["dataBits"], 8);
    EXPECT_EQ(result["stopBits"], 1);
    EXPECT_EQ(result["port"], 1);
}

TEST(Identify, SearchesEveryRateAndStoresNoneUnasked)
{
    std::string error;
    const auto scenario = simulator::ParseScenario("baud 9600\ncheck-rate yes", error);
    ASSERT_TRUE(scenario.has_value()) << error;
    simulator::Simulator receiver(*scenario);
    ASSERT_TRUE(receiver.Start(error)) << error;
    Runner runner;
    const std::string identify = "identify --json --timeout 60 --port " + receiver.PortPath();
    const nlohmann::json found = runner.Run(identify + " --search").Json()["result"];
    EXPECT_EQ(found["answersAt"], 9600);
    EXPECT_EQ(found["typeNumber"], 3017);
    const std::string line = "ports show --json";
    EXPECT_EQ(runner.Run(line).Json()["result"]["ports"][0]["rate"], "38400");
    EXPECT_EQ(runner.Run(identify + " --search --store").Json()["result"]["stored"], true);
    EXPECT_EQ(runner.Run(line).Json()["result"]["ports"][0]["rate"], "9600");
    EXPECT_EQ(runner.Run(identify + " --store").code, 2) << "a rate that was not searched";
}

TEST(Port, ComesFromTheSettingsWhereNoneIsNamed)
{
    Runner runner;
    const auto store = [&runner](const std::string& port) {
        return runner.Run({"settings", "set", "GPS\\Connect", "Port", port}).code;
    };
    ASSERT_EQ(store("sim:pica"), 0);
    EXPECT_EQ(runner.Result("identify --speed 20 --timeout 60")["typeNumber"], 3010);
    ASSERT_EQ(store("COM300"), 0);
    const nlohmann::json refused = runner.Run("info --json").Json()["error"];
    EXPECT_EQ(refused["code"], "port-unusable");
    EXPECT_EQ(refused["exitCode"], 3);
    EXPECT_NE(refused["message"].get<std::string>().find("COM300"), std::string::npos);
}

TEST(Port, ThatTalksByItselfIsNotTakenForADamagedLine)
{
    const fieldcore::testing::FarEnd talks;
    std::atomic<bool> ends = false;
    std::jthread talker([&] {
        while (!ends) {
            talks.Send(fieldcore::testing::Ascii("$GNRMC,120000.00,A,,*11\r\n"));
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    Runner runner;
    for (const std::string command : {"info", "identify"}) {
        const nlohmann::json error =
            runner.Run(command + " --json --timeout 5 --port " + talks.Path()).Json()["error"];
        EXPECT_EQ(error["code"], "port-sending") << command;
        EXPECT_EQ(error["exitCode"], 1);
    }
    ends = true;
}

TEST(Port, ComesFromTheEnvironmentUnlessNamed)
{
    Runner runner;
    runner.variables["FIELDCORE_PORT"] = "sim:pica";
    EXPECT_EQ(runner.Result("identify --speed 20 --timeout 60")["typeNumber"], 3010);
    EXPECT_EQ(runner.Result("identify --speed 20 --timeout 60 --port sim:")["typeNumber"], 3017);
}

TEST(Demo, SurvivesTheFaultThatItMakes)
{
    Runner runner;
    const nlohmann::json document =
        runner.Run("demo --json --speed 20 --timeout 60 --log @/log").Json();
    EXPECT_EQ(document["ok"], true);
    EXPECT_EQ(document["result"]["identity"]["typeNumber"], 3017);
    // Counted in the log as well: two to connect, one for the status, two for the damaged one.
    const std::string log = Content(runner.Path("log"));
    std::size_t requests = 0;
    for (std::size_t at = log.find("[02 00 08 "); at != std::string::npos;
         at = log.find("[02 00 08 ", at + 1)) {
        ++requests;
    }
    EXPECT_EQ(requests, 5U);
    EXPECT_EQ(document["result"]["fault"]["timesSent"], 2);
    EXPECT_EQ(runner.Run("demo --speed 20 --timeout 60").code, 0);
}

TEST(Sim, StartsACommandWithThePort)
{
    struct Row
    {
        std::string_view fault;
        std::vector<std::string> command;
        int code;
    };
    const Row rows[] = {
        {"exit code is lost", {"sh", "-c", "exit 42"}, 42},
        {"port is not in the environment", {"sh", "-c", "test -c \"$FIELDCORE_PORT\""}, 0},
        {"port is not put into the arguments", {"test", "-c", "{port}"}, 0},
        {"port is put in once only",
         {"sh", "-c", "test \"$1\" = \"$FIELDCORE_PORT,$FIELDCORE_PORT\"", "-", "{port},{port}"},
         0},
        {"a signal is no exit code", {"sh", "-c", "kill -9 $$"}, 137},
        {"no such command", {"@no such command@"}, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Runner runner;
        std::vector<std::string> arguments{"sim", "run", "--"};
        arguments.insert(arguments.end(), row.command.begin(), row.command.end());
        EXPECT_EQ(runner.Run(arguments).code, row.code);
    }
}

TEST(Sim, RunServesItsPortUntilCtrlC)
{
    Runner runner;
    std::string port;
    Outcome asked;
    runner.world.stopSignal = [&] {
        const auto* out = dynamic_cast<std::ostringstream*>(runner.world.out);
        port = out->str();
        Runner other;
        asked = other.Run("identify --json --port " + port);
        return SIGINT;
    };
    EXPECT_EQ(runner.Run("sim run --scenario pica").code, 0);
    EXPECT_EQ(asked.code, 0) << asked.err;
    EXPECT_EQ(asked.Json()["result"]["typeNumber"], 3010);
}

TEST(Help, BeginsWithExamplesForEveryCommand)
{
    Runner runner;
    for (const std::string command : {"", "ports", "info", "status", "identify", "reset", "sim",
                                      "sim list", "sim run", "trace", "doctor", "demo"}) {
        SCOPED_TRACE(command);
        const Outcome outcome = runner.Run(command + " --help");
        EXPECT_EQ(runner.Run("help " + command).out, outcome.out);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_TRUE(outcome.out.starts_with("Examples:\n  fieldcore-cli")) << outcome.out;
        EXPECT_NE(outcome.out.find("Usage: fieldcore-cli"), std::string::npos) << outcome.out;
    }
}

TEST(Colour, IsForTerminalsThatWantIt)
{
    struct Row
    {
        std::string_view fault;
        std::map<std::string, std::string> variables;
        bool terminal;
        bool coloured;
    };
    const Row rows[] = {
        {"a terminal", {}, true, true},
        {"a file", {}, false, false},
        {"NO_COLOR", {{"NO_COLOR", "1"}}, true, false},
        {"a terminal without colours", {{"TERM", "dumb"}}, true, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Runner runner;
        runner.world.outIsTerminal = row.terminal;
        runner.variables = row.variables;
        const bool coloured = runner.Run("doctor").out.find('\x1b') != std::string::npos;
        EXPECT_EQ(coloured, row.coloured);
    }
}

TEST(Program, IsWhatTheLibraryOfItIs)
{
    struct Row
    {
        std::string_view fault;
        std::string arguments;
        int code;
        bool isJson;
    };
    const Row rows[] = {
        {"version", "--version", 0, false},
        {"version for a script", "--version --json", 0, true},
        {"a receiver", "info --port sim: --speed 20 --timeout 60 --json", 0, true},
        {"usage", "info --json", 2, true},
        {"no serial port", "info --port /dev/null --json", 3, true},
        {"refused", "info --port sim:old-firmware --speed 20 --timeout 60 --json", 5, true},
        {"a result that nobody keeps",
         std::string("sim run -- sh -c '") + FIELDCORE_CLI + " sim list >/dev/full'", 8, false},
        {"a watch whose reader goes away",
         std::string("sim run -- sh -c '(") + FIELDCORE_CLI +
             " status --watch 0.1 2>\"$1\"; echo $? >\"$0\") | head -1; "
             "test 0 = $(cat \"$0\") && ! test -s \"$1\"' @/code @/said",
         0, false},
        {"a signal that the command of sim run does not get",
         "sim run -- sh -c 'trap \"exit 5\" INT; kill -INT $PPID; while sleep 0.05; do :; done'", 5,
         false},
        {"sim run with the program itself",
         std::string("sim run --scenario pica -- ") + FIELDCORE_CLI + " identify --json", 0, true},
    };
    Runner runner;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Outcome outcome = runner.RunProgram(row.arguments);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        if (row.isJson) {
            EXPECT_EQ(outcome.Json()["schema"], 1);
        }
    }
}

} // namespace
} // namespace fieldcore::cli::test
