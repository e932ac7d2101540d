#pragma once

#include "core/platform/Clock.h"

#include <atomic>
#include <vector>

namespace fieldcore::testing {

/// Stands until a test moves it, and keeps what it was set to. The machine's clock is never
/// touched.
class HandClock final : public Clock
{
public:
    [[nodiscard]] Duration Steady() const override { return m_steady; }
    [[nodiscard]] UtcTime Utc() const override { return utc + m_steady.load(); }
    [[nodiscard]] bool SetUtc(UtcTime time) override
    {
        asked.push_back(time);
        return maySet;
    }
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration / speed; }

    void Advance(Duration duration) { m_steady = m_steady.load() + duration; }

    UtcTime utc{}; ///< at its start
    bool maySet = true;
    int speed = 1; ///< of waits
    std::vector<UtcTime> asked;

private:
    std::atomic<Duration> m_steady{}; // a simulator reads it on its own thread
};

} // namespace fieldcore::testing
