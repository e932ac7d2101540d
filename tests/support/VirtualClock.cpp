#include "tests/support/VirtualClock.h"

#include "core/platform/AutoResetEvent.h"
#include "tests/support/Scarcity.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace fieldcore::testing {

struct VirtualClock::Waiter
{
    const Due& due;
    std::condition_variable goOn{};
    bool isFree = false;
};

/// Ends with its thread.
struct VirtualClock::Membership
{
    const VirtualClock* clock = nullptr;
    bool isExpected = false;

    Membership() = default;
    ~Membership()
    {
        if (clock != nullptr) {
            clock->Leave();
        }
    }
    Membership(const Membership&) = delete;
    Membership& operator=(const Membership&) = delete;
};

VirtualClock::Membership& VirtualClock::OfThisThread()
{
    static thread_local Membership membership;
    return membership;
}

VirtualClock::VirtualClock()
    : m_dateAtStart(std::chrono::sys_days(std::chrono::year(2026) / std::chrono::March / 19))
{
    Join();
}

VirtualClock::~VirtualClock()
{
    OfThisThread().clock = nullptr;
}

Clock::UtcTime VirtualClock::Utc() const
{
    return m_dateAtStart.load() + std::chrono::duration_cast<UtcTime::duration>(Steady());
}

bool VirtualClock::SetUtc(UtcTime time)
{
    m_dateAtStart = time - std::chrono::duration_cast<UtcTime::duration>(Steady());
    return true;
}

void VirtualClock::Sleep(Duration duration) const
{
    const Spared spared;
    WaitUntil([end = Steady() + duration] { return end; });
}

bool VirtualClock::Wait(AutoResetEvent& event, Duration limit) const
{
    const Spared spared;
    bool isTaken = event.Wait(Duration::zero());
    if (!isTaken && limit > Duration::zero()) {
        WaitUntil([&, end = Steady() + limit] {
            isTaken = isTaken || event.Wait(Duration::zero());
            return isTaken ? Duration::zero() : end;
        });
    }
    return isTaken;
}

void VirtualClock::WaitUntil(const Due& due) const
{
    const Spared spared;
    Join();
    Waiter waiter{due};
    std::unique_lock lock(m_mutex);
    m_waiters.push_back(&waiter);
    --m_running;
    if (m_running > 0 && IsDue(waiter)) {
        Release(waiter); // who runs may have woken this thread, and now wait for its end
    }
    LetNextGoOn();
    waiter.goOn.wait(lock, [&] { return waiter.isFree; });
}

void VirtualClock::Join(bool isExpected) const
{
    Membership& membership = OfThisThread();
    if (membership.clock == this) {
        if (isExpected && !membership.isExpected) { // it has waited before it could say so
            membership.isExpected = true;
            const std::scoped_lock lock(m_mutex);
            --m_running;
        }
        return;
    }
    if (membership.clock != nullptr) {
        std::fputs("a thread joins a second clock\n", stderr);
        std::abort();
    }
    membership.clock = this;
    membership.isExpected = isExpected;
    const std::scoped_lock lock(m_mutex);
    m_running += isExpected ? 0 : 1;
}

void VirtualClock::Expect() const
{
    const std::scoped_lock lock(m_mutex);
    ++m_running;
}

void VirtualClock::Leave() const
{
    const std::scoped_lock lock(m_mutex);
    --m_running;
    LetNextGoOn();
}

void VirtualClock::Poke() const
{
    const Spared spared;
    const std::scoped_lock lock(m_mutex);
    const std::vector<Waiter*> waiters = m_waiters;
    for (Waiter* const waiter : waiters) {
        if (IsDue(*waiter)) {
            Release(*waiter);
        }
    }
}

bool VirtualClock::IsDue(const Waiter& waiter) const
{
    const std::optional<Duration> due = waiter.due();
    return due && *due <= m_now.load();
}

void VirtualClock::Release(Waiter& waiter) const
{
    std::erase(m_waiters, &waiter);
    ++m_running;
    waiter.isFree = true;
    waiter.goOn.notify_one();
}

void VirtualClock::LetNextGoOn() const
{
    if (m_running > 0 || m_waiters.empty()) {
        return;
    }
    Waiter* next = nullptr;
    Duration moment = Duration::max();
    for (Waiter* const waiter : m_waiters) {
        const std::optional<Duration> due = waiter->due();
        if (due && std::max(*due, m_now.load()) < moment) {
            moment = std::max(*due, m_now.load());
            next = waiter;
        }
    }
    if (next == nullptr) {
        std::fprintf(stderr, "all %zu threads wait for one another\n", m_waiters.size());
        std::abort();
    }
    m_now = moment;
    Release(*next);
}

} // namespace fieldcore::testing
