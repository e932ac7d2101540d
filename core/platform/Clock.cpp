#include "core/platform/Clock.h"

#include "core/platform/AutoResetEvent.h"

#include <ctime>
#include <thread>

namespace fieldcore {

void Clock::Sleep(Duration duration) const
{
    std::this_thread::sleep_for(RealTime(duration));
}

bool Clock::Wait(AutoResetEvent& event, Duration limit) const
{
    return event.Wait(RealTime(limit));
}

SystemClock& SystemClock::Instance()
{
    static SystemClock clock;
    return clock;
}

Clock::Duration SystemClock::Steady() const
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

Clock::UtcTime SystemClock::Utc() const
{
    return std::chrono::system_clock::now();
}

bool SystemClock::SetUtc(UtcTime time)
{
    if (!m_settingAllowed) {
        return false;
    }
    const auto sinceEpoch = time.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
    timespec value{};
    value.tv_sec = static_cast<std::time_t>(seconds.count());
    value.tv_nsec = static_cast<long>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(sinceEpoch - seconds).count());
    return clock_settime(CLOCK_REALTIME, &value) == 0;
}

} // namespace fieldcore
