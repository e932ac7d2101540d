#include "core/equipment/BatteryWatch.h"

#include <algorithm>
#include <ratio>
#include <utility>

namespace fieldcore {

namespace {

using Hours = std::chrono::duration<double, std::ratio<3600>>;

constexpr int kJumpPercent = 5;         // no charger is as fast within a sample
constexpr double kSlowestDrain = 0.5;   // percent per hour; less says nothing about an end
constexpr std::chrono::hours kMost{99}; // that is worth telling

} // namespace

BatteryWatch::Warning BatteryWatch::Take(int percent, Clock::Duration at)
{
    if (!m_samples.empty() && percent >= m_samples.back().percent + kJumpPercent) {
        m_samples.clear();
    }
    if (m_samples.empty() || at - m_samples.back().at >= kSampleInterval) {
        m_samples.push_back({at, percent});
    }
    while (at - m_samples.front().at > kWindow) {
        m_samples.pop_front();
    }
    m_hasWarnedLow = m_hasWarnedLow && percent < kLowPercent + kRearmPercent;
    m_hasWarnedVeryLow = m_hasWarnedVeryLow && percent < kVeryLowPercent + kRearmPercent;
    if (percent <= kVeryLowPercent) {
        m_hasWarnedLow = true; // the graver one says both
        return std::exchange(m_hasWarnedVeryLow, true) ? Warning::None : Warning::VeryLow;
    }
    if (percent <= kLowPercent) {
        return std::exchange(m_hasWarnedLow, true) ? Warning::None : Warning::Low;
    }
    return Warning::None;
}

std::optional<BatteryTrend> BatteryWatch::Trend() const
{
    if (m_samples.empty() || m_samples.back().at - m_samples.front().at < kShortest) {
        return std::nullopt;
    }
    const auto count = static_cast<double>(m_samples.size());
    const auto hoursOf = [this](const Sample& s) { return Hours(s.at - m_samples.front().at); };
    double meanT = 0.0;
    double meanP = 0.0;
    for (const Sample& s : m_samples) {
        meanT += hoursOf(s).count() / count;
        meanP += s.percent / count;
    }
    double covariance = 0.0;
    double variance = 0.0;
    for (const Sample& s : m_samples) {
        const double t = hoursOf(s).count() - meanT;
        covariance += t * (s.percent - meanP);
        variance += t * t;
    }
    BatteryTrend trend{covariance / variance, std::nullopt};
    if (trend.percentPerHour <= -kSlowestDrain) {
        const Hours left(m_samples.back().percent / -trend.percentPerHour);
        trend.left = std::chrono::duration_cast<Clock::Duration>(std::min<Hours>(left, kMost));
    }
    return trend;
}

} // namespace fieldcore
