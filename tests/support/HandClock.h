#pragma once

#include "core/platform/Clock.h"

#include <atomic>
#include <vector>

namespace fieldcore::testing {

/// Stands until a test moves it, or runs besides, and keeps what it was set to. The machine's clock
/// is never touched.
class HandClock final : public Clock
{
public:
    [[nodiscard]] Duration Steady() const override
    {
        const Duration passed = SystemClock::Instance().Steady() - m_began;
        return m_steady.load() + (runs ? passed * speed : Duration());
    }
    [[nodiscard]] UtcTime Utc() const override { return utc + Steady(); }
    [[nodiscard]] bool SetUtc(UtcTime time) override
    {
        asked.push_back(time);
        return maySet;
    }
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration / speed; }

    void Advance(Duration duration) { m_steady = m_steady.load() + duration; }

    UtcTime utc{}; ///< at its start
    bool maySet = true;
    bool runs = false;
    int speed = 1; ///< of waits, and at which it runs
    std::vector<UtcTime> asked;

private:
    const Duration m_began = SystemClock::Instance().Steady();
    std::atomic<Duration> m_steady{}; // a simulator reads it on its own thread
};

} // namespace fieldcore::testing
