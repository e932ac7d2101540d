#include "core/tilt/BubblePoll.h"

#include <algorithm>

namespace fieldcore {

bool BubblePoll::Tick(const BubbleRules& rules)
{
    if (m_command == nullptr || m_isPolling || m_command->IsBusy()) {
        return false;
    }
    const Clock& clock = m_command->GetClock();
    if (clock.Steady() < m_pausedUntil) {
        return false;
    }
    m_isPolling = true;
    TiltReading reading;
    const bool good = m_command->RequestTiltReading(reading) == 1;
    m_isPolling = false;
    if (!good && m_command->Fault() == CommandFault::TimedOut) {
        m_pause = std::clamp(2 * m_pause, kFirstPause, kLongestPause);
        m_pausedUntil = clock.Steady() + m_pause;
        return true;
    }
    m_pause = std::chrono::seconds(0);
    if (good && IsUsable(reading)) {
        m_reading = reading;
        m_readAt = clock.Steady();
        m_picture = PictureOf(reading, rules);
    }
    return true;
}

void BubblePoll::Recompute(const BubbleRules& rules)
{
    if (m_reading) {
        m_picture = PictureOf(*m_reading, rules);
    }
}

bool BubblePoll::IsStale() const
{
    return !m_reading || m_command->GetClock().Steady() - m_readAt > kStaleAge;
}

} // namespace fieldcore
