#include "core/orbits/StateVector.h"

#include "core/platform/Calendar.h"

#include <cmath>
#include <initializer_list>
#include <utility>

namespace fieldcore {

namespace {

// PZ-90.11, as the ICD has it.
constexpr double kGmPz90 = 3.986004418e14;    // m^3/s^2
constexpr double kRadiusPz90 = 6378136.0;     // m, of the equator
constexpr double kOblateness = 1.08262575e-3; // J2
constexpr double kRatePz90 = 7.292115e-5;     // rad/s

/// Three times as fine changes where a satellite is by 6 m after a day, and by 125 m after a week,
/// in which the state itself goes astray by ten kilometres.
constexpr double kStepS = 180.0;
constexpr double kSunAndMoonS = 1800.0;
constexpr double kMostS = 366.0 * kDayS;

Ecef Moved(const Ecef& from, const Ecef& slope, double seconds)
{
    return {from.x + slope.x * seconds, from.y + slope.y * seconds, from.z + slope.z * seconds};
}

} // namespace

GlonassMotion::GlonassMotion(const StateVector& state) noexcept
    : m_state(state), m_nearest{0.0, {state.position, state.velocity}}, m_last(m_nearest)
{}

GlonassMotion::Point GlonassMotion::Slope(const Point& point, double share) const noexcept
{
    const auto& [x, y, z] = point.position;
    const auto& [vx, vy, vz] = point.velocity;
    const double r2 = x * x + y * y + z * z;
    const double central = kGmPz90 / (r2 * std::sqrt(r2));
    const double oblate = 1.5 * kOblateness * central * kRadiusPz90 * kRadiusPz90 / r2;
    const double tilt = 5.0 * z * z / r2;
    const double level = -central - oblate * (1.0 - tilt) + kRatePz90 * kRatePz90;
    const double upright = -central - oblate * (3.0 - tilt);
    return {point.velocity,
            {level * x + 2.0 * kRatePz90 * vy + share * m_state.acceleration.x,
             level * y - 2.0 * kRatePz90 * vx + share * m_state.acceleration.y,
             upright * z + share * m_state.acceleration.z}};
}

void GlonassMotion::Step(Mark& mark, double seconds) const noexcept
{
    const double share = std::abs(mark.sinceS) < kSunAndMoonS ? 1.0 : 0.0;
    const auto moved = [&mark](const Point& slope, double by) {
        return Point{Moved(mark.point.position, slope.position, by),
                     Moved(mark.point.velocity, slope.velocity, by)};
    };
    const Point k1 = Slope(mark.point, share);
    const Point k2 = Slope(moved(k1, seconds / 2.0), share);
    const Point k3 = Slope(moved(k2, seconds / 2.0), share);
    const Point k4 = Slope(moved(k3, seconds), share);
    for (const auto& [slope, weight] : {std::pair(k1, 1.0), {k2, 2.0}, {k3, 2.0}, {k4, 1.0}}) {
        mark.point = moved(slope, seconds * weight / 6.0);
    }
    mark.sinceS += seconds;
}

std::optional<Ecef> GlonassMotion::At(double gpsS) noexcept
{
    const double targetS = gpsS - m_state.referenceS;
    if (!(std::abs(targetS) <= kMostS)) {
        return std::nullopt;
    }
    // Always away from the state, in whole steps: a time's position does not depend on those that
    // were asked for before it. The rest of the way is not kept.
    const auto isOnTheWay = [targetS](const Mark& mark) {
        return std::abs(targetS) >= std::abs(mark.sinceS) && targetS * mark.sinceS >= 0.0;
    };
    const bool isNearest = !isOnTheWay(m_nearest) || m_nearest.sinceS == 0.0;
    if (!isOnTheWay(m_last)) {
        m_last =
            isOnTheWay(m_nearest) ? m_nearest : Mark{0.0, {m_state.position, m_state.velocity}};
    }
    const double step = std::copysign(kStepS, targetS);
    while (std::abs(targetS - m_last.sinceS) >= kStepS) {
        Step(m_last, step);
    }
    if (isNearest) {
        m_nearest = m_last;
    }
    Mark rest = m_last;
    Step(rest, targetS - rest.sinceS);
    const Ecef& position = rest.point.position;
    if (!std::isfinite(position.x + position.y + position.z)) {
        return std::nullopt;
    }
    return position;
}

} // namespace fieldcore
