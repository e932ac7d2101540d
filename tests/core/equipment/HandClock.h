#pragma once

#include "core/platform/Clock.h"

#include <algorithm>
#include <atomic>
#include <vector>

namespace fieldcore::testing {

/// Moves by hand and by each wait that nothing ends, and keeps what it was set to. The machine's
/// clock is never touched.
class HandClock final : public Clock
{
public:
    [[nodiscard]] Duration Steady() const override { return steady; }
    [[nodiscard]] UtcTime Utc() const override { return utc; }
    [[nodiscard]] bool SetUtc(UtcTime time) override
    {
        asked.push_back(time);
        return maySet;
    }
    [[nodiscard]] Duration RealTime(Duration duration) const override
    {
        return duration / speed.load();
    }

    void Sleep(Duration duration) const override
    {
        Clock::Sleep(duration);
        steady = steady.load() + duration;
    }
    [[nodiscard]] bool Wait(AutoResetEvent& event, Duration limit) const override
    {
        const bool isSet = Clock::Wait(event, limit);
        steady = isSet ? steady.load() : steady.load() + std::max(limit, Duration::zero());
        return isSet;
    }

    void Advance(Duration duration) { steady = steady.load() + duration; }

    mutable std::atomic<Duration> steady{}; ///< a simulator reads it on its own thread
    UtcTime utc{};
    bool maySet = true;
    std::atomic<int> speed = 1; ///< of waits
    std::vector<UtcTime> asked;
};

} // namespace fieldcore::testing
