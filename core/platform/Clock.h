#pragma once

#include <atomic>
#include <chrono>

namespace fieldcore {

class AutoResetEvent;

/// The controller's clock: date and time, and the steady time in which time-outs and ages are
/// counted. It is handed in wherever time matters, and whoever waits for time to pass waits through
/// it: a test or the simulator can let time run faster than it does, or only while everybody waits.
/// Any thread.
class Clock
{
public:
    /// A time of the calendar, and a span on the steady clock.
    using UtcTime = std::chrono::system_clock::time_point;
    using Duration = std::chrono::nanoseconds;

    virtual ~Clock() = default;

    /// Time since some fixed moment; never goes back, whatever happens to the date.
    [[nodiscard]] virtual Duration Steady() const = 0;

    /// The date and time.
    [[nodiscard]] virtual UtcTime Utc() const = 0;

    /// Sets the date and time.
    /// @return false if this clock may not be set, or the system refused
    [[nodiscard]] virtual bool SetUtc(UtcTime time) = 0;

    /// How long @p duration of this clock lasts on a watch.
    [[nodiscard]] virtual Duration RealTime(Duration duration) const = 0;

    /// Blocks the calling thread for @p duration of this clock.
    virtual void Sleep(Duration duration) const;

    /// Waits for @p event, at most @p limit of this clock; 0 or less only looks.
    /// @return false if the limit passed first
    [[nodiscard]] virtual bool Wait(AutoResetEvent& event, Duration limit) const;
};

/// The operating system's clock. Setting it is refused until AllowSetting(true): only the user
/// may ask for that.
class SystemClock final : public Clock
{
public:
    /// The one that is used where no other is given.
    static SystemClock& Instance();

    [[nodiscard]] Duration Steady() const override;
    [[nodiscard]] UtcTime Utc() const override;
    [[nodiscard]] bool SetUtc(UtcTime time) override;
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration; }

    /// Whether SetUtc() may set the machine's clock; at first it may not.
    void AllowSetting(bool allowed) { m_settingAllowed = allowed; }

private:
    std::atomic<bool> m_settingAllowed = false;
};

} // namespace fieldcore
