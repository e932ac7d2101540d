#include "core/planning/Geodesy.h"

#include "core/planning/PlaneRectangular.h"
#include "core/platform/Degrees.h"

#include <cmath>
#include <initializer_list>
#include <limits>
#include <numbers>
#include <random>
#include <tuple>

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
    const std::tuple<const char*, Ellipsoid, double, double, double> rows[] = {
        {"GRS80", Ellipsoid::Grs80, 6378137.0, 6356752.31414, 1e-5},
        {"WGS84", Ellipsoid::Wgs84, 6378137.0, 6356752.314245, 1e-5},
        {"Bessel", Ellipsoid::Bessel1841, 6377397.155, 6356078.963, 5e-4},
    };
    for (const auto& [fault, ellipsoid, a, b, toleranceM] : rows) {
        SCOPED_TRACE(fault);
        const auto east = EcefOfGeodetic({0, kPi / 2, 100}, ellipsoid).value();
        EXPECT_LT(Distance(east, {0, a + 100, 0}), toleranceM);
        const Ecef south{0, 0, -b - 5000};
        const auto pole = GeodeticOfEcef(south, ellipsoid).value();
        EXPECT_NEAR(pole.latitudeRad, -kPi / 2, 1e-11);
        EXPECT_NEAR(pole.heightM, 5000, toleranceM);
        EXPECT_LT(Distance(*EcefOfGeodetic(pole, ellipsoid), south), toleranceM);
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
            const auto point = EcefOfGeodetic(p, ellipsoid).value();
            // The last bits of coordinates of up to 2.8e7 m are 4e-9 m.
            ASSERT_LT(Distance(point, expected), 2e-8);
            const auto back = GeodeticOfEcef(point, ellipsoid).value();
            ASSERT_NEAR(back.latitudeRad, p.latitudeRad, 1e-14);
            ASSERT_NEAR(back.heightM, p.heightM, 2e-8);
            // Longitudes matter less and less towards the poles.
            ASSERT_NEAR((back.longitudeRad - p.longitudeRad) * std::cos(p.latitudeRad), 0, 1e-14);
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

// The origin of longitude and latitude of Japan, by the law before 2002.
constexpr GeodeticPosition kOldOrigin{Dms(35, 39, 17.5148), Dms(139, 44, 40.5020), 0.0};

// From cape to cape.
TEST(TokyoDatum, MovesEarthFixedPointsByThePublishedMetres)
{
    const GeodeticPosition places[] = {
        kOldOrigin,
        {RadiansOf(45.5), RadiansOf(141.9), 10.0},
        {RadiansOf(24.0), RadiansOf(123.8), 500.0},
    };
    for (const GeodeticPosition& place : places) {
        const auto shifted = Jgd2000OfTokyo(place).value();
        const Ecef from = EcefOfGeodetic(place, Ellipsoid::Bessel1841).value();
        const Ecef to = EcefOfGeodetic(shifted, Ellipsoid::Grs80).value();
        EXPECT_LT(Distance(to, {from.x - 146.414, from.y + 507.337, from.z + 680.507}), 1e-7);

        const auto back = TokyoOfJgd2000(shifted).value();
        EXPECT_LT(Distance(EcefOfGeodetic(back, Ellipsoid::Bessel1841).value(), from), 1e-7);
    }
}

GeodeticPosition Place(double latitudeDeg, double longitudeDeg)
{
    return {RadiansOf(latitudeDeg), RadiansOf(longitudeDeg), 0.0};
}

// The example of the calculation page of Japan's Geospatial Information Authority.
TEST(PlaneRectangular, AgreesWithThePublishedExample)
{
    const GeodeticPosition place =
        Place(36 + 6 / 60.0 + 13.58925 / 3600, 140 + 5 / 60.0 + 16.27815 / 3600);
    const auto plane = PlaneOfGeodetic(9, place).value();
    EXPECT_NEAR(plane.position.xM, 11543.6883, 5e-5) << "half of the last digit given";
    EXPECT_NEAR(plane.position.yM, 22916.2436, 5e-5);

    const auto back = GeodeticOfPlane(9, {11543.6883, 22916.2436}).value();
    EXPECT_NEAR(back.latitudeRad, place.latitudeRad, 1e-11) << "5e-5 m";
    EXPECT_NEAR(back.longitudeRad, place.longitudeRad, 1e-11);
}

// Degrees and minutes as the notification lists them.
TEST(PlaneRectangular, HasTheOriginsOfTheNineteenZones)
{
    constexpr int kPublished[19][3] = {
        {33, 129, 30}, {33, 131, 0},  {36, 132, 10}, {33, 133, 30}, {36, 134, 20},
        {36, 136, 0},  {36, 137, 10}, {36, 138, 30}, {36, 139, 50}, {40, 140, 50},
        {44, 140, 15}, {44, 142, 15}, {44, 144, 15}, {26, 142, 0},  {26, 127, 30},
        {26, 124, 0},  {26, 131, 0},  {20, 136, 0},  {26, 154, 0},
    };
    for (int zone = 1; zone <= 19; ++zone) {
        SCOPED_TRACE(zone);
        const auto& [latitude, longitude, minutes] = kPublished[zone - 1];
        const GeodeticPosition origin = Place(latitude, longitude + minutes / 60.0);
        for (const Ellipsoid ellipsoid : {Ellipsoid::Grs80, Ellipsoid::Bessel1841}) {
            const auto plane = PlaneOfGeodetic(zone, origin, ellipsoid).value();
            EXPECT_NEAR(plane.position.xM, 0.0, 1e-8);
            EXPECT_NEAR(plane.position.yM, 0.0, 1e-8);
            EXPECT_NEAR(plane.convergenceRad, 0.0, 1e-15);
            EXPECT_NEAR(plane.scaleFactor, 0.9999, 1e-15);
        }
    }
}

// A step to the north on the ellipsoid and on the plane tells convergence and scale. As the origins
// are right, so is every place that is reached with the right scale in the right direction.
TEST(PlaneRectangular, KeepsScaleAndDirectionEverywhere)
{
    for (const Ellipsoid ellipsoid : {Ellipsoid::Grs80, Ellipsoid::Bessel1841}) {
        for (const int zone : {2, 9, 13, 18}) {
            for (const double northDeg : {-3.0, -0.7, 0.0, 1.9}) {
                for (const double eastDeg : {-1.5, -0.4, 0.0, 0.01, 1.2}) {
                    SCOPED_TRACE(testing::Message() << zone << ' ' << northDeg << ' ' << eastDeg);
                    GeodeticPosition place = *PlaneOrigin(zone);
                    place.latitudeRad += RadiansOf(northDeg);
                    place.longitudeRad += RadiansOf(eastDeg);
                    place.heightM = 55.0; // which a plane does not have
                    const auto plane = PlaneOfGeodetic(zone, place, ellipsoid).value();

                    // 6 m long and true to 1e-8 m: 2e-9.
                    constexpr double kStep = 1e-6;
                    const GeodeticPosition north{place.latitudeRad + kStep / 2, place.longitudeRad};
                    const GeodeticPosition south{place.latitudeRad - kStep / 2, place.longitudeRad};
                    const PlanePosition to = PlaneOfGeodetic(zone, north, ellipsoid)->position;
                    const PlanePosition from = PlaneOfGeodetic(zone, south, ellipsoid)->position;
                    const double dx = to.xM - from.xM;
                    const double dy = to.yM - from.yM;
                    EXPECT_NEAR(plane.convergenceRad, -std::atan2(dy, dx), 5e-9);
                    const Ecef a = *EcefOfGeodetic(south, ellipsoid);
                    const Ecef b = *EcefOfGeodetic(north, ellipsoid);
                    EXPECT_NEAR(plane.scaleFactor, std::hypot(dx, dy) / Distance(a, b), 5e-9);

                    const auto back = GeodeticOfPlane(zone, plane.position, ellipsoid).value();
                    EXPECT_NEAR(back.latitudeRad, place.latitudeRad, 1e-14);
                    EXPECT_NEAR(back.longitudeRad, place.longitudeRad, 1e-14);
                    EXPECT_EQ(back.heightM, 0.0);
                }
            }
        }
    }
}

TEST(PlaneRectangular, GivesNothingOutOfReach)
{
    const std::tuple<const char*, int, GeodeticPosition> rows[] = {
        {"zone 0", 0, Place(36, 140)},
        {"zone 20", 20, Place(36, 140)},
        {"latitude is no number", 9, Place(kNotANumber, 140)},
        {"longitude is no number", 9, Place(36, kNotANumber)},
        {"longitude is infinite", 9, Place(36, kInfinity)},
        {"beyond the pole", 9, Place(90.1, 140)},
        {"too far north", 9, Place(45.2, 139.8)},
        {"too far east", 9, Place(36, 151.2)},
        {"other side of the earth", 9, Place(36, -40.2)},
        {"antipodes", 9, Place(-36, -40.2)},
        {"where the projection has no end", 9, Place(0, 139 + 50 / 60.0 + 90)},
    };
    for (const auto& [fault, zone, place] : rows) {
        EXPECT_FALSE(PlaneOfGeodetic(zone, place)) << fault;
    }
    for (const PlanePosition& none : {PlanePosition{kNotANumber, 0}, PlanePosition{0, kNotANumber},
                                      PlanePosition{1000001, 0}, PlanePosition{0, -kInfinity}}) {
        EXPECT_FALSE(GeodeticOfPlane(9, none)) << none.xM << ' ' << none.yM;
    }
    for (const int zone : {0, 20}) {
        EXPECT_FALSE(GeodeticOfPlane(zone, {0, 0}));
        EXPECT_FALSE(PlaneOrigin(zone));
    }

    const auto corner = GeodeticOfPlane(9, {999999, -999999}).value();
    const auto plane = PlaneOfGeodetic(9, corner).value();
    EXPECT_NEAR(plane.position.xM, 999999, 1e-7);
    EXPECT_NEAR(plane.position.yM, -999999, 1e-7);
}

} // namespace
} // namespace fieldcore
