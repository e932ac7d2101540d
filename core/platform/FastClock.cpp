#include "core/platform/FastClock.h"

namespace fieldcore {

FastClock::FastClock(double speed, UtcTime start)
    : m_speed(speed), m_started(std::chrono::steady_clock::now()), m_dateAtStart(start)
{}

Clock::Duration FastClock::Steady() const
{
    const std::chrono::duration<double, std::nano> real =
        std::chrono::steady_clock::now() - m_started;
    return std::chrono::duration_cast<Duration>(real * m_speed) + m_leapt.load();
}

Clock::UtcTime FastClock::Utc() const
{
    return m_dateAtStart.load() + std::chrono::duration_cast<UtcTime::duration>(Steady());
}

bool FastClock::SetUtc(UtcTime time)
{
    m_dateAtStart = time - std::chrono::duration_cast<UtcTime::duration>(Steady());
    return true;
}

Clock::Duration FastClock::RealTime(Duration duration) const
{
    const std::chrono::duration<double, std::nano> own = duration;
    return std::chrono::duration_cast<Duration>(own / m_speed);
}

} // namespace fieldcore
