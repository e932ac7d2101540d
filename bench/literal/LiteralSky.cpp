#include "bench/literal/LiteralSky.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace fieldcore::bench {

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;
constexpr double kHalfPi = std::numbers::pi / 2.0;

using Matrix = std::array<std::array<double, 4>, 4>; // rows, then columns

Matrix operator*(const Matrix& left, const Matrix& right)
{
    Matrix product{};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            for (std::size_t k = 0; k < 4; ++k) {
                product[row][column] += left[row][k] * right[k][column];
            }
        }
    }
    return product;
}

// Rotations of the frame, not of the point.

Matrix RotationZ(double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {{{c, s, 0.0, 0.0}, {-s, c, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, 1.0}}};
}

Matrix RotationY(double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {{{c, 0.0, -s, 0.0}, {0.0, 1.0, 0.0, 0.0}, {s, 0.0, c, 0.0}, {0.0, 0.0, 0.0, 1.0}}};
}

Matrix TranslationBack(const Ecef& p)
{
    return {{{1.0, 0.0, 0.0, -p.x},
             {0.0, 1.0, 0.0, -p.y},
             {0.0, 0.0, 1.0, -p.z},
             {0.0, 0.0, 0.0, 1.0}}};
}

} // namespace

std::optional<Ecef> LiteralPosition(const KeplerElements& elements, GpsEpoch epoch) noexcept
{
    const double e = elements.eccentricity;
    if (!(e >= 0.0 && e < 1.0)) {
        return std::nullopt;
    }
    const double a = elements.a;
    const double tk =
        AlmanacOrbit::CountOf(epoch) - AlmanacOrbit::CountOf({elements.week, elements.toaS});
    const double n = std::sqrt(kGm / (a * a * a)); // mean motion, rad/s
    const double m = elements.m0 + n * tk;
    const std::optional<double> anomaly = EccentricAnomaly(m, e);
    if (!anomaly) {
        return std::nullopt;
    }
    const double reduced = std::fmod(*anomaly, kTwoPi);
    double nu = std::atan2(std::sqrt(1.0 - e * e) * std::sin(reduced), std::cos(reduced) - e);
    if (nu < 0.0) {
        nu += kTwoPi;
    }
    const double u = std::fmod(nu + elements.omega, kTwoPi);
    const double r = a * (1.0 - e * std::cos(reduced));
    const double i = std::fmod(elements.i0, kTwoPi);
    const double x = r * std::cos(u);
    const double y = r * std::sin(u);
    // The node drifts with the orbit and the earth turns under it since the week's start, hence
    // both tk and toa.
    const double node = std::fmod(elements.omega0 + (elements.omegaDot - kEarthRate) * tk -
                                      kEarthRate * elements.toaS,
                                  kTwoPi);
    const Ecef position{x * std::cos(node) - y * std::cos(i) * std::sin(node),
                        x * std::sin(node) + y * std::cos(i) * std::cos(node), y * std::sin(i)};
    if (!std::isfinite(position.x + position.y + position.z)) {
        return std::nullopt;
    }
    return position;
}

std::optional<SkyDirection> LiteralDirection(const Observer& observer,
                                             const Ecef& satellite) noexcept
{
    const Matrix m = RotationZ(kHalfPi) * RotationY(kHalfPi - observer.latitudeRad) *
                     RotationZ(observer.longitudeRad) * TranslationBack(ToEcef(observer));
    const std::array<double, 4> point{satellite.x, satellite.y, satellite.z, 1.0};
    std::array<double, 3> local{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t k = 0; k < 4; ++k) {
            local[row] += m[row][k] * point[k];
        }
    }
    const EastNorthUp enu{local[0], local[1], local[2]};
    const double range = enu.Range();
    if (range == 0.0) {
        return std::nullopt;
    }
    return enu.ToDirection(range);
}

} // namespace fieldcore::bench
