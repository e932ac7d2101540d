#include "core/planning/CalendarTime.h"

#include <algorithm>
#include <ctime>
#include <limits>

#include "core/platform/Clock.h"

namespace fieldcore {
namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();

std::int64_t Sum(std::int64_t a, std::int64_t b)
{
    if (b > 0 && a > kMax - b) {
        return kMax;
    }
    if (b < 0 && a < kMin - b) {
        return kMin;
    }
    return a + b;
}

std::int64_t Difference(std::int64_t a, std::int64_t b)
{
    if (b < 0 && a > kMax + b) {
        return kMax;
    }
    if (b > 0 && a < kMin + b) {
        return kMin;
    }
    return a - b;
}

std::int64_t Product(std::int64_t a, std::int64_t positive)
{
    return std::clamp(a, kMin / positive, kMax / positive) * positive;
}

// The thread-safe conversion need not look at TZ by itself.
void ReadTimeZoneOnce()
{
    static const bool done = [] {
        tzset();
        return true;
    }();
    static_cast<void>(done);
}

} // namespace

CTimeSpan::CTimeSpan(std::int64_t days, std::int64_t hours, std::int64_t minutes,
                     std::int64_t seconds)
    : m_seconds(
          Sum(Sum(Product(days, 86400), Product(hours, 3600)), Sum(Product(minutes, 60), seconds)))
{}

CTimeSpan& CTimeSpan::operator+=(CTimeSpan other)
{
    m_seconds = Sum(m_seconds, other.m_seconds);
    return *this;
}

CTimeSpan& CTimeSpan::operator-=(CTimeSpan other)
{
    m_seconds = Difference(m_seconds, other.m_seconds);
    return *this;
}

CTime::CTime(std::chrono::system_clock::time_point utc)
    : m_time(std::chrono::floor<std::chrono::seconds>(utc).time_since_epoch().count())
{}

CTime::CTime(int year, int month, int day, int hour, int minute, int second, int daylightSaving)
{
    std::tm parts{};
    // Below these ends of int the subtraction would have no result.
    parts.tm_year = std::max(year, std::numeric_limits<int>::min() + 1900) - 1900;
    parts.tm_mon = std::max(month, std::numeric_limits<int>::min() + 1) - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    parts.tm_sec = second;
    parts.tm_isdst = daylightSaving;
    parts.tm_wday = -1;
    const std::time_t time = std::mktime(&parts);
    // -1 is also a valid instant; only success fills in the day of the week.
    m_time = parts.tm_wday < 0 ? 0 : time;
}

CTime CTime::GetCurrentTime()
{
    return CTime(SystemClock::Instance().Utc());
}

CTime::LocalParts CTime::GetLocalParts() const
{
    ReadTimeZoneOnce();
    const std::time_t time = m_time;
    std::tm parts{};
    if (localtime_r(&time, &parts) == nullptr ||
        parts.tm_year > std::numeric_limits<int>::max() - 1900) {
        return {};
    }
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
            parts.tm_min,         parts.tm_sec,     parts.tm_wday};
}

CTime& CTime::operator+=(CTimeSpan span)
{
    m_time = Sum(m_time, span.GetTotalSeconds());
    return *this;
}

CTime& CTime::operator-=(CTimeSpan span)
{
    m_time = Difference(m_time, span.GetTotalSeconds());
    return *this;
}

} // namespace fieldcore
