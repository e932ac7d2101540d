#include "core/planning/LocalFrame.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace fieldcore {

namespace {

/// GRS80: semi-major axis, m, and flattening.
constexpr double kSemiMajor = 6378137.0;
constexpr double kFlattening = 1.0 / 298.257222101;
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

Ecef ToEcef(const Observer& observer) noexcept
{
    const double e2 = 2.0 * kFlattening - kFlattening * kFlattening;
    const double sinLat = std::sin(observer.latitudeRad);
    const double cosLat = std::cos(observer.latitudeRad);
    const double n = kSemiMajor / std::sqrt(1.0 - e2 * sinLat * sinLat);
    const double h = observer.heightM;
    return {(n + h) * cosLat * std::cos(observer.longitudeRad),
            (n + h) * cosLat * std::sin(observer.longitudeRad), (n * (1.0 - e2) + h) * sinLat};
}

std::optional<SkyDirection> ReferenceDirection(const Observer& observer,
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

LocalFrame::LocalFrame(const Observer& observer) noexcept
    : m_observer(observer), m_origin(ToEcef(observer))
{
    const double sinLat = std::sin(observer.latitudeRad);
    const double cosLat = std::cos(observer.latitudeRad);
    const double sinLon = std::sin(observer.longitudeRad);
    const double cosLon = std::cos(observer.longitudeRad);
    m_east = {-sinLon, cosLon, 0.0};
    m_north = {-sinLat * cosLon, -sinLat * sinLon, cosLat};
    m_up = {cosLat * cosLon, cosLat * sinLon, sinLat};
}

} // namespace fieldcore
