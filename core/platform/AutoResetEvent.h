#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace fieldcore {

/// Wakes one waiter per Set(). Setting it twice before anyone waits counts once; a binary
/// semaphore would not do, since releasing it twice is undefined. What was written before Set()
/// is visible after Wait() returned true. Any thread.
class AutoResetEvent
{
public:
    void Set();

    /// Takes back a Set() that nobody has waited for yet.
    void Reset();

    /// @param limit  real time; 0 or less only looks
    /// @return false if @p limit passed first
    [[nodiscard]] bool Wait(std::chrono::nanoseconds limit);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_signalled = false; // guarded by m_mutex
};

} // namespace fieldcore
