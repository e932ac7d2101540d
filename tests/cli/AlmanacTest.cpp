// The almanac from the command line. Dates are counted by hand from 1980-01-06, when GPS weeks
// began.

#include "core/platform/FastClock.h"
#include "tests/cli/Runner.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

using namespace std::chrono_literals;

/// A made-up YUMA text of PRN 1 to @p count.
std::string Yuma(int count, const std::string& week, const std::string& toa)
{
    std::string text;
    for (int prn = 1; prn <= count; ++prn) {
        text += "******** almanac ********\nID: " + std::to_string(prn) +
                "\nHealth: " + (prn == 2 ? "063" : "000") +
                "\nEccentricity: 0.0125\nTime of Applicability(s): " + toa +
                "\nOrbital Inclination(rad): 0.7853981633974483\n"
                "Rate of Right Ascen(r/s): -7.8E-09\nSQRT(A)  (m 1/2): 5153.6\n"
                "Right Ascen at Week(rad): 1.0\nArgument of Perigee(rad): 0.5\n"
                "Mean Anom(rad): 0.25\nAf0(s): 0\nAf1(s/s): 0\nweek: " +
                week + "\n\n";
    }
    return text;
}

/// A runner with a date of its own, Saturday 2026-03-14 01:30 UTC: week 2409, second 523800.
class AlmanacRunner : public Runner
{
public:
    AlmanacRunner()
    {
        world.clock = &m_clock;
        variables["FIELDCORE_HOME"] = Path("program");
    }

    [[nodiscard]] std::filesystem::path File() const { return Path("program/GSurveyPlan.alm"); }
    /// The almanac's bytes, and whether nothing lies beside it.
    [[nodiscard]] std::string Bytes(const std::string& folder = "program") const
    {
        const std::filesystem::directory_iterator files(Path(folder));
        EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "a temporary file is left";
        return Content(Path(folder + "/GSurveyPlan.alm"));
    }

private:
    FastClock m_clock{1.0, std::chrono::sys_days{2026y / 3 / 14} + 90min};
};

constexpr const char* kSimulated = "program/simulator";

TEST(Almanac, SampleIsOfToday)
{
    AlmanacRunner runner;
    ASSERT_EQ(runner.Run("almanac sample").code, 0);
    const nlohmann::json result = runner.Result("almanac show");
    EXPECT_EQ(result["satelliteCount"], 31);
    EXPECT_EQ(result["satellites"].size(), 31U);
    EXPECT_EQ(result["satellites"][30]["prn"], 31);
    EXPECT_EQ(result["satellites"][0]["week"], 2409);
    EXPECT_EQ(result["gpsTime"], "2026-03-14T00:29:52"); // second 127 * 4096 of the week
    EXPECT_EQ(result["old"], false);

    const std::string before = runner.Bytes();
    EXPECT_EQ(runner.Run("almanac sample").code, 2) << "replaced unasked";
    runner.world.inIsTerminal = runner.world.errIsTerminal = true;
    runner.input = "n\n";
    EXPECT_EQ(runner.Run("almanac sample").code, 7);
    EXPECT_EQ(runner.Run("almanac sample --yes").code, 0);
    EXPECT_EQ(runner.Bytes(), before);
}

TEST(Almanac, ImportTellsWhatIsWrongAndKeepsTheOldOne)
{
    struct Row
    {
        std::string_view fault;
        std::string text;
        std::string arguments;
        int code;
        std::string told;
    };
    const std::string good = Yuma(5, "2400", "0.0");
    const std::string bad = good + "ID: 6\nHealth: sick\n";
    const Row rows[] = {
        {"no almanac", "Eccentricity", "", 8, "file.alm, line 1"},
        {"a line that makes no sense", bad, "", 8, "line 77, \"Health\""},
        {"too few", Yuma(4, "2400", "0.0"), "", 1, "The almanac has four satellites or fewer."},
        {"week that does not exist", good, "--week 32768", 2, "--week"},
        {"no week", good, "--week next", 2, "--week"},
    };
    AlmanacRunner runner;
    ASSERT_EQ(runner.Run("almanac sample").code, 0);
    const std::string before = runner.Bytes();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        runner.Folder().Write("file.alm", row.text);
        const Outcome outcome = runner.Run("almanac import @/file.alm " + row.arguments);
        EXPECT_EQ(outcome.code, row.code);
        EXPECT_NE(outcome.err.find(row.told), std::string::npos) << outcome.err;
        EXPECT_EQ(runner.Bytes(), before);
    }
    EXPECT_EQ(runner.Run("almanac import @/none").code, 8);
    EXPECT_EQ(runner.Run("almanac import @/").code, 8);
}

TEST(Almanac, ShowsWhatTheFileSays)
{
    AlmanacRunner runner;
    runner.Folder().Write("file.alm", Yuma(5, "361", "405504.0")); // 2409 is 361 and two cycles
    const Outcome imported = runner.Run("almanac import @/file.alm --json");
    ASSERT_EQ(imported.code, 0) << imported.err;
    EXPECT_EQ(imported.Json()["result"]["gpsTime"], "2026-03-12T16:38:24");
    const nlohmann::json result = runner.Result("almanac show");
    EXPECT_EQ(result["healthyCount"], 4);
    const nlohmann::json second = result["satellites"][1];
    EXPECT_EQ(second["prn"], 2);
    EXPECT_EQ(second["healthy"], false);
    EXPECT_EQ(second["health"], 63);
    EXPECT_EQ(second["week"], 2409);
    EXPECT_EQ(second["eccentricity"], 0.0125);
    EXPECT_EQ(second["inclinationDeg"], 45.0);
    EXPECT_EQ(second["ageDays"], 1.4); // 32 h 51 min 36 s

    ASSERT_EQ(runner.Run("almanac import @/file.alm --week 2400").code, 0);
    EXPECT_EQ(runner.Result("almanac show")["satellites"][1]["week"], 2400);
    const Outcome ahead = runner.Run("almanac import @/file.alm --week 2500");
    EXPECT_NE(ahead.err.find("--week"), std::string::npos) << ahead.err;
}

TEST(Almanac, IsOldAfterMoreThanThirtyDays)
{
    struct Row
    {
        std::string_view fault;
        std::string date;
        int code;
        double ageDays;
        bool old;
    };
    // Week 2400 began on 2026-01-04.
    const Row rows[] = {
        {"before it", "2026-01-03", 0, -1.0, false},
        {"the same day", "2026-01-04", 0, 0.0, false},
        {"thirty days", "2026-02-03", 0, 30.0, false},
        {"a day more", "2026-02-04", 0, 31.0, true},
        {"no such day", "2026-02-29", 2, 0, false},
        {"no such month", "2026-13-01", 2, 0, false},
        {"other way round", "04-02-2026", 2, 0, false},
        {"signs", "2026--1-01", 2, 0, false},
    };
    AlmanacRunner runner;
    runner.Folder().Write("file.alm", Yuma(5, "2400", "0"));
    ASSERT_EQ(runner.Run("almanac import @/file.alm").code, 0);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Outcome outcome = runner.Run("almanac show --json --date " + row.date);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        const bool isTold = outcome.err.find("30 days or more older") != std::string::npos;
        EXPECT_EQ(isTold, row.old);
        if (row.code == 0) {
            EXPECT_EQ(outcome.Json()["result"]["old"], row.old);
            EXPECT_EQ(outcome.Json()["result"]["ageDays"], row.ageDays);
        }
    }
}

TEST(Almanac, SaysHowToGetOneWhereThereIsNone)
{
    AlmanacRunner runner;
    const Outcome missing = runner.Run("almanac show");
    EXPECT_EQ(missing.code, 8);
    for (const char* const way : {"almanac get", "almanac import", "almanac sample"}) {
        EXPECT_NE(missing.err.find(way), std::string::npos) << way;
    }
    EXPECT_NE(missing.err.find("The file could not be read."), std::string::npos);
    runner.Folder().Write("program/GSurveyPlan.alm", std::string(79, '\x01')); // a byte is missing
    EXPECT_NE(runner.Run("almanac show").err.find("holds no almanac"), std::string::npos);
    runner.Folder().Write("program/GSurveyPlan.alm", std::string(80, '\xFF')); // of PRN 255
    EXPECT_EQ(runner.Run("almanac show").code, 8);
}

TEST(Almanac, GetReplacesItOnlyByAWholeOne)
{
    struct Row
    {
        std::string_view fault;
        std::string scenario;
        int code;
        std::string error; ///< its code in the JSON document
        int received;      ///< -1: nothing is replaced
        std::string told;
    };
    const Row rows[] = {
        {"a good receiver", "almanac-31", 0, "", 31, "The almanac has been updated."},
        {"just enough", "almanac-5", 0, "", 5, "The almanac has been updated."},
        {"too few", "almanac-4", 1, "almanac-too-few", -1,
         "The almanac has four satellites or fewer."},
        {"cable pulled before there were enough", "almanac-hangs-up", 3, "link-lost", -1,
         "The port is gone."},
        {"nobody there", "silent", 4, "no-answer", -1, "The receiver could not be connected."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        AlmanacRunner runner;
        ASSERT_EQ(runner.Run("almanac sample --port sim:").code, 0);
        const std::string before = runner.Bytes(kSimulated);
        const Outcome outcome =
            runner.Run("almanac get --json --speed 20 --timeout 40 --port sim:" + row.scenario);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_NE(outcome.err.find(row.told), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.find("/32]"), std::string::npos) << "progress without a terminal";
        const nlohmann::json document = outcome.Json();
        if (row.received < 0) {
            EXPECT_EQ(document["error"]["code"], row.error);
            EXPECT_EQ(runner.Bytes(kSimulated), before);
        } else {
            EXPECT_EQ(document["result"]["received"], row.received);
            EXPECT_EQ(document["result"]["satelliteCount"], row.received);
            EXPECT_EQ(document["result"]["missing"], 32 - row.received);
        }
    }
}

TEST(Almanac, CtrlCKeepsTheOldOne)
{
    AlmanacRunner runner;
    ASSERT_EQ(runner.Run("almanac sample --port sim:").code, 0);
    const std::string before = runner.Bytes(kSimulated);
    runner.world.errIsTerminal = true;
    runner.world.stopSignal = [&runner] {
        const auto* err = dynamic_cast<std::ostringstream*>(runner.world.err);
        return err->str().find("[7/32]") == std::string::npos ? 0 : SIGINT;
    };
    const Outcome outcome = runner.Run("almanac get --speed 20 --timeout 60 --port sim:almanac-31");
    EXPECT_EQ(outcome.code, 7) << outcome.err;
    EXPECT_EQ(runner.Bytes(kSimulated), before);
}

TEST(Almanac, TakesMessagesOfAllSystems)
{
    AlmanacRunner runner;
    const std::string messages =
        Content(std::filesystem::path(FIELDCORE_SOURCE_DIR) / "tests/core/orbits/messages.rnx");
    runner.Folder().Write("messages.rnx", messages);
    runner.Folder().Write("cut.rnx", messages.substr(0, 5000));

    const Outcome refused = runner.Run("almanac import @/cut.rnx --json");
    EXPECT_EQ(refused.code, 8);
    EXPECT_NE(refused.out.find("of 8 lines"), std::string::npos) << refused.out;
    const Outcome dry = runner.Run("almanac import @/messages.rnx --dry-run");
    EXPECT_EQ(dry.code, 0) << dry.err;
    EXPECT_FALSE(std::filesystem::exists(runner.Path("program/GSurveyPlan.nav")));

    const Outcome imported = runner.Run("almanac import @/messages.rnx --json");
    ASSERT_EQ(imported.code, 0) << imported.err;
    const nlohmann::json systems = imported.Json()["result"]["systems"];
    ASSERT_EQ(systems.size(), 6U);
    EXPECT_EQ(systems[1]["system"], "R");
    EXPECT_EQ(systems[1]["messages"], 2);
    EXPECT_EQ(systems[1]["oldestGpsTime"], "2020-06-25T10:15:18");
    EXPECT_EQ(systems[1]["newestGpsTime"], "2020-06-25T11:15:18");
    EXPECT_EQ(systems[5]["healthy"], 0);

    // Shown without an almanac, too, with its age: from noon of 2020-06-25 to midnight of the 26th.
    const nlohmann::json shown = runner.Result("almanac show --date 2020-06-26")["systems"];
    EXPECT_EQ(shown[4]["system"], "J");
    EXPECT_EQ(shown[4]["ageDays"], 0.5);
    EXPECT_EQ(shown[4]["tooOld"], false);

    // QZSS of an almanac text goes to the others, and GPS into the almanac.
    const std::string qzss = Yuma(1, "335", "405504");
    runner.Folder().Write("file.alm",
                          Yuma(6, "335", "405504") +
                              std::string(qzss).replace(qzss.find("ID: 1"), 5, "ID: 193"));
    ASSERT_EQ(runner.Run("almanac import @/file.alm").code, 0);
    const nlohmann::json both = runner.Result("almanac show");
    EXPECT_EQ(both["satelliteCount"], 6);
    EXPECT_EQ(both["systems"][4]["messages"], 1); // years older: forgotten

    const Outcome plan = runner.Run("plan --systems erc --date 2020-06-25 --from 19 --hours 1 "
                                    "--kind tracks --clock-per-system --json");
    ASSERT_EQ(plan.code, 0) << plan.err;
    const nlohmann::json made = plan.Json()["result"]["plans"][0];
    EXPECT_EQ(made["systems"], "REC");
    EXPECT_EQ(made["clockPerSystem"], true);
    EXPECT_FALSE(made.contains("almanac")) << "it is not of GPS";
    EXPECT_EQ(made["samples"][0]["satellite"], "E11");
    const Outcome stale = runner.Run("plan --systems RS --date 2020-07-25");
    EXPECT_NE(stale.err.find("GLONASS"), std::string::npos) << stale.err;
    EXPECT_EQ(runner.Run("plan --systems GX").code, 2);
    // GPS alone is the plan that it was, whatever else is known.
    EXPECT_EQ(runner.Run("plan --systems G --kind pdop --csv").out,
              runner.Run("plan --kind pdop --csv").out);
}

} // namespace
} // namespace fieldcore::cli::test
