#include "core/planning/TokyoDatum.h"

#include <gtest/gtest.h>

#include "core/planning/Degrees.h"

namespace fieldcore {
namespace {

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

    const auto back = TokyoOfJgd2000({kNewOrigin.latitudeRad, kNewOrigin.longitudeRad, 37.0});
    ASSERT_TRUE(back);
    EXPECT_NEAR(back->latitudeRad, kOldOrigin.latitudeRad, kFitRad);
    EXPECT_NEAR(back->longitudeRad, kOldOrigin.longitudeRad, kFitRad);
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
