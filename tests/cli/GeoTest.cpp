// Conversions from the command line. The expected numbers are closed forms and published constants;
// how exact the conversions are is tested with the library.

#include "tests/cli/Runner.h"

#include <array>

namespace fieldcore::cli::test {
namespace {

nlohmann::json Result(Runner& runner, const std::string& arguments)
{
    return runner.Result("geo " + arguments);
}

void ExpectPlace(const nlohmann::json& place, double latitudeDeg, double longitudeDeg)
{
    EXPECT_NEAR(place["latitudeDeg"].get<double>(), latitudeDeg, 1e-9);
    EXPECT_NEAR(place["longitudeDeg"].get<double>(), longitudeDeg, 1e-9);
}

/// @return what stands there in a result, as it is typed
std::string Typed(const nlohmann::json& result, std::initializer_list<const char*> keys)
{
    std::string words;
    for (const char* const key : keys) {
        words += " " + result[key].dump();
    }
    return words;
}

TEST(Geo, UnderstandsAnglesInEveryForm)
{
    const std::pair<std::string, double> good[] = {
        {"-35.5", -35.5},
        {"35:41:22.4", 35 + (41 * 60 + 22.4) / 3600},
        {"-0:30:00", -0.5}, // the sign of an angle below one degree
        {"35:41.5", 35 + 41.5 / 60},
        {"-135-07-04.50000", -(135 + 424.5 / 3600)}, // as the controller writes
        {"35\u00B041'22.4\"", 35 + (41 * 60 + 22.4) / 3600},
        {"35\uFF9F30'", 35.5}, // half-width degree sign
        {"35.412240 --ddmmss", 35 + (41 * 60 + 22.4) / 3600},
        {"-35.3 --ddmmss", -35.5},
        {"35 --ddmmss", 35.0},
        {"35:30 --ddmmss", 35.5}, // separated all the same
        {"360", 360.0},
    };
    Runner runner;
    for (const auto& [typed, degrees] : good) {
        EXPECT_NEAR(Result(runner, "angle " + typed)["deg"].get<double>(), degrees, 6e-11) << typed;
    }
    for (const std::string bad : {"360:00:01", "35:60", "35:00:60", "35.6 --ddmmss", "35.5:30",
                                  "1:2:3:4", "35'41", "35.5N", "1e2", "''", "+"}) {
        EXPECT_EQ(runner.Run("geo angle " + bad).code, 2) << bad;
    }
}

TEST(Geo, WritesSexagesimalAnglesThatReadBack)
{
    const std::array<std::string, 3> rows[] = {
        {"-0.25", "-0\u00B015'00.000000\"", "-0.1500000000"},
        {"59.9999999999", "60\u00B000'00.000000\"", "60.0000000000"},
        {"-0.00000000001", "0\u00B000'00.000000\"", "0.0000000000"},
        {"7:08:09.0625", "7\u00B008'09.062500\"", "7.0809062500"},
    };
    Runner runner;
    for (const auto& [typed, dms, packed] : rows) {
        const nlohmann::json angle = Result(runner, "angle " + typed);
        EXPECT_EQ(angle["dms"], dms);
        EXPECT_EQ(angle["ddmmss"], packed);
        EXPECT_NEAR(Result(runner, "angle --ddmmss " + packed)["deg"].get<double>(),
                    angle["deg"].get<double>(), 1.5e-10); // half of the last digit
    }
}

TEST(Geo, UsesTheEllipsoidThatIsNamed)
{
    Runner().Expect({
        {"geo ecef 0 90 100", 0, "", "/result/yM", 6378237.0},
        {"geo ecef 90 0 -10", 0, "", "/result/zM", 6356742.3141},                 // 6356752.31414
        {"geo ecef -90 0 --ellipsoid wgs84", 0, "", "/result/zM", -6356752.3142}, // 6356752.31425
        // From a = 6377397.155 and 1/f = 299.152813: 6356078.96283.
        {"geo ecef 90 0 --ellipsoid Bessel", 0, "", "/result/zM", 6356078.9628},
    });
}

TEST(Geo, ComesBackFromWhereItWent)
{
    Runner runner;
    const nlohmann::json point = Result(runner, "ecef -33:51:24.5 -151.2 12.5 --ellipsoid bessel");
    const nlohmann::json place =
        Result(runner, "geodetic --ellipsoid bessel" + Typed(point, {"xM", "yM", "zM"}));
    ExpectPlace(place, -(33 + (51 * 60 + 24.5) / 3600), -151.2);
    EXPECT_NEAR(place["heightM"].get<double>(), 12.5, 1.5e-4);

    // Zone 9 begins at 36 N, 139 50' E; its meridian is shortened to 0.9999.
    EXPECT_EQ(Result(runner, "plane 36 139:50 --zone 9")["scaleFactor"], 0.9999);
    const nlohmann::json plane = Result(runner, "plane 35.5 139.25 --zone 9 --ellipsoid bessel");
    EXPECT_LT(plane["xM"].get<double>(), -55e3); // half a degree south
    EXPECT_LT(plane["yM"].get<double>(), -52e3); // 35 minutes of longitude west
    ExpectPlace(Result(runner, "unplane --zone 9 --ellipsoid bessel" + Typed(plane, {"xM", "yM"})),
                35.5, 139.25);

    const nlohmann::json jgd = Result(runner, "tokyo 35 139 70 --to jgd");
    EXPECT_EQ(jgd["datum"], "jgd");
    EXPECT_NEAR(jgd["latitudeDeg"].get<double>(), 35.0 + 12.0 / 3600, 1.0 / 3600); // near Tokyo
    ExpectPlace(
        Result(runner, "tokyo --to tokyo" + Typed(jgd, {"latitudeDeg", "longitudeDeg", "heightM"})),
        35.0, 139.0);
}

TEST(Geo, SaysWhatIsOutOfRange)
{
    Runner().Expect({
        {"geo ecef 90.001 0", 2, "-90 to 90 deg"},
        {"geo ecef 0 361", 2, "360"},
        {"geo ecef 0 0 -100001", 2, "-100000 to 100000000 m"},
        {"geo ecef 0 0 inf", 2, "no number"},
        {"geo geodetic 0 0 0", 2, "too deep"},
        {"geo geodetic 1000000000 0 0", 2, "out of range"},
        {"geo plane 35.69 139.69", 2, "--zone 9 or"},
        {"geo plane 26.2 127.7", 2, "--zone 15 or"},
        {"geo plane 35.69 139.69 --zone 16", 2, "--zone 9 or"},
        {"geo plane -35 -70 --zone 9", 2, "Japan"},
        {"geo unplane 1000001 0 --zone 9", 2, "1000000 m"},
        {"geo tokyo 35 139", 2, "--to"},
    });
}

} // namespace
} // namespace fieldcore::cli::test
