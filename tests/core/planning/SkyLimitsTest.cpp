#include "core/planning/SkyLimits.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <string_view>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr double kPi = std::numbers::pi;

double Rad(double degrees)
{
    return degrees * kPi / 180.0;
}

EastNorthUp At(double azimuthRad, double elevationRad)
{
    constexpr double kRange = 2.2e7;
    return {kRange * std::cos(elevationRad) * std::sin(azimuthRad),
            kRange * std::cos(elevationRad) * std::cos(azimuthRad),
            kRange * std::sin(elevationRad)};
}

TEST(SkyLimits, PassesWhatStandsOnALimitAndNothingBelow)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    ObstructionCurtain house{};
    house[0] = 10;
    house[90] = 30;
    house[200] = 91; // what nothing passes
    house[359] = 20;
    const std::tuple<std::string_view, double, double, double, bool> rows[] = {
        {"on the horizon", 0.0, Rad(45), 0.0, true},
        {"below the horizon", 0.0, Rad(45), -1e-15, false},
        {"below the horizon, mask lower still", -1.0, Rad(45), -1e-15, false},
        {"on the mask", Rad(15), Rad(45), Rad(15), true},
        {"below the mask", Rad(15), Rad(45), Rad(15) - 1e-15, false},
        {"mask is no number", kNan, Rad(45), Rad(80), false},
        {"on the curtain", 0.0, Rad(90.5), Rad(30), true},
        {"below the curtain", 0.0, Rad(90.5), Rad(30) - 1e-15, false},
        {"above the mask, below the curtain", Rad(15), Rad(90.5), Rad(20), false},
        {"above the curtain, below the mask", Rad(40), Rad(90.5), Rad(35), false},
        {"first degree of an entry", 0.0, Rad(90.0000001), Rad(20), false},
        {"past an entry", 0.0, Rad(91.0000001), Rad(20), true},
        {"before an entry", 0.0, Rad(89.9999999), Rad(20), true},
        {"west of north, as atan2 has it", 0.0, Rad(-0.5), Rad(15), false},
        {"last entry", 0.0, Rad(359.5), Rad(15), false},
        {"a whole turn is north", 0.0, 2.0 * kPi, Rad(5), false},
        {"a whole turn is not the last entry", 0.0, 2.0 * kPi, Rad(15), true},
        {"at the zenith", 0.0, Rad(45), Rad(90), true},
        {"mask above the zenith", Rad(90.1), Rad(45), Rad(90), false},
        {"curtain above the zenith", 0.0, Rad(200.5), Rad(90), false},
        {"azimuth is no number", 0.0, kNan, Rad(50), false},
    };
    for (const auto& [what, maskRad, azimuthRad, elevationRad, passes] : rows) {
        SCOPED_TRACE(what);
        const SkyLimits limits(maskRad, house);
        EXPECT_EQ(limits.Pass({azimuthRad, elevationRad}), passes);
        const auto verdict = limits.Judge(At(azimuthRad, elevationRad));
        if (verdict != SkyLimits::Verdict::TooClose) {
            EXPECT_EQ(verdict == SkyLimits::Verdict::Visible, passes);
        }
    }
}

TEST(SkyLimits, LeavesWhatRoundingDecidesToTheRule)
{
    ObstructionCurtain house{};
    house[90] = 30;
    using enum SkyLimits::Verdict;
    const std::tuple<std::string_view, double, double, SkyLimits::Verdict> rows[] = {
        {"at the mask", 45.5, 15.0, TooClose},
        {"at the curtain", 90.5, 30.0, TooClose},
        {"between curtain and open sky", 91.0, 20.0, TooClose},
        {"clear of the curtain's side", 91.1, 20.0, Visible},
        {"behind the curtain", 90.9, 20.0, Hidden},
        {"above all limits an azimuth does not matter", 91.0, 40.0, Visible},
        {"below all limits an azimuth does not matter", 91.0, 10.0, Hidden},
    };
    const SkyLimits limits(Rad(15), house);
    for (const auto& [what, azimuthDeg, elevationDeg, verdict] : rows) {
        SCOPED_TRACE(what);
        const EastNorthUp enu = At(Rad(azimuthDeg), Rad(elevationDeg));
        EXPECT_EQ(limits.Judge(enu), verdict);
    }
}

TEST(NormalisedAzimuth, BringsEveryAngleIntoOneTurn)
{
    EXPECT_EQ(NormalisedAzimuth(2.0 * kPi), 2.0 * kPi) << "exactly one turn stays";
    EXPECT_EQ(NormalisedAzimuth(0.0), 0.0);
    EXPECT_NEAR(NormalisedAzimuth(-kPi / 2.0), 1.5 * kPi, 1e-15);
    EXPECT_NEAR(NormalisedAzimuth(7.0 * kPi), kPi, 1e-14);
    EXPECT_TRUE(std::isinf(NormalisedAzimuth(std::numeric_limits<double>::infinity())));
}

} // namespace
} // namespace fieldcore
