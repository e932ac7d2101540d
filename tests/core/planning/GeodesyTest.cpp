#include "core/planning/Geodesy.h"

#include "core/planning/Degrees.h"
#include "core/planning/TokyoDatum.h"

#include <cmath>
#include <initializer_list>
#include <limits>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

double Distance(const Ecef& a, const Ecef& b)
{
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

// Half axes as published, good to half of their last digit. On the equator and at the pole nothing
// else enters.
TEST(Geodesy, MeetsTheAxesOfTheEllipsoids)
{
    struct Row
    {
        const char* fault;
        Ellipsoid ellipsoid;
        double a;
        double b;
        double toleranceM;
    };
    const Row rows[] = {
        {"GRS80", Ellipsoid::Grs80, 6378137.0, 6356752.31414, 1e-5},
        {"WGS84", Ellipsoid::Wgs84, 6378137.0, 6356752.314245, 1e-5},
        {"Bessel", Ellipsoid::Bessel1841, 6377397.155, 6356078.963, 5e-4},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const auto east = EcefOfGeodetic({0, kPi / 2, 100}, row.ellipsoid);
        ASSERT_TRUE(east);
        EXPECT_LT(Distance(*east, {0, row.a + 100, 0}), row.toleranceM);
        const Ecef south{0, 0, -row.b - 5000};
        const auto pole = GeodeticOfEcef(south, row.ellipsoid);
        ASSERT_TRUE(pole);
        EXPECT_NEAR(pole->latitudeRad, -kPi / 2, 1e-11);
        EXPECT_NEAR(pole->heightM, 5000, row.toleranceM);
        EXPECT_LT(Distance(*EcefOfGeodetic(*pole, row.ellipsoid), south), row.toleranceM);
    }
}

// By the textbook equations with the radius of curvature in the prime vertical.
TEST(Geodesy, AgreesWithTheClosedForm)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (const Ellipsoid ellipsoid : {Ellipsoid::Grs80, Ellipsoid::Wgs84, Ellipsoid::Bessel1841}) {
        const auto [a, f] = ShapeOf(ellipsoid);
        const double e2 = 2 * f - f * f;
        for (int i = 0; i < 500; ++i) {
            const GeodeticPosition p{unit(random) * kPi / 2, unit(random) * kPi,
                                     2.2e7 * std::abs(unit(random)) - 1e4};
            const double sine = std::sin(p.latitudeRad);
            const double n = a / std::sqrt(1 - e2 * sine * sine);
            const double r = (n + p.heightM) * std::cos(p.latitudeRad);
            const Ecef expected{r * std::cos(p.longitudeRad), r * std::sin(p.longitudeRad),
                                (n * (1 - e2) + p.heightM) * sine};
            const auto point = EcefOfGeodetic(p, ellipsoid);
            ASSERT_TRUE(point);
            // The last bits of coordinates of up to 2.8e7 m are 4e-9 m.
            ASSERT_LT(Distance(*point, expected), 2e-8);
            const auto back = GeodeticOfEcef(*point, ellipsoid);
            ASSERT_TRUE(back);
            ASSERT_NEAR(back->latitudeRad, p.latitudeRad, 1e-14);
            ASSERT_NEAR(back->heightM, p.heightM, 2e-8);
            // Longitudes matter less and less towards the poles.
            ASSERT_NEAR((back->longitudeRad - p.longitudeRad) * std::cos(p.latitudeRad), 0, 1e-14);
        }
    }
}

TEST(Geodesy, GivesNothingForNoPlace)
{
    const GeodeticPosition noPlaces[] = {
        {kNotANumber, 0, 0}, {0, kNotANumber, 0},
        {0, 0, kNotANumber}, {1.5707963267948968, 0, 0}, // the next number above pi / 2
        {-kPi, 0, 0},        {0, 7, 0},
        {0, -kInfinity, 0},  {0, 0, -100001},
        {0, 0, kInfinity},
    };
    for (const GeodeticPosition& position : noPlaces) {
        EXPECT_FALSE(EcefOfGeodetic(position, Ellipsoid::Grs80))
            << position.latitudeRad << ' ' << position.longitudeRad << ' ' << position.heightM;
    }
    const Ecef noPoints[] = {
        {0, 0, 0}, // all latitudes at once
        {kNotANumber, 0, 0}, {6378137, kNotANumber, 0},  {6378137, 0, kNotANumber},
        {kInfinity, 0, 0},   {0, -kInfinity, kInfinity}, {0, 0, 6000000},
        {2e8, 0, 0},         {1e300, 1e300, 1e300},
    };
    for (const Ecef& point : noPoints) {
        EXPECT_FALSE(GeodeticOfEcef(point, Ellipsoid::Grs80))
            << point.x << ' ' << point.y << ' ' << point.z;
    }
}

constexpr double Dms(double degrees, double minutes, double seconds)
{
    return RadiansOf(degrees + minutes / 60 + seconds / 3600);
}

// The origin of longitude and latitude of Japan, by the law before 2002 and after it.
constexpr GeodeticPosition kOldOrigin{Dms(35, 39, 17.5148), Dms(139, 44, 40.5020), 0.0};
constexpr GeodeticPosition kNewOrigin{Dms(35, 39, 29.1572), Dms(139, 44, 28.8759), 0.0};

// The translations fit the whole of Japan and not this place: 0.05" are 1.5 m, and an error of
// direction would be twice the 12" between the datums.
constexpr double kFitRad = Dms(0, 0, 0.05);

TEST(TokyoDatum, ShiftsTheOriginOfJapan)
{
    const auto shifted = Jgd2000OfTokyo(kOldOrigin);
    ASSERT_TRUE(shifted);
    EXPECT_NEAR(shifted->latitudeRad, kNewOrigin.latitudeRad, kFitRad);
    EXPECT_NEAR(shifted->longitudeRad, kNewOrigin.longitudeRad, kFitRad);

    // Heights of the old datum are levelled, those of the new one stand on the ellipsoid: the
    // geoid lies about 37 m above it there.
    EXPECT_NEAR(shifted->heightM, 37.0, 1.0);
}

// From cape to cape, for what the place above would forgive: a wrong digit.
TEST(TokyoDatum, MovesEarthFixedPointsByThePublishedMetres)
{
    const GeodeticPosition places[] = {
        kOldOrigin,
        {RadiansOf(45.5), RadiansOf(141.9), 10.0},
        {RadiansOf(24.0), RadiansOf(123.8), 500.0},
    };
    for (const GeodeticPosition& place : places) {
        const auto shifted = Jgd2000OfTokyo(place);
        ASSERT_TRUE(shifted);
        const auto from = EcefOfGeodetic(place, Ellipsoid::Bessel1841);
        const auto to = EcefOfGeodetic(*shifted, Ellipsoid::Grs80);
        ASSERT_TRUE(from && to);
        EXPECT_NEAR(to->x - from->x, -146.414, 1e-7);
        EXPECT_NEAR(to->y - from->y, 507.337, 1e-7);
        EXPECT_NEAR(to->z - from->z, 680.507, 1e-7);

        const auto back = TokyoOfJgd2000(*shifted);
        ASSERT_TRUE(back);
        EXPECT_NEAR(back->latitudeRad, place.latitudeRad, 1e-14);
        EXPECT_NEAR(back->longitudeRad, place.longitudeRad, 1e-14);
        EXPECT_NEAR(back->heightM, place.heightM, 1e-7);
    }
}

} // namespace
} // namespace fieldcore
