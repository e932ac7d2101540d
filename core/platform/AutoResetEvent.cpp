#include "core/platform/AutoResetEvent.h"

namespace fieldcore {

void AutoResetEvent::Set()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_signalled = true;
    }
    m_changed.notify_one();
}

void AutoResetEvent::Reset()
{
    const std::scoped_lock lock(m_mutex);
    m_signalled = false;
}

bool AutoResetEvent::Wait(std::chrono::nanoseconds limit)
{
    std::unique_lock lock(m_mutex);
    if (!m_changed.wait_for(lock, limit, [this] { return m_signalled; })) {
        return false;
    }
    m_signalled = false;
    return true;
}

} // namespace fieldcore
