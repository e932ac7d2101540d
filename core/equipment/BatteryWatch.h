#pragma once

#include "core/link/Receiver.h"

#include <chrono>
#include <deque>
#include <optional>

namespace fieldcore {

/// Looks at the battery's charge as time goes by: warns when it gets low, and tells how long it
/// will last. Any one thread.
class BatteryWatch
{
public:
    static constexpr int kLowPercent = 20;
    static constexpr int kVeryLowPercent = 10;
    /// A charge this far above a limit re-arms its warning: one that wavers warns once.
    static constexpr int kRearmPercent = 3;
    static constexpr std::chrono::minutes kWindow{60};
    /// A trend needs as long.
    static constexpr std::chrono::minutes kShortest{10};
    static constexpr std::chrono::seconds kSampleInterval{30};

    enum class Warning
    {
        None,
        Low,     ///< kLowPercent or less
        VeryLow, ///< kVeryLowPercent or less
    };

    /// @param percent  0 to 100
    /// @param at       never goes back
    /// @return the warning that is due now: each once until the battery is charged again
    Warning Take(int percent, Clock::Duration at);

    /// The straight line that fits the charges of the last hour best (least squares). A charge that
    /// jumps up is another battery: what was before does not count.
    [[nodiscard]] std::optional<BatteryTrend> Trend() const;

    /// Another receiver, or another power source.
    void ForgetTrend() { m_samples.clear(); }

private:
    struct Sample
    {
        Clock::Duration at;
        int percent;
    };
    std::deque<Sample> m_samples; // oldest first
    bool m_hasWarnedLow = false;
    bool m_hasWarnedVeryLow = false;
};

} // namespace fieldcore
