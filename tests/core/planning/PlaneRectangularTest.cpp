#include "core/planning/PlaneRectangular.h"

#include <cmath>
#include <initializer_list>
#include <limits>

#include <gtest/gtest.h>

#include "core/planning/Degrees.h"

namespace fieldcore {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

GeodeticPosition Place(double latitudeDeg, double longitudeDeg)
{
    return {RadiansOf(latitudeDeg), RadiansOf(longitudeDeg), 0.0};
}

// The example of the calculation page of Japan's Geospatial Information Authority.
TEST(PlaneRectangular, AgreesWithThePublishedExample)
{
    const GeodeticPosition place =
        Place(36 + 6 / 60.0 + 13.58925 / 3600, 140 + 5 / 60.0 + 16.27815 / 3600);
    const auto plane = PlaneOfGeodetic(9, place);
    ASSERT_TRUE(plane);
    EXPECT_NEAR(plane->position.xM, 11543.6883, 5e-5) << "half of the last digit given";
    EXPECT_NEAR(plane->position.yM, 22916.2436, 5e-5);

    const auto back = GeodeticOfPlane(9, {11543.6883, 22916.2436});
    ASSERT_TRUE(back);
    EXPECT_NEAR(back->latitudeRad, place.latitudeRad, 1e-11) << "5e-5 m";
    EXPECT_NEAR(back->longitudeRad, place.longitudeRad, 1e-11);
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
            const auto plane = PlaneOfGeodetic(zone, origin, ellipsoid);
            ASSERT_TRUE(plane);
            EXPECT_NEAR(plane->position.xM, 0.0, 1e-8);
            EXPECT_NEAR(plane->position.yM, 0.0, 1e-8);
            EXPECT_NEAR(plane->convergenceRad, 0.0, 1e-15);
            EXPECT_NEAR(plane->scaleFactor, 0.9999, 1e-15);
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
                    const auto plane = PlaneOfGeodetic(zone, place, ellipsoid);
                    ASSERT_TRUE(plane);

                    // 6 m long and true to 1e-8 m: 2e-9.
                    constexpr double kStep = 1e-6;
                    const GeodeticPosition north{place.latitudeRad + kStep / 2, place.longitudeRad};
                    const GeodeticPosition south{place.latitudeRad - kStep / 2, place.longitudeRad};
                    const PlanePosition to = PlaneOfGeodetic(zone, north, ellipsoid)->position;
                    const PlanePosition from = PlaneOfGeodetic(zone, south, ellipsoid)->position;
                    const double dx = to.xM - from.xM;
                    const double dy = to.yM - from.yM;
                    EXPECT_NEAR(plane->convergenceRad, -std::atan2(dy, dx), 5e-9);
                    const Ecef a = *EcefOfGeodetic(south, ellipsoid);
                    const Ecef b = *EcefOfGeodetic(north, ellipsoid);
                    EXPECT_NEAR(plane->scaleFactor,
                                std::hypot(dx, dy) / std::hypot(b.x - a.x, b.y - a.y, b.z - a.z),
                                5e-9);

                    const auto back = GeodeticOfPlane(zone, plane->position, ellipsoid);
                    ASSERT_TRUE(back);
                    EXPECT_NEAR(back->latitudeRad, place.latitudeRad, 1e-14);
                    EXPECT_NEAR(back->longitudeRad, place.longitudeRad, 1e-14);
                    EXPECT_EQ(back->heightM, 0.0);
                }
            }
        }
    }
}

TEST(PlaneRectangular, GivesNothingOutOfReach)
{
    struct Row
    {
        const char* fault;
        int zone;
        GeodeticPosition place;
    };
    const Row rows[] = {
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
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_FALSE(PlaneOfGeodetic(row.zone, row.place));
    }
    for (const PlanePosition& none : {PlanePosition{kNotANumber, 0}, PlanePosition{0, kNotANumber},
                                      PlanePosition{1000001, 0}, PlanePosition{0, -kInfinity}}) {
        EXPECT_FALSE(GeodeticOfPlane(9, none)) << none.xM << ' ' << none.yM;
    }
    for (const int zone : {0, 20}) {
        EXPECT_FALSE(GeodeticOfPlane(zone, {0, 0}));
        EXPECT_FALSE(PlaneOrigin(zone));
    }

    const auto corner = GeodeticOfPlane(9, {999999, -999999});
    ASSERT_TRUE(corner);
    const auto plane = PlaneOfGeodetic(9, *corner);
    ASSERT_TRUE(plane);
    EXPECT_NEAR(plane->position.xM, 999999, 1e-7);
    EXPECT_NEAR(plane->position.yM, -999999, 1e-7);
}

} // namespace
} // namespace fieldcore
