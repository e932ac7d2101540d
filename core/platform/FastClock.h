#pragma once

#include "core/platform/Clock.h"

#include <atomic>

namespace fieldcore {

/// A clock that runs @c speed times as fast as the real one and starts at a date of choice.
/// Setting it moves its date only; the system's clock is never touched.
class FastClock final : public Clock
{
public:
    /// What programs let their users ask for.
    static constexpr double kLowestSpeed = 0.1, kHighestSpeed = 1000.0;

    /// @param speed  seconds of this clock in one real second, greater than 0
    /// @param start  the date at construction
    explicit FastClock(double speed, UtcTime start = std::chrono::system_clock::now());

    [[nodiscard]] Duration Steady() const override;
    [[nodiscard]] UtcTime Utc() const override;
    [[nodiscard]] bool SetUtc(UtcTime time) override;
    [[nodiscard]] Duration RealTime(Duration duration) const override;

    /// Goes on at once by @p duration, 0 or more. Whoever waits does not notice.
    void Leap(Duration duration) { m_leapt = m_leapt.load() + duration; }

private:
    const double m_speed;
    const std::chrono::steady_clock::time_point m_started;
    std::atomic<UtcTime> m_dateAtStart;
    std::atomic<Duration> m_leapt{};
};

} // namespace fieldcore
