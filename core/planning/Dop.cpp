#include "core/planning/Dop.h"

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

void DopSums::Add(double x, double y, double z) noexcept
{
    m_n += 1.0;
    m_x += x;
    m_y += y;
    m_z += z;
    m_xx += x * x;
    m_xy += x * y;
    m_xz += x * z;
    m_yy += y * y;
    m_yz += y * z;
    m_zz += z * z;
}

/// Of the directions' scatter: its adjugate and its determinant.
struct DopSums::Inverse
{
    double aa, bb, cc, dd, ee, ff;
    double determinant;
    bool isWeak;
};

DopSums::Inverse DopSums::Invert() const noexcept
{
    // The clock eliminated: what the directions scatter about their mean.
    const double a = m_xx - m_x * m_x / m_n;
    const double b = m_xy - m_x * m_y / m_n;
    const double c = m_xz - m_x * m_z / m_n;
    const double d = m_yy - m_y * m_y / m_n;
    const double e = m_yz - m_y * m_z / m_n;
    const double f = m_zz - m_z * m_z / m_n;
    // Its adjugate.
    const double aa = d * f - e * e;
    const double bb = c * e - b * f;
    const double cc = b * e - c * d;
    const double dd = a * f - c * c;
    const double ee = b * c - a * e;
    const double ff = a * d - b * b;
    const double determinant = a * aa + b * bb + c * cc;
    constexpr double kWeak = 1.0e-3; // of the product of the diagonal
    // Written so that what is not a number is weak, too.
    const bool isWeak = !(determinant > kWeak * m_xx * m_yy * m_zz);
    return {aa, bb, cc, dd, ee, ff, determinant, isWeak};
}

std::optional<DopValues> DopSums::Solve() const noexcept
{
    const Inverse i = Invert();
    if (i.isWeak) {
        return std::nullopt;
    }
    const double position = (i.aa + i.dd + i.ff) / i.determinant;
    const double quadratic = i.aa * m_x * m_x + i.dd * m_y * m_y + i.ff * m_z * m_z +
                             2.0 * (i.bb * m_x * m_y + i.cc * m_x * m_z + i.ee * m_y * m_z);
    const double time = 1.0 / m_n + quadratic / (i.determinant * m_n * m_n);
    return DopValues{std::sqrt(position), std::sqrt(position + time), std::sqrt(time)};
}

std::optional<LocalDop> DopSums::SolveLocal() const noexcept
{
    const Inverse i = Invert();
    if (i.isWeak) {
        return std::nullopt;
    }
    const double horizontal = (i.aa + i.dd) / i.determinant;
    const double vertical = i.ff / i.determinant;
    return LocalDop{std::sqrt(horizontal + vertical), std::sqrt(horizontal), std::sqrt(vertical)};
}

} // namespace fieldcore
