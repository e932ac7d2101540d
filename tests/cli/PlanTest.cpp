// The plan in the terminal, with an almanac of the tests' own constellation.

#include "core/planning/ObservationPlan.h"
#include "core/planning/PlanSettings.h"
#include "core/settings/HostReg.h"
#include "tests/cli/Runner.h"
#include "tests/core/planning/SampleSky.h"

#include <algorithm>
#include <csignal>
#include <numbers>

namespace fieldcore::cli::test {
namespace {

using namespace std::chrono_literals;

class PlanTest : public ::testing::Test
{
protected:
    PlanTest()
    {
        m_runner.variables["FIELDCORE_HOME"] = m_runner.Path("program");
        const std::vector<std::uint8_t> almanac = testing::SampleFile();
        m_runner.Folder().Write("program/GSurveyPlan.alm",
                                {reinterpret_cast<const char*>(almanac.data()), almanac.size()});
    }

    /// Of two days after the reference time of the almanac.
    nlohmann::json Plans(const std::string& arguments)
    {
        return m_runner.Result("plan --date 2022-03-12 " + arguments)["plans"];
    }
    nlohmann::json Windows(const std::string& arguments)
    {
        return m_runner.Result("plan best --date 2022-03-12 " + arguments)["windows"];
    }

    Runner m_runner;
};

TEST_F(PlanTest, ShowsTheSeriesOfThePlan)
{
    ObservationPlan expected;
    expected.Calc().LoadAlmanac(testing::SampleFile());
    expected.SetElMaskDeg(20);
    expected.Calc().SetObserver(
        {35.5 / 180.0 * std::numbers::pi, 139.5 / 180.0 * std::numbers::pi, 100.0});
    expected.Period() = {2022y / std::chrono::March / 12, 9, 2};
    expected.Compute();
    const std::string arguments = "--at 35.5,139.5,100 --mask 20 --from 9 --hours 2";

    const nlohmann::json overview = Plans(arguments)[0];
    ASSERT_EQ(overview["samples"].size(), 12U);
    EXPECT_EQ(overview["intervalMinutes"], 10);
    EXPECT_EQ(overview["samples"][0]["time"], "2022-03-12T09:00+09:00");
    EXPECT_EQ(overview["to"], "2022-03-12T11:00+09:00");
    const nlohmann::json pdop = Plans(arguments + " --kind pdop")[0];
    ASSERT_EQ(pdop["samples"].size(), 12U);
    EXPECT_EQ(overview["samples"][1]["pdop"], pdop["samples"][0]["pdop"]) << "the same instant";
    EXPECT_EQ(pdop["samples"][0]["time"], "2022-03-12T09:10+09:00");
    for (int k = 0; k < 12; ++k) {
        const auto at = static_cast<std::size_t>(k);
        EXPECT_EQ(overview["samples"][at]["satellites"], expected.CountAt(k));
        EXPECT_NEAR(pdop["samples"][at]["pdop"].get<double>(), expected.DopAt(PlanGraph::Pdop, k),
                    0.0051); // it has two decimals
    }
    const nlohmann::json tracks = Plans(arguments + " --kind tracks")[0]["samples"];
    const auto atStart = std::count_if(tracks.begin(), tracks.end(), [](const auto& sample) {
        return sample["time"] == "2022-03-12T09:00+09:00" && sample["elevationDeg"] >= 20.0;
    });
    EXPECT_EQ(atStart, expected.CountAt(0));
}

TEST_F(PlanTest, TakesSitesAndDaysInOneCall)
{
    const nlohmann::json plans = Plans("--site 札幌 千代田 --at 26,127.5 --days 2");
    ASSERT_EQ(plans.size(), 6U);
    EXPECT_EQ(plans[0]["site"], "北海道札幌市");
    EXPECT_EQ(plans[1]["date"], "2022-03-13");
    EXPECT_EQ(plans[2]["site"], "東京都千代田区");
    EXPECT_EQ(plans[4]["latitudeDeg"], 26.0);
    EXPECT_EQ(plans[4]["heightM"], 0.0);
    EXPECT_EQ(Plans("--from 22 --hours 4")[0]["to"], "2022-03-13T02:00+09:00");

    // A site of the user's own goes before a sample of the same name.
    m_runner.Folder().Write("program/GSurveyPlan.ini",
                            "\xEF\xBB\xBF[東京都千代田区]\r\nLAT=36.0\r\nLON=140.0\r\nHGT=7\r\n");
    EXPECT_EQ(Plans("")[0]["latitudeDeg"], 36.0);
}

TEST_F(PlanTest, BeginsWithANominalAlmanac)
{
    m_runner.variables["FIELDCORE_HOME"] = m_runner.Path("fresh");
    const Outcome first = m_runner.Run("plan");
    EXPECT_EQ(first.code, 0);
    EXPECT_NE(first.err.find("There was no"), std::string::npos) << first.err;
    EXPECT_NE(first.out.find("31 satellites, 31 healthy"), std::string::npos) << first.out;
    EXPECT_EQ(m_runner.Run("plan").err.find("There was no"), std::string::npos) << "told once";
    // And every time that it is made up.
    const std::string made = "nominal almanac (sample)";
    m_runner.Expect({{"plan best", 0, made}, {"plan", 0, made}, {"plan --csv", 0, made}});
    EXPECT_NE(m_runner.Run("plan --csv").out.find(made), std::string::npos);
    EXPECT_NE(m_runner.Run("almanac show").out.find(made), std::string::npos);
}

TEST_F(PlanTest, FindsTheGoodWindows)
{
    const nlohmann::json few = Windows("--min-sv 8 --max-pdop 2.5 --min-length 1h");
    ASSERT_GE(few.size(), 1U);
    for (const nlohmann::json& window : few) {
        EXPECT_GE(window["minutes"], 60);
        EXPECT_GE(window["fewestSatellites"], 8);
        EXPECT_LE(window["highestPdop"], 2.5);
    }
    const std::string none = "plan best --date 2022-03-12 --min-sv 12 --max-pdop 1";
    m_runner.Expect({{none, 1, "--max-pdop", "/error/code", "no-window"},
                     {none, 1, "--max-pdop", "/result/windows", nlohmann::json::array()}});
}

TEST_F(PlanTest, TakesWhatThePageKeeps)
{
    const int prn = Plans("--kind tracks")[0]["samples"][0]["prn"];
    const nlohmann::json best = Plans("")[0]["bestWindow"];
    const double pdop = best["highestPdop"].get<double>() - 0.3;
    {
        SettingsRoots roots{Folders(m_runner.world.folders)};
        PlanSettings settings;
        settings.switchedOff = 1U << (prn - 1);
        settings.limits.maxPdop = pdop;
        settings.limits.minLength = 10min;
        ASSERT_EQ(SavePlanSettings(HostReg(roots), settings), 1);
    }
    const nlohmann::json tracks = Plans("--kind tracks");
    for (const nlohmann::json& sample : tracks[0]["samples"]) {
        EXPECT_NE(sample["prn"], prn) << "switched off";
    }
    EXPECT_NE(Plans("")[0]["bestWindow"], best) << "by limits of its own";
    EXPECT_EQ(Windows(""),
              Windows("--min-sv 5 --min-length 10m --max-pdop " + std::to_string(pdop)));
    EXPECT_NE(Windows(""), Windows("--max-pdop 9"));
}

TEST_F(PlanTest, TakesACurtainInEitherForm)
{
    m_runner.Folder().Write("CurTain.obs", std::string(360, '\x5A')); // 90 degrees
    m_runner.Folder().Write("wall.txt", "0 90\n");
    const std::string folder = "--curtain " + m_runner.Path("");
    const nlohmann::json walled = Plans(folder + "wall.txt")[0]["samples"];
    EXPECT_EQ(walled[0]["satellites"], 0);
    EXPECT_TRUE(walled[0]["pdop"].is_null());
    EXPECT_TRUE(Plans(folder + "wall.txt --kind pdop")[0]["samples"][0]["pdop"].is_null());
    EXPECT_EQ(Plans(folder + "CurTain.obs")[0]["samples"], walled);
}

TEST_F(PlanTest, SearchesDaysForSeveralSites)
{
    m_runner.Folder().Write("sites.csv",
                            "A,35.5,139.5,100\n\"B/C\",35.6,139.6,50\nD,43,141.3,20\n");
    m_runner.Folder().Write("program/Curtains/B%2FC.txt", "0 60\n");
    const std::string search =
        "plan best --sites @/sites.csv --days 3 --top 2 --mask 10 --length 1h --from 20 --hours 9 "
        "--date 2022-03-12 --min-sv 5 --max-pdop 6";
    const Outcome told = m_runner.Run(search + " --json");
    EXPECT_EQ(told.code, 0) << told.err;
    for (const char* const part : {"open sky is taken: A, D", "Curtains/A.txt",
                                   "No such time at: B/C, all together"}) { // under 60 degrees
        EXPECT_NE(told.err.find(part), std::string::npos) << told.err;
    }
    const nlohmann::json windows = told.Json()["result"]["windows"];
    ASSERT_EQ(windows.size(), 4U) << "two days of two sites";
    EXPECT_EQ(windows[2]["site"], "D");
    EXPECT_GE(windows[2]["fewestSatellites"], 5);
    EXPECT_LE(windows[0]["highestPdop"], windows[1]["highestPdop"]) << "the best day first";
    // Without the wall all of them together; as values, too.
    const Outcome csv = m_runner.Run(search + " --no-curtain --csv");
    EXPECT_EQ(csv.out.find("site,date,from,to,fewestSatellites,"), 0U);
    EXPECT_EQ(std::count(csv.out.begin(), csv.out.end(), '\n'), 1 + 2 * 4);
    EXPECT_NE(csv.out.find("\r\n*,2022-03-1"), std::string::npos) << csv.out;

    int asked = 0;
    m_runner.world.stopSignal = [&asked] { return ++asked > 20 ? SIGINT : 0; };
    m_runner.world.errIsTerminal = true;
    m_runner.Expect({{search, 7, "[20/"}}); // the progress
}

TEST_F(PlanTest, PlansASessionOfSeveralSites)
{
    const std::string session = "plan session --at 35.5,139.5,100 --at 43,141.3,20 --no-curtain "
                                "--mask 10 --from 9 --hours 2 --date 2022-03-12";
    const nlohmann::json result = m_runner.Result(session);
    ASSERT_EQ(result["sites"].size(), 3U);
    EXPECT_EQ(result["samples"].size(), 13U);
    EXPECT_EQ(result["sites"][2]["site"], "*");
    EXPECT_LE(result["sites"][2]["fewestSatellites"], result["sites"][0]["fewestSatellites"]);
    EXPECT_GE(result["sites"][2]["highestPdop"], result["sites"][1]["highestPdop"]);
    const Outcome csv = m_runner.Run(session + " --csv");
    EXPECT_EQ(csv.out.find("time,satellites,pdop,almanac\r\n2022-03-12T09:00+09:00,"), 0U)
        << csv.out;
}

TEST_F(PlanTest, SaysWhatIsWrongAndWhatToDo)
{
    m_runner.Folder().Write("program/GSurveyPlan.ini",
                            "[low]\r\nLAT=36.0\r\nLON=140.0\r\n"
                            "[far]\r\nLAT=136.0\r\nLON=140.0\r\nHGT=7\r\n");
    m_runner.Folder().Write("wrong.txt", "60 15\n100 95\n");
    m_runner.Folder().Write("one.csv", "walled,35.5,139.5,10\n");
    m_runner.Folder().Write("wrong.csv", "A,35.5,139.5,10\nB,95,139,0\n");
    m_runner.Folder().Write("program/Curtains/walled.txt", "a wall\n");
    const std::string code = "/error/code";
    m_runner.Expect({
        {"plan --from -1", 2, "-1"},
        {"plan --date 2022-02-30", 2, "2026-11-21, today"},
        {"plan --date 1980-01-05", 2, "1980-01-07"},
        {"plan --site Atlantis", 2, "plan sites"},
        {"plan --site 県", 2, "Several sites"},
        {"plan --site low", 8, "has no HGT"},
        {"plan sites", 0, "", "/result/sites/0/latitudeDeg", 36.0},
        {"plan sites", 0, "", "/result/sites/0/heightM", nullptr},
        {"plan --site far", 8, "no place on Earth"},
        {"plan --at 35", 2, "--at 35.69,139.75,60"},
        {"plan --at 35,139,1,2", 2, "--at 35.69,139.75,60"},
        {"plan --at nan,139", 2, "--at 35.69,139.75,60"},
        {"plan --kind hdop", 2, "hdop"},
        {"plan --csv", 2, "", code, "usage"}, // with --json
        {"plan best --min-length 60x", 2, "60x"},
        {"plan --almanac @/missing.alm", 8, "almanac get"},
        {"plan --curtain @/wrong.txt", 8, "wrong.txt, line 2"},
        {"plan --almanac @/", 8, "almanac import"},
        {"plan best --sites @/missing.csv", 8, "missing.csv"},
        {"plan best --sites @/wrong.csv", 8, "wrong.csv, line 2"},
        {"plan best --sites @/one.csv --days 32", 2, "31 days"},
        {"plan best --sites @/one.csv --csv", 2, "", code, "usage"},
        {"plan best --sites @/one.csv --systems GX", 2, "GX"},
        {"plan best --sites @/one.csv --systems GE --clock-per-system", 2, "--clock-per-system"},
        {"plan best --sites @/one.csv", 8, "walled.txt, line 1"},
        {"plan session --sites @/one.csv", 2, "two sites"},
        {"plan --date 2022-03-12", 0},
        {"plan --date 2022-04-09 --from 9", 0}, // within 30 days
        {"plan --date 2022-04-11 --from 9", 0, "almanac get"},
    });
}

} // namespace
} // namespace fieldcore::cli::test
