#include "bench/literal/LiteralPlan.h"

#include "core/planning/CalendarTime.h"

#include <cmath>
#include <numbers>

namespace fieldcore::bench {

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;

/// The start of the period, the end, and what lies between, an interval apart.
template <typename Each>
void ForEachEpoch(const PlanPeriod& period, Each each)
{
    CGPSTime time = period.Start();
    for (int k = 0; k <= period.Division(); ++k) {
        each(ToEpoch(time), k);
        time += CTimeSpan(0, 0, period.Interval().count(), 0);
    }
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

LiteralPlan::LiteralPlan(const CSurveyPlanCalc& calc, const PlanPeriod& period)
    : m_satellites(), m_period(period), m_observer(calc.GetObserver()), m_maskRad(calc.GetElMask()),
      m_curtain(calc.GetCurtain())
{
    for (int i = 0; i < kMaxPrn; ++i) {
        const CAlmanacSatellite& satellite = calc.GetSatellite(i);
        const AlmanacRecord record = DecodeAlmanac(satellite.GetRecord());
        m_satellites[static_cast<std::size_t>(i)] = {satellite.IsValid() != 0 && record.health == 0,
                                                     record};
    }
}

std::optional<SkyDirection> LiteralPlan::Test(int prnIndex, GpsEpoch epoch) const
{
    const Satellite& satellite = m_satellites[static_cast<std::size_t>(prnIndex)];
    if (!satellite.usable) {
        return std::nullopt;
    }
    const std::optional<Ecef> position = LiteralPosition(KeplerElements(satellite.record), epoch);
    if (!position) {
        return std::nullopt;
    }
    std::optional<SkyDirection> direction = ReferenceDirection(m_observer, *position);
    if (!direction || !(direction->elevationRad >= 0.0) ||
        !(direction->elevationRad >= m_maskRad)) {
        return std::nullopt;
    }
    direction->azimuthRad = NormalisedAzimuth(direction->azimuthRad);
    const auto entry = static_cast<std::size_t>(direction->azimuthRad * 180.0 / std::numbers::pi);
    if (direction->elevationRad < m_curtain[entry % 360] * std::numbers::pi / 180.0) {
        return std::nullopt;
    }
    return direction;
}

int LiteralPlan::CountAt(GpsEpoch epoch) const
{
    int count = 0;
    for (int i = 0; i < kMaxPrn; ++i) {
        count += Test(i, epoch) ? 1 : 0;
    }
    return count;
}

DopValues LiteralPlan::DopAt(GpsEpoch epoch) const
{
    if (CountAt(epoch) < 4) {
        return kNoDop;
    }
    std::vector<Ecef> visible;
    for (int i = 0; i < kMaxPrn; ++i) {
        if (Test(i, epoch)) {
            const KeplerElements elements(m_satellites[static_cast<std::size_t>(i)].record);
            visible.push_back(LiteralPosition(elements, epoch).value_or(Ecef{}));
        }
    }
    return ReferenceDop(ToEcef(m_observer), visible);
}

std::vector<double> LiteralPlan::Count() const
{
    std::vector<double> series;
    ForEachEpoch(m_period, [&](GpsEpoch epoch, int k) {
        if (k < m_period.Division()) {
            series.push_back(CountAt(epoch));
        }
    });
    return series;
}

std::vector<DopValues> LiteralPlan::Dops() const
{
    std::vector<DopValues> series;
    ForEachEpoch(m_period, [&](GpsEpoch epoch, int k) {
        if (k > 0) {
            series.push_back(DopAt(epoch));
        }
    });
    return series;
}

std::vector<LiteralPlan::Sky> LiteralPlan::Tracks() const
{
    std::vector<Sky> skies;
    ForEachEpoch(m_period, [&](GpsEpoch epoch, int) {
        skies.emplace_back();
        for (int i = 0; i < kMaxPrn; ++i) {
            skies.back()[static_cast<std::size_t>(i)] = Test(i, epoch);
        }
    });
    return skies;
}

} // namespace fieldcore::bench
