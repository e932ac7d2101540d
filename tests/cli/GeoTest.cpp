// Conversions from the command line. The expected numbers are closed forms and published constants;
// how exact the conversions are is tested with the library.

#include "tests/cli/Runner.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

constexpr double kGrs80B = 6356752.314140356; // a (1 - f)
constexpr double kWgs84B = 6356752.314245179;
constexpr double kBesselB = 6356078.962832441; // from a = 6377397.155, 1/f = 299.152813

nlohmann::json Result(Runner& runner, const std::string& arguments)
{
    return runner.Result("geo " + arguments);
}

TEST(Geo, UnderstandsAnglesInEveryForm)
{
    struct Row
    {
        std::string_view fault;
        std::string typed;
        double degrees; ///< NaN: refused
        const char* form = "geo";
    };
    const double none = std::nan("");
    constexpr const char* kPacked = "--ddmmss";
    const Row rows[] = {
        {"south", "-35.5", -35.5},
        {"colons", "35:41:22.4", 35 + (41 * 60 + 22.4) / 3600},
        {"sign of an angle below one degree", "-0:30:00", -0.5},
        {"minutes with decimals", "35:41.5", 35 + 41.5 / 60},
        {"hyphens, as the controller writes", "-135-07-04.50000", -(135 + 424.5 / 3600)},
        {"signs", "35\u00B041'22.4\"", 35 + (41 * 60 + 22.4) / 3600},
        {"half-width degree sign", "35\uFF9F30'", 35.5},
        {"packed", "35.412240", 35 + (41 * 60 + 22.4) / 3600, kPacked},
        {"packed without seconds", "-35.3", -35.5, kPacked},
        {"packed without minutes", "35", 35.0, kPacked},
        {"separated in spite of --ddmmss", "35:30", 35.5, kPacked},
        {"full turn", "360", 360.0},
        {"more than a turn", "360:00:01", none},
        {"60 minutes", "35:60", none},
        {"60 seconds", "35:00:60", none},
        {"60 packed minutes", "35.6", none, kPacked},
        {"decimals before the end", "35.5:30", none},
        {"four parts", "1:2:3:4", none},
        {"signs in the wrong order", "35'41", none},
        {"something behind it", "35.5N", none},
        {"exponent", "1e2", none},
        {"nothing", "", none},
        {"only a sign", "+", none},
    };
    Runner runner;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        std::vector<std::string> words{"geo", "angle", row.typed, "--json"};
        if (row.form == kPacked) {
            words.emplace_back(kPacked);
        }
        const Outcome outcome = runner.Run(words);
        EXPECT_EQ(outcome.code, std::isnan(row.degrees) ? 2 : 0) << outcome.err;
        if (!std::isnan(row.degrees)) {
            EXPECT_NEAR(outcome.Json()["result"]["deg"].get<double>(), row.degrees, 6e-11);
        }
    }
}

TEST(Geo, WritesSexagesimalAnglesThatReadBack)
{
    struct Row
    {
        std::string typed;
        std::string dms;
        std::string packed;
    };
    const Row rows[] = {
        {"-0.25", "-0\u00B015'00.000000\"", "-0.1500000000"},
        {"59.9999999999", "60\u00B000'00.000000\"", "60.0000000000"},
        {"-0.00000000001", "0\u00B000'00.000000\"", "0.0000000000"},
        {"7:08:09.0625", "7\u00B008'09.062500\"", "7.0809062500"},
    };
    Runner runner;
    for (const Row& row : rows) {
        const nlohmann::json angle = Result(runner, "angle " + row.typed);
        EXPECT_EQ(angle["dms"], row.dms);
        EXPECT_EQ(angle["ddmmss"], row.packed);
        EXPECT_NEAR(Result(runner, "angle --ddmmss " + row.packed)["deg"].get<double>(),
                    angle["deg"].get<double>(), 1.5e-10); // half of the last digit
    }
}

TEST(Geo, UsesTheEllipsoidThatIsNamed)
{
    Runner runner;
    const auto at = [&](const std::string& arguments, const char* axis) {
        return Result(runner, "ecef " + arguments)[axis].get<double>();
    };
    constexpr double kShown = 5e-5; // the last digit
    EXPECT_NEAR(at("0 90 100", "yM"), 6378237, kShown);
    EXPECT_NEAR(at("90 0 -10", "zM"), kGrs80B - 10, kShown);
    EXPECT_NEAR(at("-90 0 --ellipsoid wgs84", "zM"), -kWgs84B, kShown);
    EXPECT_NEAR(at("90 0 --ellipsoid Bessel", "zM"), kBesselB, kShown);
}

TEST(Geo, ComesBackFromWhereItWent)
{
    Runner runner;
    const nlohmann::json point = Result(runner, "ecef -33:51:24.5 -151.2 12.5 --ellipsoid bessel");
    const nlohmann::json place =
        Result(runner, "geodetic --ellipsoid bessel " + point["xM"].dump() + " " +
                           point["yM"].dump() + " " + point["zM"].dump());
    EXPECT_NEAR(place["latitudeDeg"].get<double>(), -(33 + (51 * 60 + 24.5) / 3600), 1e-9);
    EXPECT_NEAR(place["longitudeDeg"].get<double>(), -151.2, 1e-9);
    EXPECT_NEAR(place["heightM"].get<double>(), 12.5, 1.5e-4);

    // Zone 9 begins at 36 N, 139 50' E; its meridian is shortened to 0.9999.
    const nlohmann::json origin = Result(runner, "plane 36 139:50 --zone 9");
    EXPECT_EQ(origin["scaleFactor"], 0.9999);
    const nlohmann::json plane = Result(runner, "plane 35.5 139.25 --zone 9 --ellipsoid bessel");
    EXPECT_LT(plane["xM"].get<double>(), -55e3); // half a degree south
    EXPECT_LT(plane["yM"].get<double>(), -52e3); // 35 minutes of longitude west
    const nlohmann::json back = Result(runner, "unplane --zone 9 --ellipsoid bessel " +
                                                   plane["xM"].dump() + " " + plane["yM"].dump());
    EXPECT_NEAR(back["latitudeDeg"].get<double>(), 35.5, 1e-9);
    EXPECT_NEAR(back["longitudeDeg"].get<double>(), 139.25, 1e-9);
}

TEST(Geo, MovesBetweenDatumsAndBack)
{
    Runner runner;
    const nlohmann::json jgd = Result(runner, "tokyo 35 139 70 --to jgd");
    EXPECT_EQ(jgd["datum"], "jgd");
    EXPECT_NEAR(jgd["latitudeDeg"].get<double>(), 35.0 + 12.0 / 3600, 1.0 / 3600); // near Tokyo
    const nlohmann::json back =
        Result(runner, "tokyo --to tokyo " + jgd["latitudeDeg"].dump() + " " +
                           jgd["longitudeDeg"].dump() + " " + jgd["heightM"].dump());
    EXPECT_NEAR(back["latitudeDeg"].get<double>(), 35.0, 1e-9);
    EXPECT_NEAR(back["longitudeDeg"].get<double>(), 139.0, 1e-9);
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
