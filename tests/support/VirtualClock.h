#pragma once

#include "core/platform/Clock.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace fieldcore::testing {

/// A clock whose time moves only when everybody waits, and then at once to the next moment at which
/// somebody can go on. However slow the machine, the same test takes the same moments.
///
/// Everybody: the thread that made the clock, and each thread that has joined it, until it ends.
/// Of those that wait only one goes on at a time, the one that has waited longest if several could.
/// A thread that waits in another way (for a mutex, for another thread's end) holds time still; so
/// before it joins a thread, it waits through the clock until that one is about to end. If nobody
/// can ever go on, the program is ended with a message. Any thread; a thread joins one clock.
class VirtualClock final : public Clock
{
public:
    VirtualClock();
    ~VirtualClock() override; ///< on the thread that made it, when no other is left
    VirtualClock(const VirtualClock&) = delete;
    VirtualClock& operator=(const VirtualClock&) = delete;

    [[nodiscard]] Duration Steady() const override { return m_now; }
    [[nodiscard]] UtcTime Utc() const override;
    [[nodiscard]] bool SetUtc(UtcTime time) override;
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration; }
    void Sleep(Duration duration) const override;
    [[nodiscard]] bool Wait(AutoResetEvent& event, Duration limit) const override;

    /// When a waiter can go on as things stand; nothing: not by time alone. A moment of the past
    /// means now. Called on any thread, and may not use the clock.
    using Due = std::function<std::optional<Duration>()>;
    /// Waits until the moment that @p due names; it is asked again whenever time could move.
    void WaitUntil(const Due& due) const;

    /// The calling thread takes part from now on, which it does at its first wait anyway.
    /// @param isExpected  it was counted by Expect()
    void Join(bool isExpected = false) const;
    /// A thread is about to start that takes part: time does not move until it has joined.
    void Expect() const;
    /// Lets those go on who can, while the calling thread waits in another way.
    void Poke() const;

private:
    struct Waiter;
    struct Membership;

    static Membership& OfThisThread();
    void Leave() const;
    // With the mutex held.
    [[nodiscard]] bool IsDue(const Waiter& waiter) const;
    void Release(Waiter& waiter) const;
    void LetNextGoOn() const;

    std::atomic<UtcTime> m_dateAtStart;
    mutable std::atomic<Duration> m_now{Duration::zero()};
    mutable std::mutex m_mutex;
    mutable std::vector<Waiter*> m_waiters; // in the order in which they came
    mutable int m_running = 0;              // who takes part, or is expected to, and does not wait
};

} // namespace fieldcore::testing
