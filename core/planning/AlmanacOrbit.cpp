#include "core/planning/AlmanacOrbit.h"

#include <cmath>
#include <numbers>

namespace fieldcore {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTwoPi = 2.0 * kPi;
constexpr double kWeekS = 7 * 86400.0;
constexpr int kWeekCycle = 1024;

/// Up to here the difference of eccentric and mean anomaly goes through short series.
constexpr double kNearlyCircular = 0.05;
/// Beyond it, more than two years from toa, rounding of the mean anomaly itself grows visible, and
/// only the same steps give the same position.
constexpr double kFarMeanAnomaly = 1.0e4;

bool IsOrbit(const KeplerElements& k)
{
    // One sum is finite only if all of its terms are.
    return k.eccentricity >= 0.0 && k.eccentricity < 1.0 &&
           std::isfinite(k.a + k.i0 + k.omegaDot + k.omega0 + k.omega + k.m0);
}

struct SineCosine
{
    double sine;
    double cosine;
};

/// For angles within kNearlyCircular: Taylor, exact to the last bit.
SineCosine OfSmall(double d)
{
    const double d2 = d * d;
    // Products with the reciprocals: a chain of divisions would take longer than std::sin.
    const double sine =
        d * (1.0 - d2 * (1.0 / 6) * (1.0 - d2 * (1.0 / 20) * (1.0 - d2 * (1.0 / 42))));
    const double cosine =
        1.0 - d2 * (1.0 / 2) *
                  (1.0 - d2 * (1.0 / 12) * (1.0 - d2 * (1.0 / 30) * (1.0 - d2 * (1.0 / 56))));
    return {sine, cosine};
}

/// Sine and cosine of the eccentric anomaly, solved for its difference d from the mean anomaly:
/// d = e sin(M + d). The series of d in powers of e starts it, within e^4; one step of Halley's,
/// which triples the digits, leaves nothing to correct.
SineCosine NearlyCircularAnomaly(double m, double e)
{
    const double sinM = std::sin(m);
    const double cosM = std::cos(m);
    const double d = e * sinM * (1.0 + e * (cosM + e * (1.0 - 1.5 * sinM * sinM)));
    const SineCosine small = OfSmall(d);
    const double sine = sinM * small.cosine + cosM * small.sine;
    const double cosine = cosM * small.cosine - sinM * small.sine;
    const double f = d - e * sine;
    const double slope = 1.0 - e * cosine;
    const double step = -f * slope / (slope * slope - 0.5 * f * e * sine);
    // The step is below 1e-5: its third power is lost in the rounding.
    const double half = 0.5 * step * step;
    return {sine + step * cosine - half * sine, cosine - step * sine - half * cosine};
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

double SecondsFromToa(const KeplerElements& elements, GpsEpoch epoch) noexcept
{
    return CycleCount(epoch.week, epoch.sowS) - CycleCount(elements.week, elements.toaS);
}

std::optional<Ecef> ReferencePosition(const KeplerElements& elements, GpsEpoch epoch) noexcept
{
    if (!IsOrbit(elements)) {
        return std::nullopt;
    }
    const double e = elements.eccentricity;
    const double a = elements.a;
    const double tk = SecondsFromToa(elements, epoch);
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

AlmanacOrbit::AlmanacOrbit(const AlmanacRecord& record) noexcept : m_elements(record)
{
    const KeplerElements& k = m_elements;
    if (!IsOrbit(k)) {
        return;
    }
    m_nearlyCircular = k.eccentricity <= kNearlyCircular;
    m_toaCountS = CycleCount(k.week, k.toaS);
    m_meanMotion = std::sqrt(kGm / (k.a * k.a * k.a));
    m_nodeRate = k.omegaDot - kEarthRate;
    m_nodeAtToa = k.omega0 - kEarthRate * k.toaS;
    const double b = k.a * std::sqrt(1.0 - k.eccentricity * k.eccentricity);
    const double cosI = std::cos(k.i0);
    const double sinI = std::sin(k.i0);
    const double cosW = std::cos(k.omega);
    const double sinW = std::sin(k.omega);
    m_perigee[0] = k.a * cosW;
    m_perigee[1] = k.a * sinW * cosI;
    m_perigee[2] = k.a * sinW * sinI;
    m_ahead[0] = -b * sinW;
    m_ahead[1] = b * cosW * cosI;
    m_ahead[2] = b * cosW * sinI;
}

std::optional<Ecef> AlmanacOrbit::Position(GpsEpoch epoch) const noexcept
{
    const double tk = CycleCount(epoch.week, epoch.sowS) - m_toaCountS;
    const double m = m_elements.m0 + m_meanMotion * tk;
    if (!m_nearlyCircular || !(std::abs(m) < kFarMeanAnomaly)) {
        return ReferencePosition(m_elements, epoch);
    }
    const double e = m_elements.eccentricity;
    const auto [sinE, cosE] = NearlyCircularAnomaly(m, e);
    const double p = cosE - e; // towards perigee, in units of the semi-major axis
    const double along = m_perigee[0] * p + m_ahead[0] * sinE;
    const double across = m_perigee[1] * p + m_ahead[1] * sinE;
    const double north = m_perigee[2] * p + m_ahead[2] * sinE;
    const double node = m_nodeAtToa + m_nodeRate * tk;
    const double cosNode = std::cos(node);
    const double sinNode = std::sin(node);
    return Ecef{along * cosNode - across * sinNode, along * sinNode + across * cosNode, north};
}

} // namespace fieldcore
