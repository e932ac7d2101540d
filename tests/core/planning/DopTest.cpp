#include "core/planning/Dop.h"

#include <cmath>
#include <numbers>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr double kPi = std::numbers::pi;

/// A unit vector of the local frame.
Ecef Toward(double azimuthDeg, double elevationDeg)
{
    const double a = azimuthDeg * kPi / 180.0;
    const double e = elevationDeg * kPi / 180.0;
    return {std::cos(e) * std::sin(a), std::cos(e) * std::cos(a), std::sin(e)};
}

TEST(Dop, AgreesWithClosedForms)
{
    // The elevation in degrees and the number of satellites, evenly around.
    using Ring = std::pair<double, int>;
    // By hand: rings and a zenith make the normal matrix diagonal but for up and clock.
    // With the squares of HDOP, VDOP and TDOP.
    const std::tuple<std::string_view, std::vector<Ring>, double, double, double> rows[] = {
        {"zenith and three on the horizon", {{90, 1}, {0, 3}}, 4.0 / 3.0, 4.0 / 3.0, 1.0 / 3.0},
        {"zenith and four at 30 degrees", {{90, 1}, {30, 4}}, 4.0 / 3.0, 5.0, 2.0},
        {"rings of three at 0 and 30", {{0, 3}, {30, 3}}, 2.0 / 2.625, 8.0 / 3.0, 1.0 / 3.0},
    };
    for (const auto& [geometry, rings, hdop2, vdop2, tdop2] : rows) {
        SCOPED_TRACE(geometry);
        DopSums sums;
        std::vector<Ecef> satellites;
        const Ecef observer{-3.9e6, 3.3e6, 3.7e6};
        double range = 2.0e7;
        for (const auto& [elevationDeg, count] : rings) {
            for (int i = 0; i < count; ++i) {
                const Ecef d = Toward(360.0 * i / count, elevationDeg);
                sums.Add(d.x, d.y, d.z);
                satellites.push_back(
                    {observer.x + range * d.x, observer.y + range * d.y, observer.z + range * d.z});
                range += 1.0e6; // distances must not matter
            }
        }
        const DopValues tight = sums.Solve().value();
        const LocalDop local = sums.SolveLocal().value();
        const double pdop2 = hdop2 + vdop2;
        EXPECT_NEAR(local.hdop, std::sqrt(hdop2), 1e-9);
        EXPECT_NEAR(local.vdop, std::sqrt(vdop2), 1e-9);
        EXPECT_NEAR(local.pdop, std::sqrt(pdop2), 1e-9);
        for (const DopValues& dop : {tight, ReferenceDop(observer, satellites)}) {
            // 1e-9: positions of 1e7 m carry 1e-9 m.
            EXPECT_NEAR(dop.pdop, std::sqrt(pdop2), 1e-9);
            EXPECT_NEAR(dop.tdop, std::sqrt(tdop2), 1e-9);
            EXPECT_NEAR(dop.gdop, std::sqrt(pdop2 + tdop2), 1e-9);
        }
    }
}

TEST(Dop, LeavesWeakGeometryToTheReference)
{
    // On one cone about the vertical, height and clock cannot be told apart.
    DopSums sums;
    for (const double azimuth : {0.0, 80.0, 200.0, 290.0}) {
        const Ecef d = Toward(azimuth, 40.0);
        sums.Add(d.x, d.y, d.z);
    }
    EXPECT_FALSE(sums.Solve());
    EXPECT_FALSE(sums.SolveLocal());
}

} // namespace
} // namespace fieldcore
