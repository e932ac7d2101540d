#pragma once

#include <cstdint>

#include "core/planning/CalendarTime.h"

namespace fieldcore {

/// One instant, convertible between GPS week and seconds and calendar time.
///
/// GPS seconds and the controller's clock are one time scale here: no leap seconds are stored or
/// applied. Weeks are counted from the local midnight of 6 January 1980, so that days change at
/// the controller's midnight. Days are 86400 s since then; hour, minute and second are the local
/// ones. In a zone with daylight saving they therefore read one hour late in summer: of an object
/// set to second 7200, GetGpsTime() gives 10800, and the hour before midnight reads as the first
/// of the same day. Whoever needs elapsed time takes GetUtcTime() - m_OriginalTime.
///
/// Bad input is ignored or clamped, as told below, never reported. Any thread; an object that
/// threads share needs a guard of theirs.
class CGPSTime
{
public:
    /// The GPS epoch: local midnight of 1980-01-06 in the time zone that the process has when it
    /// loads the library.
    static const CTime m_OriginalTime;

    /// Now, by the system's clock; the epoch if that is earlier.
    CGPSTime();

    /// @param time  the epoch is taken if it is earlier
    CGPSTime(const CTime& time);

    /// @param week     GPS week; below 1024 it is taken for a broadcast 10-bit week of the second
    /// cycle and 1024 added
    /// @param seconds  of the week or beyond, the fraction dropped; 0 if not finite
    /// An instant before the epoch becomes the epoch.
    CGPSTime(int week, double seconds);

    CGPSTime(const CGPSTime&) = default;
    CGPSTime& operator=(const CGPSTime&) = default;
    virtual ~CGPSTime() = default;

    /// Ignored if @p time is before the epoch.
    void SetUtcTime(const CTime& time);

    /// Ignored if week or seconds are negative, or the seconds not finite.
    /// @param week     GPS week; below 1000 (the constructor: 1024) 1024 is added
    /// @param seconds  of the week or beyond, the fraction dropped
    void SetGpsTime(int week, double seconds);

    /// The same instant by the calendar.
    [[nodiscard]] CTime GetUtcTime() const { return m_time; }

    /// Full weeks since the epoch, not cut to 10 bits.
    [[nodiscard]] int GetGpsWeek() const;

    /// Seconds of the GPS week, always whole, 0 to 604799.
    [[nodiscard]] double GetGpsTime() const;

    /// Seconds since the epoch, modulo 2^32 (from 2116 on).
    [[nodiscard]] std::uint32_t GetGpsTimeInSecond() const;

    /// Both change this object and return it, like += and -=.
    /// Adding is not checked: a negative span may lead before the epoch. Subtracting is ignored
    /// if it would.
    CGPSTime& operator+(const CTimeSpan& span);
    CGPSTime& operator+=(const CTimeSpan& span);
    CGPSTime& operator-(const CTimeSpan& span);
    CGPSTime& operator-=(const CTimeSpan& span);

    /// 1 or 0.
    [[nodiscard]] int operator<(const CGPSTime& other) const { return m_time < other.m_time; }
    [[nodiscard]] int operator<=(const CGPSTime& other) const { return m_time <= other.m_time; }
    [[nodiscard]] int operator>(const CGPSTime& other) const { return m_time > other.m_time; }
    [[nodiscard]] int operator>=(const CGPSTime& other) const { return m_time >= other.m_time; }
    [[nodiscard]] int operator==(const CGPSTime& other) const { return m_time == other.m_time; }

private:
    CTime m_time;
};

} // namespace fieldcore
