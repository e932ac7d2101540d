#include "core/planning/PlaneRectangular.h"

#include <cmath>
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

/// Transverse Mercator another way: the series in powers of the longitude difference, after
/// Redfearn 1948, with the meridian's arc by numerical integration. Good to 1e-5 m within 1.5
/// degrees of the meridian.
class Redfearn
{
public:
    explicit Redfearn(Ellipsoid ellipsoid) : m_a(ShapeOf(ellipsoid).semiMajorAxisM)
    {
        const double f = ShapeOf(ellipsoid).flattening;
        m_e2 = f * (2 - f);
    }

    /// Radius of curvature along the meridian.
    double MeridianRadius(double latitude) const
    {
        const double s = std::sin(latitude);
        return m_a * (1 - m_e2) / std::pow(1 - m_e2 * s * s, 1.5);
    }

    /// From the equator, by Simpson's rule: the integrand is so smooth that 200 steps are plenty.
    double Arc(double latitude) const
    {
        constexpr int kSteps = 200;
        const double step = latitude / kSteps;
        double sum = MeridianRadius(0) + MeridianRadius(latitude);
        for (int i = 1; i < kSteps; ++i) {
            sum += (i % 2 == 0 ? 2 : 4) * MeridianRadius(i * step);
        }
        return sum * step / 3;
    }

    PlanePosition Project(const GeodeticPosition& place, const GeodeticPosition& origin) const
    {
        const double s = std::sin(place.latitudeRad);
        const double c = std::cos(place.latitudeRad);
        const double t2 = s * s / (c * c);
        const double t4 = t2 * t2;
        const double n2 = m_e2 / (1 - m_e2) * c * c; // eta squared
        const double n = m_a / std::sqrt(1 - m_e2 * s * s);
        const double l = place.longitudeRad - origin.longitudeRad;
        const double p = l * l * c * c;
        const double x1 = 5 - t2 + 9 * n2 + 4 * n2 * n2;
        const double x2 = 61 - 58 * t2 + t4 + 270 * n2 - 330 * t2 * n2;
        const double x3 = 1385 - 3111 * t2 + 543 * t4 - t4 * t2;
        const double y1 = 1 - t2 + n2;
        const double y2 = 5 - 18 * t2 + t4 + 14 * n2 - 58 * t2 * n2;
        const double y3 = 61 - 479 * t2 + 179 * t4 - t4 * t2;
        const double x = Arc(place.latitudeRad) - Arc(origin.latitudeRad) +
                         n * s * c * l * l / 2 * (1 + p / 12 * (x1 + p / 30 * (x2 + p / 56 * x3)));
        const double y = n * c * l * (1 + p / 6 * (y1 + p / 20 * (y2 + p / 42 * y3)));
        return {0.9999 * x, 0.9999 * y};
    }

private:
    double m_a;
    double m_e2;
};

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
        const auto plane = PlaneOfGeodetic(zone, Place(latitude, longitude + minutes / 60.0));
        ASSERT_TRUE(plane);
        EXPECT_NEAR(plane->position.xM, 0.0, 1e-8);
        EXPECT_NEAR(plane->position.yM, 0.0, 1e-8);
        EXPECT_NEAR(plane->convergenceRad, 0.0, 1e-15);
        EXPECT_NEAR(plane->scaleFactor, 0.9999, 1e-15);
    }
}

TEST(PlaneRectangular, AgreesWithAnotherSeries)
{
    for (const Ellipsoid ellipsoid : {Ellipsoid::Grs80, Ellipsoid::Bessel1841}) {
        const Redfearn series(ellipsoid);
        for (const int zone : {2, 9, 13, 18}) {
            const GeodeticPosition origin = *PlaneOrigin(zone);
            for (const double northDeg : {-3.0, -0.7, 0.0, 1.9}) {
                for (const double eastDeg : {-1.5, -0.4, 0.0, 0.01, 1.2}) {
                    SCOPED_TRACE(testing::Message() << zone << ' ' << northDeg << ' ' << eastDeg);
                    const GeodeticPosition place{origin.latitudeRad + RadiansOf(northDeg),
                                                 origin.longitudeRad + RadiansOf(eastDeg), 55.0};
                    const auto plane = PlaneOfGeodetic(zone, place, ellipsoid);
                    ASSERT_TRUE(plane);
                    const PlanePosition expected = series.Project(place, origin);
                    EXPECT_NEAR(plane->position.xM, expected.xM, 1e-5);
                    EXPECT_NEAR(plane->position.yM, expected.yM, 1e-5);

                    // A step to the north, on the plane and on the ellipsoid, tells convergence
                    // and scale. 6 m long and true to 1e-8 m: 2e-9.
                    constexpr double kStep = 1e-6;
                    GeodeticPosition north = place;
                    north.latitudeRad += kStep / 2;
                    GeodeticPosition south = place;
                    south.latitudeRad -= kStep / 2;
                    const PlanePosition to = PlaneOfGeodetic(zone, north, ellipsoid)->position;
                    const PlanePosition from = PlaneOfGeodetic(zone, south, ellipsoid)->position;
                    const double dx = to.xM - from.xM;
                    const double dy = to.yM - from.yM;
                    EXPECT_NEAR(plane->convergenceRad, -std::atan2(dy, dx), 5e-9);
                    EXPECT_NEAR(plane->scaleFactor,
                                std::hypot(dx, dy) /
                                    (kStep * series.MeridianRadius(place.latitudeRad)),
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
    EXPECT_FALSE(GeodeticOfPlane(0, {0, 0}));
    EXPECT_FALSE(GeodeticOfPlane(20, {0, 0}));
    EXPECT_FALSE(GeodeticOfPlane(9, {kNotANumber, 0}));
    EXPECT_FALSE(GeodeticOfPlane(9, {0, kNotANumber}));
    EXPECT_FALSE(GeodeticOfPlane(9, {1000001, 0}));
    EXPECT_FALSE(GeodeticOfPlane(9, {0, -kInfinity}));
    EXPECT_FALSE(PlaneOrigin(0));
    EXPECT_FALSE(PlaneOrigin(20));

    const auto corner = GeodeticOfPlane(9, {999999, -999999});
    ASSERT_TRUE(corner);
    const auto plane = PlaneOfGeodetic(9, *corner);
    ASSERT_TRUE(plane);
    EXPECT_NEAR(plane->position.xM, 999999, 1e-7);
    EXPECT_NEAR(plane->position.yM, -999999, 1e-7);
}

} // namespace
} // namespace fieldcore
