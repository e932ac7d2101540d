#pragma once

#include <chrono>
#include <compare>
#include <cstdint>

namespace fieldcore {

/// A length of time in whole seconds, of either sign. Arithmetic stops at the ends of the 64-bit
/// count, so that no input makes it undefined. Any thread.
class CTimeSpan
{
public:
    constexpr CTimeSpan() = default;
    /// A span of whole seconds; may be negative.
    constexpr explicit CTimeSpan(std::int64_t seconds) : m_seconds(seconds) {}

    /// The sum of the four, each of any size and sign.
    CTimeSpan(std::int64_t days, std::int64_t hours, std::int64_t minutes, std::int64_t seconds);

    /// All of it, seconds.
    [[nodiscard]] constexpr std::int64_t GetTotalSeconds() const { return m_seconds; }

    /// The parts carry the sign of the whole: hours -23 to 23, minutes and seconds -59 to 59.
    [[nodiscard]] constexpr std::int64_t GetDays() const { return m_seconds / 86400; }
    [[nodiscard]] constexpr int GetHours() const
    {
        return static_cast<int>(m_seconds % 86400 / 3600);
    }
    [[nodiscard]] constexpr int GetMinutes() const
    {
        return static_cast<int>(m_seconds % 3600 / 60);
    }
    [[nodiscard]] constexpr int GetSeconds() const { return static_cast<int>(m_seconds % 60); }

    /// Sums and differences.
    CTimeSpan& operator+=(CTimeSpan other);
    CTimeSpan& operator-=(CTimeSpan other);
    friend CTimeSpan operator+(CTimeSpan a, CTimeSpan b) { return a += b; }
    friend CTimeSpan operator-(CTimeSpan a, CTimeSpan b) { return a -= b; }

    friend constexpr bool operator==(CTimeSpan, CTimeSpan) = default;
    /// The shorter one is less.
    friend constexpr std::strong_ordering operator<=>(CTimeSpan a, CTimeSpan b)
    {
        return a.m_seconds <=> b.m_seconds;
    }

private:
    std::int64_t m_seconds = 0;
};

/// An instant: whole seconds since 1970-01-01 00:00:00 UTC, read back in the time zone of the
/// process (TZ, else the system's), with daylight saving where the zone has it. Leap seconds are
/// not counted. Arithmetic stops at the ends of the 64-bit count. Any thread, as long as none
/// changes the environment.
class CTime
{
public:
    /// Date and time of day in the time zone of the process. All zero for an instant whose year
    /// does not fit, about 2 * 10^9 years away.
    struct LocalParts
    {
        int year;
        int month;     ///< 1 to 12
        int day;       ///< 1 to 31
        int hour;      ///< 0 to 23
        int minute;    ///< 0 to 59
        int second;    ///< 0 to 59
        int dayOfWeek; ///< 0 Sunday to 6 Saturday
    };

    constexpr CTime() = default;
    /// An instant, seconds since 1970-01-01 00:00 UTC.
    constexpr explicit CTime(std::int64_t secondsSince1970) : m_time(secondsSince1970) {}

    /// The second in which @p utc lies.
    explicit CTime(std::chrono::system_clock::time_point utc);

    /// A date and time of day in the time zone of the process. Parts outside their ranges roll
    /// over into the next larger ones (month 13 is January of the next year), and a time of day
    /// that a change to daylight saving leaves out moves by an hour.
    /// @param month  from 1
    /// @param daylightSaving  1: the parts are in daylight-saving time; 0: in standard time;
    /// negative: whichever is in force then
    /// If the instant is beyond what the system counts, it is 1970-01-01 00:00:00 UTC.
    CTime(int year, int month, int day, int hour, int minute, int second, int daylightSaving = -1);

    /// Now, by the system's clock.
    [[nodiscard]] static CTime GetCurrentTime();

    /// Seconds since 1970-01-01 00:00:00 UTC.
    [[nodiscard]] constexpr std::int64_t GetTime() const { return m_time; }

    /// All parts at once: cheaper than one by one.
    [[nodiscard]] LocalParts GetLocalParts() const;
    [[nodiscard]] int GetYear() const { return GetLocalParts().year; }
    [[nodiscard]] int GetMonth() const { return GetLocalParts().month; }
    [[nodiscard]] int GetDay() const { return GetLocalParts().day; }
    [[nodiscard]] int GetHour() const { return GetLocalParts().hour; }
    [[nodiscard]] int GetMinute() const { return GetLocalParts().minute; }
    [[nodiscard]] int GetSecond() const { return GetLocalParts().second; }

    /// Moved by a span; the span between two.
    CTime& operator+=(CTimeSpan span);
    CTime& operator-=(CTimeSpan span);
    friend CTime operator+(CTime time, CTimeSpan span) { return time += span; }
    friend CTime operator-(CTime time, CTimeSpan span) { return time -= span; }
    friend CTimeSpan operator-(CTime later, CTime earlier)
    {
        return CTimeSpan(later.m_time) - CTimeSpan(earlier.m_time);
    }

    friend constexpr bool operator==(CTime, CTime) = default;
    /// The earlier one is less.
    friend constexpr std::strong_ordering operator<=>(CTime a, CTime b)
    {
        return a.m_time <=> b.m_time;
    }

private:
    std::int64_t m_time = 0;
};

} // namespace fieldcore
