#include "core/planning/SkyLimits.h"

#include "core/planning/PlanLanes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace fieldcore {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTwoPi = 2.0 * kPi;
constexpr double kOutOfReach = 2.0; // above every sine

double LimitSine(double maskRad, std::uint8_t curtainDeg)
{
    const double limit = std::max({0.0, maskRad, curtainDeg * kPi / 180.0});
    // A mask that is not a number hides everything, like one beyond the zenith.
    return limit <= kPi / 2.0 && !std::isnan(maskRad) ? std::sin(limit) : kOutOfReach;
}

} // namespace

bool HasObstruction(const ObstructionCurtain& curtain) noexcept
{
    return std::any_of(curtain.begin(), curtain.end(), [](std::uint8_t deg) { return deg != 0; });
}

double NormalisedAzimuth(double azimuthRad) noexcept
{
    if (!std::isfinite(azimuthRad)) {
        return azimuthRad;
    }
    while (azimuthRad > kTwoPi) {
        azimuthRad -= kTwoPi;
    }
    while (azimuthRad < 0.0) {
        azimuthRad += kTwoPi;
    }
    return azimuthRad;
}

SkyLimits::SkyLimits(double maskRad, const ObstructionCurtain& curtain) noexcept
    : m_maskRad(maskRad), m_curtain(curtain)
{
    // Curtains have few different heights side by side: most sines are those of the entry before.
    for (std::size_t i = 0; i < curtain.size(); ++i) {
        m_sines[i] =
            i > 0 && curtain[i] == curtain[i - 1] ? m_sines[i - 1] : LimitSine(maskRad, curtain[i]);
    }
    const auto [lowest, highest] =
        std::minmax_element(m_sines.begin(), m_sines.begin() + curtain.size());
    m_lowest = *lowest;
    m_highest = *highest;
}

bool SkyLimits::Pass(const SkyDirection& direction) const noexcept
{
    const double azimuth = NormalisedAzimuth(direction.azimuthRad);
    if (!(direction.elevationRad >= 0.0 && direction.elevationRad >= m_maskRad) ||
        !std::isfinite(azimuth)) {
        return false;
    }
    // Exactly 2 pi is north again.
    const auto entry = static_cast<std::size_t>(azimuth * 180.0 / kPi) % m_curtain.size();
    return direction.elevationRad >= m_curtain[entry] * kPi / 180.0;
}

SkyLimits::Verdict SkyLimits::Judge(const EastNorthUp& enu) const noexcept
{
    return JudgeDirection(*this, enu);
}

} // namespace fieldcore
