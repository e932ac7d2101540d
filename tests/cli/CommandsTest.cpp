// What the commands show, against what the shipped scenarios and the made-up ones say.

#include "simulator/Simulator.h"
#include "tests/cli/Runner.h"
#include "tests/core/link/FarEnd.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

TEST(Info, ShowsTheReceiverOfTheScenario)
{
    const nlohmann::json result = Runner().Result("info --port sim: --speed 20 --timeout 60");
    EXPECT_EQ(result["family"], "lark");
    EXPECT_EQ(result["longSerial"], "5017000001");
    EXPECT_EQ(result["navigationFirmware"], 4.43);
    EXPECT_EQ(result["memoryMb"], 64);
    const auto options = result["options"].get<std::set<std::string>>();
    EXPECT_TRUE(options.contains("GLONASS") && options.contains("L5"));
    // Its CMRx bit counts only with a Solace board.
    EXPECT_FALSE(options.contains("CMRx input") || options.contains("Solace board"));
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
        std::string pointer;  ///< in the JSON document
        nlohmann::json value;
    };
    const std::string then = "start 2026-03-14 01:30:00\nspeed 0.001";
    const Row rows[] = {
        {"battery", "battery 7", "/batteryPercent", 7},
        {"battery above all", "battery 105", "/batteryPercent", nullptr},
        {"large PDOP", "pdop 99.5", "/position/pdop", 99.5},
        {"no PDOP is not 99.9", "pdop 99.9", "/pdop", nullptr},
        {"no seconds without trust", "fix searching\n" + then, "/jst", "2026-03-14T10:30+09:00"},
        {"GPS time minus leap seconds", then, "/utc", "2026-03-14T01:30:00Z"},
        {"fix in words", "fix float", "/fix", "float"},
        {"no place without a fix", "fix searching", "/position/latitudeDeg", nullptr},
        {"degrees, west", "position -35.5 -120.25 12.3", "/position/longitudeDeg", -120.25},
        {"origin of plane zone 9", "position 36 139.83333333333333 70", "/position/planeXM", 0.0},
        {"no trust without a fix", "fix searching", "/synchronised", false},
        {"a running survey", "survey ST01", "/survey", "ST01"},
        {"refused request", "fault nak on 41", "/powerSource", nullptr},
    };
    Runner runner;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const nlohmann::json result = runner.Result("status --speed 20 --timeout 60 --port sim:" +
                                                    runner.Scenario(row.scenario));
        EXPECT_EQ(result[nlohmann::json::json_pointer(row.pointer)], row.value);
    }
}

/// A document a line.
std::vector<nlohmann::json> Documents(const std::string& text)
{
    std::vector<nlohmann::json> documents;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        documents.push_back(nlohmann::json::parse(line, nullptr, false));
        EXPECT_EQ(documents.back().value("schema", 0), 1) << line;
    }
    return documents;
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
        for (const nlohmann::json& document : Documents(outcome.out)) {
            readings.push_back(document.value("ok", false));
        }
        EXPECT_EQ(readings, row.readings);
    }
}

/// What a watch knows beyond one reading.
TEST(Status, WatchFollowsTheBatteryAndTellsAges)
{
    Runner runner;
    const Outcome outcome = runner.Run(
        "status --json --watch 60 --count 16 --speed 1000 --timeout 600 --port sim:" +
        runner.Scenario("model 3017\nbattery 90 60\npower-source 2\nfault nak on 34 skip 15"));
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const std::vector<nlohmann::json> readings = Documents(outcome.out);
    ASSERT_EQ(readings.size(), 16U);
    const nlohmann::json& first = readings.front()["result"];
    const nlohmann::json& last = readings.back()["result"];
    EXPECT_EQ(first["powerSourceName"], "Power B");
    EXPECT_TRUE(first["batteryTrendPercentPerHour"].is_null()) << "one reading has no trend";
    EXPECT_TRUE(first["batteryMinutesLeft"].is_null());
    EXPECT_NEAR(last["batteryTrendPercentPerHour"].get<double>(), -60.0, 6.0);
    EXPECT_NEAR(last["batteryMinutesLeft"].get<double>(), last["batteryPercent"].get<double>(), 9);
    // They are asked for in this order.
    EXPECT_GT(first["agesS"]["status"], first["agesS"]["position"]);
    EXPECT_GT(first["agesS"]["position"], first["agesS"]["powerSource"]);
    EXPECT_EQ(first["agesS"]["time"], first["agesS"]["position"]) << "the time of the position";
    EXPECT_TRUE(last["agesS"]["position"].is_null()) << "it was refused";
    EXPECT_TRUE(last["pdop"].is_null() && last["utc"].is_null()) << "nothing of the reading before";
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

TEST(Identify, SearchesEveryRateAndStoresNoneUnasked)
{
    std::string error;
    const auto scenario = simulator::ParseScenario("baud 9600\ncheck-rate yes", error);
    ASSERT_TRUE(scenario.has_value()) << error;
    simulator::Simulator receiver(*scenario);
    ASSERT_TRUE(receiver.Start(error)) << error;
    Runner runner;
    const std::string identify = "identify --timeout 60 --port " + receiver.PortPath();
    const nlohmann::json found = runner.Result(identify + " --search");
    EXPECT_EQ(found["answersAt"], 9600);
    EXPECT_EQ(found["typeNumber"], 3017);
    const std::string line = "ports show";
    EXPECT_EQ(runner.Result(line)["ports"][0]["rate"], "38400");
    EXPECT_EQ(runner.Result(identify + " --search --store")["stored"], true);
    EXPECT_EQ(runner.Result(line)["ports"][0]["rate"], "9600");
    EXPECT_EQ(runner.Run(identify + " --store").code, 2) << "a rate that was not searched";
}

TEST(Port, ComesFromTheEnvironmentOrTheSettingsWhereNoneIsNamed)
{
    Runner runner;
    const std::string identify = "identify --speed 20 --timeout 60";
    ASSERT_EQ(runner.Run("settings set GPS\\Connect Port sim:pica").code, 0);
    EXPECT_EQ(runner.Result(identify)["typeNumber"], 3010);
    runner.variables["FIELDCORE_PORT"] = "sim:";
    EXPECT_EQ(runner.Result(identify)["typeNumber"], 3017);
    EXPECT_EQ(runner.Result(identify + " --port sim:pica")["typeNumber"], 3010);
    runner.variables.clear();
    ASSERT_EQ(runner.Run("settings set GPS\\Connect Port COM300").code, 0);
    const nlohmann::json refused = runner.Run("info --json").Json()["error"];
    EXPECT_EQ(refused["code"], "port-unusable");
    EXPECT_EQ(refused["exitCode"], 3);
    EXPECT_NE(refused["message"].get<std::string>().find("COM300"), std::string::npos);
}

/// The stored parameters of all ports, as one text; by default those of the simulator's store.
std::string StoredPorts(Runner& runner, const std::string& store = "sim:")
{
    std::string all;
    const nlohmann::json result = runner.Result("ports show --port " + store);
    for (const auto& port : result["ports"]) {
        all += port["port"].get<std::string>() + " " + port["rate"].get<std::string>() + "-" +
               port["dataBits"].get<std::string>() + "-" + port["parity"].get<std::string>() + " ";
    }
    return all;
}

TEST(PortsSet, TellsTheReceiverAndStores)
{
    Runner runner;
    const std::string sim =
        " --port sim:" + runner.Scenario("check-rate yes\n") + " --speed 20 --timeout 40";
    const std::string before =
        "link 38400-8-None com1 9600-8-None com2 9600-8-None com3 9600-8-None ";
    EXPECT_EQ(StoredPorts(runner), before);
    runner.Expect({{"ports set 4 9600" + sim, 2},
                   {"ports set 2 14400" + sim, 2},
                   {"ports set 2 9600-8-Mark" + sim, 2},
                   {"ports set 2 9600", 2},       // no port named
                   {"ports set 3 4800" + sim, 6}, // the receiver has no such port
                   {"ports set 2 9600 --baud 9600" + sim, 4}});
    EXPECT_EQ(StoredPorts(runner), before) << "nothing is stored";
    Outcome outcome = runner.Run("ports set 2 115200-7-even" + sim);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    outcome = runner.Run("ports set 1 57600" + sim); // the port in use: the line follows
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(runner.Run("ports set 0 4800-8-odd" + sim).code, 0);
    EXPECT_EQ(StoredPorts(runner),
              "link 4800-8-Odd com1 57600-8-None com2 115200-7-Even com3 9600-8-None ");
    EXPECT_EQ(StoredPorts(runner, "COM1"), before) << "a real port";
}

TEST(PortOptions, DefaultToTheStoredLine)
{
    Runner runner;
    const std::string info = "info --port sim:" + runner.Scenario("check-rate yes\nbaud 9600\n") +
                             " --speed 20 --timeout 40";
    ASSERT_EQ(runner.Run("ports set 0 9600 --port sim:").code, 0);
    EXPECT_EQ(runner.Run(info).code, 0);
    EXPECT_EQ(runner.Run(info + " --baud 38400").code, 4) << "the option does not count";
    ASSERT_EQ(runner.Run("ports set 0 38400 --port sim:").code, 0);
    EXPECT_EQ(runner.Run(info).code, 4);
    EXPECT_EQ(runner.Run(info + " --baud 9600").code, 0);
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

TEST(Demo, SurvivesTheFaultThatItMakes)
{
    Runner runner;
    const nlohmann::json result = runner.Result("demo --speed 20 --timeout 60 --log @/log");
    EXPECT_EQ(result["identity"]["typeNumber"], 3017);
    // Counted in the log as well: two to connect, one for the status, two for the damaged one.
    const std::string log = Content(runner.Path("log"));
    std::size_t requests = 0;
    for (std::size_t at = 0; (at = log.find("[02 00 08 ", at)) != std::string::npos; ++at) {
        ++requests;
    }
    EXPECT_EQ(requests, 5U);
    EXPECT_EQ(result["fault"]["timesSent"], 2);
    EXPECT_EQ(runner.Run("demo --speed 20 --timeout 60").code, 0);
}

TEST(Sim, StartsACommandWithThePort)
{
    const std::pair<std::vector<std::string>, int> rows[] = {
        {{"sh", "-c", "exit 42"}, 42},
        {{"sh", "-c", "test -c \"$FIELDCORE_PORT\""}, 0},
        {{"sh", "-c", "test \"$1\" = \"$FIELDCORE_PORT,$FIELDCORE_PORT\"", "-", "{port},{port}"},
         0},
        {{"sh", "-c", "kill -9 $$"}, 137}, // a signal is no exit code
        {{"@no such command@"}, 1},
    };
    for (const auto& [command, code] : rows) {
        SCOPED_TRACE(command.back());
        std::vector<std::string> arguments{"sim", "run", "--"};
        arguments.insert(arguments.end(), command.begin(), command.end());
        EXPECT_EQ(Runner().Run(arguments).code, code);
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
    for (const std::string command : {"", "ports", "info", "sim", "sim run", "trace", "demo"}) {
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
    const auto isColoured = [](bool isTerminal, std::map<std::string, std::string> variables) {
        Runner runner;
        runner.world.outIsTerminal = isTerminal;
        runner.variables = std::move(variables);
        return runner.Run("doctor").out.find('\x1b') != std::string::npos;
    };
    EXPECT_TRUE(isColoured(true, {}));
    EXPECT_FALSE(isColoured(false, {}));
    EXPECT_FALSE(isColoured(true, {{"NO_COLOR", "1"}}));
    EXPECT_FALSE(isColoured(true, {{"TERM", "dumb"}}));
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
        {"version for a script", "--version --json", 0, true},
        {"a receiver", "info --port sim: --speed 20 --timeout 60 --json", 0, true},
        {"usage", "info --json", 2, true},
        {"no serial port", "info --port /dev/null --json", 3, true},
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
