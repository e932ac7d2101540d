// What the commands show, against what the shipped scenarios and the made-up ones say.

#include "tests/cli/Runner.h"
#include "tests/core/link/FarEnd.h"
#include "tests/support/StartReceiver.h"

#include <chrono>
#include <csignal>
#include <set>
#include <thread>

namespace fieldcore::cli::test {
namespace {

TEST(Info, ShowsTheReceiverAndExplainsItsDecision)
{
    Runner runner;
    const nlohmann::json result = runner.Result(OnSim("info"));
    EXPECT_EQ(result["family"], "lark");
    EXPECT_EQ(result["longSerial"], "5017000001");
    EXPECT_EQ(result["navigationFirmware"], 4.43);
    const auto options = result["options"].get<std::set<std::string>>();
    EXPECT_TRUE(options.contains("GLONASS") && !options.contains("Solace board"));
    runner.Expect({
        {OnSim("info"), 0},
        {OnSim("info", "beta-firmware"), 0,
         "The firmware of the receiver is a beta version; its operation is not guaranteed."},
        {OnSim("info", "old-firmware"), 5, "2.03", "/error/code", "firmware-refused"},
        {OnSim("info", "unsupported"), 5, "This software does not support the receiver [ 2040 ].",
         "/error/code", "type-refused"},
        {"info --port sim:silent --speed 20 --timeout 4", 4, "Asking the receiver for its status"},
    });
}

TEST(Status, ShowsTheUnknownAsUnknown)
{
    Runner runner;
    const auto with = [&runner](const std::string& lines) {
        return OnSim("status", runner.Scenario(lines));
    };
    const std::string then = "start 2026-03-14 01:30:00\nspeed 0.001";
    const std::string untrusted = with("fix searching\n" + then);
    const std::string known = with("fix float\nsurvey ST01\nfault nak on 41\n" + then);
    const std::string west = with("position -35.5 -120.25 12.3");
    const std::string origin = with("position 36 139.83333333333333 70");       // of plane zone 9
    runner.Expect({{untrusted, 0, "", "/result/jst", "2026-03-14T10:30+09:00"}, // no seconds
                   {untrusted, 0, "", "/result/synchronised", false},
                   {known, 0, "", "/result/utc", "2026-03-14T01:30:00Z"}, // less the leap seconds
                   {known, 0, "", "/result/fix", "float"},
                   {known, 0, "", "/result/survey", "ST01"},
                   {known, 0, "", "/result/powerSource", nullptr}, // refused
                   {west, 0, "", "/result/position/longitudeDeg", -120.25},
                   {origin, 0, "", "/result/position/planeXM", 0.0}});
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
    /// Which readings were good ones.
    const auto watch = [](const std::string& scenario, int code) {
        Runner runner;
        const Outcome outcome =
            runner.Run("status --json --watch 0.5 --count 3 --speed 20 --timeout 40 --port sim:" +
                       runner.Scenario(scenario));
        EXPECT_EQ(outcome.code, code) << outcome.err;
        std::string readings;
        for (const nlohmann::json& document : Documents(outcome.out)) {
            readings += document.value("ok", false) ? "good " : "bad ";
        }
        return readings;
    };
    EXPECT_EQ(watch("", 0), "good good good ");
    // Two status requests connect; the watch asks for the status once a reading, twice if it must.
    EXPECT_EQ(watch("fault drop on 08 skip 3 count 2", 0), "good bad good ");
    EXPECT_EQ(watch("fault hang-up reply 4 on 08 skip 3 count 1", 3), "good bad ");
    EXPECT_EQ(watch("fault drop on 08 skip 2", 4), "bad bad bad ");
}

/// What a watch knows beyond one reading.
TEST(Status, WatchFollowsTheBatteryAndTellsAges)
{
    Runner runner;
    const Outcome outcome =
        runner.Run("status --json --watch 60 --count 16 --speed 1000 --timeout 600 --port sim:" +
                   runner.Scenario("battery 90 60\nfault nak on 34 skip 15"));
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const std::vector<nlohmann::json> readings = Documents(outcome.out);
    ASSERT_EQ(readings.size(), 16U);
    const nlohmann::json& first = readings.front()["result"];
    const nlohmann::json& last = readings.back()["result"];
    EXPECT_TRUE(first["batteryTrendPercentPerHour"].is_null()) << "one reading has no trend";
    EXPECT_NEAR(last["batteryTrendPercentPerHour"].get<double>(), -60.0, 6.0);
    // They are asked for in this order.
    EXPECT_GT(first["agesS"]["status"], first["agesS"]["position"]);
    EXPECT_GT(first["agesS"]["position"], first["agesS"]["powerSource"]);
    EXPECT_EQ(first["agesS"]["time"], first["agesS"]["position"]) << "the time of the position";
    EXPECT_TRUE(last["agesS"]["position"].is_null()) << "it was refused";
    EXPECT_TRUE(last["pdop"].is_null() && last["utc"].is_null()) << "nothing of the reading before";
}

TEST(Status, WatchWaitsTwoSecondsWhereNothingElseIsSaid)
{
    Runner runner;
    const Outcome outcome =
        runner.Run("status --json --watch --count 3 --speed 20 --timeout 60 --port sim:");
    const std::vector<nlohmann::json> readings = Documents(outcome.out);
    ASSERT_EQ(readings.size(), 3U) << outcome.err;
    const auto second = [&](std::size_t k) {
        return readings[k]["result"]["gpsSecondsOfWeek"].get<int>();
    };
    constexpr int kWeek = 604800;
    EXPECT_GE((second(2) - second(0) + kWeek) % kWeek, 3);
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
    Runner runner;
    const auto receiver =
        fieldcore::testing::StartReceiver(runner.Scenario("baud 9600\ncheck-rate yes"));
    const std::string identify = "identify --timeout 60 --port " + receiver->PortPath();
    const std::string rate = "/result/ports/0/rate";
    runner.Expect({{identify + " --search", 0, "", "/result/answersAt", 9600},
                   {"ports show", 0, "", rate, "38400"},
                   {identify + " --search --store", 0, "", "/result/stored", true},
                   {"ports show", 0, "", rate, "9600"},
                   {identify + " --store", 2}}); // a rate that was not searched
}

TEST(Port, ComesFromTheEnvironmentOrTheSettingsWhereNoneIsNamed)
{
    Runner runner;
    const std::string identify = "identify --speed 20 --timeout 60";
    const std::string type = "/result/typeNumber";
    ASSERT_EQ(runner.Run("settings set GPS\\Connect Port sim:pica").code, 0);
    runner.Expect({{identify, 0, "", type, 3010}});
    runner.variables["FIELDCORE_PORT"] = "sim:";
    runner.Expect({{identify, 0, "", type, 3017}, {identify + " -p sim:pica", 0, "", type, 3010}});
    runner.variables.clear();
    ASSERT_EQ(runner.Run("settings set GPS\\Connect Port COM300").code, 0);
    runner.Expect({{"info", 3, "COM300", "/error/code", "port-unusable"}});
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
    const std::string sim = OnSim("", runner.Scenario("check-rate yes\n"));
    const std::string before =
        "link 38400-8-None com1 9600-8-None com2 9600-8-None com3 9600-8-None ";
    const std::string kept = "Kept in the simulator's own store.";
    runner.Expect({{"ports set 4 9600" + sim, 2},
                   {"ports set 2 14400" + sim, 2},
                   {"ports set 2 9600", 2},       // no port named
                   {"ports set 3 4800" + sim, 6}, // the receiver has no such port
                   {"ports set 2 9600 --baud 9600" + sim, 4}});
    EXPECT_EQ(StoredPorts(runner), before) << "nothing is stored";
    runner.Expect({{"ports set 2 115200-7-even" + sim, 0, kept},
                   {"ports set 1 57600" + sim, 0, kept}, // the port in use: the line follows
                   {"ports set 0 4800-8-odd" + sim, 0, kept}});
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
    runner.Expect({{info, 0}, {info + " --baud 38400", 4}});
}

TEST(Port, ThatTalksByItselfIsNotTakenForADamagedLine)
{
    const fieldcore::testing::FarEnd talks;
    const std::jthread talker([&talks](const std::stop_token& ends) {
        while (!ends.stop_requested()) {
            talks.Send(fieldcore::testing::Ascii("$GNRMC,120000.00,A,,*11\r\n"));
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    const std::string port = " --timeout 5 --port " + talks.Path();
    Runner().Expect({{"info" + port, 1, "", "/error/code", "port-sending"},
                     {"identify" + port, 1, "", "/error/code", "port-sending"}});
}

TEST(Demo, SurvivesTheFaultThatItMakes)
{
    Runner runner;
    const nlohmann::json result = runner.Result("demo --speed 20 --timeout 60");
    EXPECT_EQ(result["identity"]["typeNumber"], 3017);
    EXPECT_EQ(result["fault"]["timesSent"], 2);
}

TEST(Sim, StartsACommandWithThePort)
{
    const std::pair<std::string, int> rows[] = {
        {"sh -c 'exit 42'", 42},
        {"sh -c 'test -c \"$FIELDCORE_PORT\"'", 0},
        {"sh -c 'test \"$1\" = \"$FIELDCORE_PORT,$FIELDCORE_PORT\"' - {port},{port}", 0},
        {"sh -c 'kill -9 $$'", 137}, // a signal is no exit code
        {"'@no such command@'", 1},
    };
    for (const auto& [command, code] : rows) {
        EXPECT_EQ(Runner().Run("sim run -- " + command).code, code) << command;
    }
}

TEST(Sim, RunServesItsPortUntilCtrlC)
{
    Runner runner;
    nlohmann::json asked;
    runner.world.stopSignal = [&] {
        const auto* port = dynamic_cast<std::ostringstream*>(runner.world.out);
        asked = Runner().Result("identify --port " + port->str());
        return SIGINT;
    };
    EXPECT_EQ(runner.Run("sim run --scenario pica").code, 0);
    EXPECT_EQ(asked["typeNumber"], 3010);
}

TEST(Help, BeginsWithExamplesForEveryCommand)
{
    Runner runner;
    for (const std::string command : {"", "info", "sim", "sim run"}) {
        const std::string help = runner.Run(command + " --help").out;
        EXPECT_EQ(runner.Run("help " + command).out, help);
        EXPECT_TRUE(help.starts_with("Examples:\n  fieldcore-cli")) << help;
        EXPECT_NE(help.find("Usage: fieldcore-cli " + command), std::string::npos) << help;
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
        bool isJson = false;
    };
    const std::string cli = FIELDCORE_CLI;
    const Row rows[] = {
        {"version for a script", "--version --json", 0, true},
        {"a receiver", OnSim("info --json"), 0, true},
        {"no serial port", "info --port /dev/null --json", 3, true},
        {"a result that nobody keeps", "sim run -- sh -c '" + cli + " sim list >/dev/full'", 8},
        {"a watch whose reader goes away",
         "sim run -- sh -c '(" + cli +
             " status --watch 0.1 2>\"$1\"; echo $? >\"$0\") | head -1; "
             "test 0 = $(cat \"$0\") && ! test -s \"$1\"' @/code @/said",
         0},
        {"a signal that the command of sim run does not get",
         "sim run -- sh -c 'trap \"exit 5\" INT; kill -INT $PPID; while sleep 0.05; do :; done'",
         5},
        {"sim run with itself", "sim run --scenario pica -- " + cli + " identify --json", 0, true},
    };
    Runner runner;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Outcome outcome = runner.RunProgram(row.arguments);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_TRUE(!row.isJson || outcome.Json()["schema"] == 1);
    }
}

} // namespace
} // namespace fieldcore::cli::test
