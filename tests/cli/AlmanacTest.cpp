// The almanac from the command line. Dates are counted by hand from 1980-01-06, when GPS weeks
// began.

#include "core/platform/FastClock.h"
#include "tests/cli/Runner.h"
#include "tests/core/orbits/Messages.h"

#include <chrono>

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

    /// The almanac's bytes, and whether nothing lies beside it.
    [[nodiscard]] std::string Bytes(const std::string& folder = "program") const
    {
        const std::filesystem::directory_iterator files(Path(folder));
        EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "a temporary file is left";
        return ContentOf(Path(folder + "/GSurveyPlan.alm"));
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
    EXPECT_EQ(result["satellites"][30]["prn"], 31);
    EXPECT_EQ(result["gpsTime"], "2026-03-14T00:29:52"); // second 127 * 4096 of the week
    EXPECT_EQ(result["old"], false);

    const std::string before = runner.Bytes();
    runner.Expect({{"almanac sample", 2}}); // nobody can be asked
    runner.Type("n\n");
    runner.Expect(
        {{"almanac sample", 7}, {"almanac sample --yes", 0, "The almanac has been updated."}});
    EXPECT_EQ(runner.Bytes(), before);
}

TEST(Almanac, ImportTellsWhatIsWrongAndKeepsTheOldOne)
{
    AlmanacRunner runner;
    ASSERT_EQ(runner.Run("almanac sample").code, 0);
    const std::string before = runner.Bytes();
    const std::string good = Yuma(5, "2400", "0.0");
    runner.Folder().Write("good.alm", good);
    runner.Folder().Write("bad.alm", good + "ID: 6\nHealth: sick\n");
    runner.Folder().Write("few.alm", Yuma(4, "2400", "0.0"));
    runner.Expect({
        {"almanac import @/bad.alm", 8, "bad.alm, line 77, \"Health\""},
        {"almanac import @/few.alm", 1, "The almanac has four satellites or fewer."},
        {"almanac import @/good.alm --week 32768", 2, "--week"},
        {"almanac import @/missing", 8},
    });
    EXPECT_EQ(runner.Bytes(), before);
}

TEST(Almanac, ShowsWhatTheFileSays)
{
    AlmanacRunner runner;
    runner.Folder().Write("file.alm", Yuma(5, "361", "405504.0")); // 2409 is 361 and two cycles
    EXPECT_EQ(runner.Result("almanac import @/file.alm")["gpsTime"], "2026-03-12T16:38:24");
    const nlohmann::json result = runner.Result("almanac show");
    EXPECT_EQ(result["healthyCount"], 4);
    EXPECT_EQ(result["satellites"][1], nlohmann::json::parse(R"({"prn":2,"healthy":false,
        "health":63,"week":2409,"gpsTime":"2026-03-12T16:38:24","eccentricity":0.0125,
        "inclinationDeg":45.0,"ageDays":1.4})")); // 32 h 51 min 36 s

    // Of Thursday 2026-01-08, in the afternoon.
    ASSERT_EQ(runner.Run("almanac import @/file.alm --week 2400").code, 0);
    const std::string warning = "30 days or more older";
    runner.Expect({{"almanac show", 0, warning, "/result/satellites/1/week", 2400},
                   {"almanac show --date 2026-01-08", 0, "", "/result/ageDays", -0.7},
                   {"almanac show --date 2026-02-07", 0, "", "/result/old", false},
                   {"almanac show --date 2026-02-08", 0, warning, "/result/old", true},
                   {"almanac show --date 2026-02-29", 2},
                   {"almanac show --date 04-02-2026", 2},
                   {"almanac show --date 2026--1-01", 2},
                   {"almanac import @/file.alm --week 2500", 0, "--week"}});
}

TEST(Almanac, SaysHowToGetOneWhereThereIsNone)
{
    AlmanacRunner runner;
    runner.Expect({{"almanac show", 8, "almanac get"}, {"almanac show", 8, "almanac import"}});
    runner.Folder().Write("program/GSurveyPlan.alm", std::string(79, '\x01')); // a byte is missing
    runner.Expect({{"almanac show", 8, "holds no almanac"}});
}

TEST(Almanac, GetReplacesItOnlyByAWholeOne)
{
    AlmanacRunner runner;
    ASSERT_EQ(runner.Run("almanac sample --port sim:").code, 0);
    const std::string before = runner.Bytes(kSimulated);
    const std::string get = "almanac get --speed 20 --timeout 40 --port sim:almanac-";
    const std::string error = "/error/code";
    runner.Expect({{get + "4", 1, "", error, "almanac-too-few"},
                   {get + "hangs-up", 3, "", error, "link-lost"}});
    EXPECT_EQ(runner.Bytes(kSimulated), before);
    const Outcome good = runner.Run(get + "5 --json");
    EXPECT_EQ(good.err.find("/32]"), std::string::npos) << "progress without a terminal";
    EXPECT_EQ(good.Json()["result"]["satelliteCount"], 5);
    EXPECT_EQ(good.Json()["result"]["received"], 5);
    EXPECT_EQ(good.Json()["result"]["missing"], 27);
}

TEST(Almanac, TakesMessagesOfAllSystems)
{
    AlmanacRunner runner;
    const std::string messages = testing::Messages();
    runner.Folder().Write("messages.rnx", messages);
    runner.Folder().Write("cut.rnx", messages.substr(0, 5000));

    runner.Expect({{"almanac import @/cut.rnx", 8, "of 8 lines"},
                   {"almanac import @/messages.rnx --dry-run", 0, "nothing was changed"}});
    EXPECT_FALSE(std::filesystem::exists(runner.Path("program/GSurveyPlan.nav")));
    const nlohmann::json systems = runner.Result("almanac import @/messages.rnx")["systems"];
    ASSERT_EQ(systems.size(), 6U);
    EXPECT_EQ(systems[1]["oldestGpsTime"], "2020-06-25T10:15:18");
    EXPECT_EQ(systems[5]["healthy"], 0);

    // Shown without an almanac, too, with its age: from noon of 2020-06-25 to midnight of the 26th.
    EXPECT_EQ(runner.Result("almanac show --date 2020-06-26")["systems"][4],
              nlohmann::json::parse(R"({"system":"J","satellites":1,"healthy":1,"messages":2,
                  "oldestGpsTime":"2020-06-25T11:00:00","newestGpsTime":"2020-06-25T12:00:00",
                  "ageDays":0.5,"tooOld":false})"));

    // QZSS of an almanac text goes to the others, and GPS into the almanac.
    const std::string qzss = Yuma(1, "335", "405504");
    runner.Folder().Write("file.alm",
                          Yuma(6, "335", "405504") +
                              std::string(qzss).replace(qzss.find("ID: 1"), 5, "ID: 193"));
    ASSERT_EQ(runner.Run("almanac import @/file.alm").code, 0);
    const std::string others = "plan --systems erc --date 2020-06-25 --from 19 --hours 1 "
                               "--kind tracks --clock-per-system";
    const std::string warning = "30 days or more";
    runner.Expect({{"almanac show", 0, warning, "/result/satelliteCount", 6},
                   {"almanac show", 0, warning, "/result/systems/4/messages", 1}, // not older ones
                   {others, 0, "", "/result/plans/0/systems", "REC"},
                   {others, 0, "", "/result/plans/0/clockPerSystem", true},
                   {others, 0, "", "/result/plans/0/almanac", nullptr}, // which is of GPS
                   {others, 0, "", "/result/plans/0/samples/0/satellite", "E11"},
                   {"plan --systems RS --date 2020-07-25", 0, "GLONASS"},
                   {"plan --systems GX", 2}});
    // GPS alone is the plan that it was, whatever else is known.
    EXPECT_EQ(runner.Run("plan --systems G --kind pdop --csv").out,
              runner.Run("plan --kind pdop --csv").out);
}

} // namespace
} // namespace fieldcore::cli::test
