#include "core/planning/Dop.h"

#include "core/planning/PlanLanes.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace fieldcore {

namespace {

using Normal = std::array<std::array<double, 4>, 4>; // rows, then columns; symmetric

/// Of the 3 x 3 minor without @p row and @p column, by the rule of Sarrus.
double Minor(const Normal& n, std::size_t row, std::size_t column)
{
    std::array<std::array<double, 3>, 3> m{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            m[i][j] = n[i < row ? i : i + 1][j < column ? j : j + 1];
        }
    }
    return m[0][0] * m[1][1] * m[2][2] + m[0][1] * m[1][2] * m[2][0] + m[0][2] * m[1][0] * m[2][1] -
           m[0][2] * m[1][1] * m[2][0] - m[0][1] * m[1][0] * m[2][2] - m[0][0] * m[1][2] * m[2][1];
}

double Cofactor(const Normal& n, std::size_t row, std::size_t column)
{
    return std::pow(-1.0, static_cast<double>(row + column)) * Minor(n, row, column);
}

Normal InverseOf(const Normal& n)
{
    double determinant = 0.0;
    for (std::size_t column = 0; column < 4; ++column) {
        determinant += n[0][column] * Cofactor(n, 0, column);
    }
    Normal inverse{};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            inverse[column][row] = Cofactor(n, row, column) / determinant;
        }
    }
    return inverse;
}

} // namespace

DopValues ReferenceDop(const Ecef& observer, std::span<const Ecef> satellites) noexcept
{
    Normal normal{};
    for (const Ecef& satellite : satellites) {
        const double dx = satellite.x - observer.x;
        const double dy = satellite.y - observer.y;
        const double dz = satellite.z - observer.z;
        const double range = std::sqrt(dx * dx + dy * dy + dz * dz);
        const std::array<double, 4> row{-dx / range, -dy / range, -dz / range, -1.0};
        for (std::size_t i = 0; i < 4; ++i) {
            for (std::size_t j = 0; j < 4; ++j) {
                normal[i][j] += row[i] * row[j];
            }
        }
    }
    const Normal q = InverseOf(normal);
    return {std::sqrt(q[0][0] + q[1][1] + q[2][2]),
            std::sqrt(q[0][0] + q[1][1] + q[2][2] + q[3][3]), std::sqrt(q[3][3])};
}

void DopSums::Add(double dx, double dy, double dz) noexcept
{
    n += 1.0;
    x += dx;
    y += dy;
    z += dz;
    xx += dx * dx;
    xy += dx * dy;
    xz += dx * dz;
    yy += dy * dy;
    yz += dy * dz;
    zz += dz * dz;
}

std::optional<DopValues> DopSums::Solve() const noexcept
{
    const DopVariances q = ComputeVariances(*this);
    if (!q.isStrong) {
        return std::nullopt;
    }
    const double position = q.horizontal + q.vertical;
    return DopValues{std::sqrt(position), std::sqrt(position + q.time), std::sqrt(q.time)};
}

std::optional<LocalDop> DopSums::SolveLocal() const noexcept
{
    const DopVariances q = ComputeVariances(*this);
    if (!q.isStrong) {
        return std::nullopt;
    }
    return LocalDop{std::sqrt(q.horizontal + q.vertical), std::sqrt(q.horizontal),
                    std::sqrt(q.vertical)};
}

} // namespace fieldcore
