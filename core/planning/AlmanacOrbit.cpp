#include "core/planning/AlmanacOrbit.h"

#include "core/planning/PlanLanes.h"
#include "core/platform/Calendar.h"

#include <cmath>
#include <numbers>

namespace fieldcore {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTwoPi = 2.0 * kPi;
constexpr int kWeekCycle = 1024;

/// Up to here the difference of eccentric and mean anomaly goes through short series.
constexpr double kNearlyCircular = 0.05;
/// Beyond it, more than two years from toa, rounding of the mean anomaly itself grows visible, and
/// only the same steps give the same position.
constexpr double kFarTurns = 1600.0;

bool IsOrbit(const KeplerElements& k)
{
    // One sum is finite only if all of its terms are.
    return k.eccentricity >= 0.0 && k.eccentricity < 1.0 &&
           std::isfinite(k.a + k.i0 + k.omegaDot + k.omega0 + k.omega + k.m0);
}

/// Seconds since the cycle of 10-bit weeks began, with one cycle taken off.
double CycleCount(int week, double sowS)
{
    return (week > kWeekCycle - 1 ? week - kWeekCycle : week) * kWeekS + sowS;
}

} // namespace

KeplerElements::KeplerElements(const AlmanacRecord& record) noexcept
    : a(record.sqrtA * record.sqrtA), eccentricity(record.eccentricity),
      i0(record.inclination * kPi), omegaDot(record.omegaDot * kPi), omega0(record.omega0 * kPi),
      omega(record.omega * kPi), m0(record.m0 * kPi), week(record.week), toaS(record.toaS)
{}

KeplerOrbit OrbitOf(const KeplerElements& elements) noexcept
{
    KeplerOrbit orbit;
    orbit.toeS = elements.toaS;
    orbit.referenceS = CycleCount(elements.week, elements.toaS);
    orbit.a = elements.a;
    orbit.eccentricity = elements.eccentricity;
    orbit.i0 = elements.i0;
    orbit.omega0 = elements.omega0;
    orbit.omega = elements.omega;
    orbit.m0 = elements.m0;
    orbit.omegaDot = elements.omegaDot;
    return orbit;
}

AlmanacOrbit::AlmanacOrbit(const AlmanacRecord& record) noexcept : m_elements(record)
{
    const KeplerElements& k = m_elements;
    if (!IsOrbit(k)) {
        return;
    }
    m_nearlyCircular = k.eccentricity <= kNearlyCircular;
    const double b = k.a * std::sqrt(1.0 - k.eccentricity * k.eccentricity);
    const double cosI = std::cos(k.i0);
    const double sinI = std::sin(k.i0);
    const double cosW = std::cos(k.omega);
    const double sinW = std::sin(k.omega);
    m_constants = {k.eccentricity,
                   CycleCount(k.week, k.toaS),
                   k.m0 / kTwoPi,
                   std::sqrt(kGm / (k.a * k.a * k.a)) / kTwoPi,
                   (k.omega0 - kEarthRate * k.toaS) / kTwoPi,
                   (k.omegaDot - kEarthRate) / kTwoPi,
                   {k.a * cosW, k.a * sinW * cosI, k.a * sinW * sinI},
                   {-b * sinW, b * cosW * cosI, b * cosW * sinI}};
}

double AlmanacOrbit::CountOf(GpsEpoch epoch) noexcept
{
    return CycleCount(epoch.week, epoch.sowS);
}

bool AlmanacOrbit::IsFast(double countS) const noexcept
{
    const OrbitConstants& c = m_constants;
    return m_nearlyCircular &&
           std::abs(c.meanTurns + c.meanTurnsRate * (countS - c.toaCountS)) < kFarTurns;
}

std::optional<Ecef> AlmanacOrbit::Position(GpsEpoch epoch) const noexcept
{
    const double countS = CountOf(epoch);
    return IsFast(countS) ? ComputePosition(m_constants, countS)
                          : PositionOf(OrbitOf(m_elements), countS);
}

} // namespace fieldcore
