#include "core/planning/PlanPeriod.h"

#include "core/planning/CalendarTime.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

namespace fieldcore {

namespace {

constexpr int kJapanBehindUtcH = 9;

} // namespace

std::chrono::minutes PlanPeriod::Interval() const
{
    const int held = std::clamp(hours, 1, 24);
    return std::chrono::minutes(held <= 3 ? 5 * held : 30);
}

std::uint8_t PlanPeriod::Division() const
{
    return static_cast<std::uint8_t>(std::clamp(hours, 1, 24) * 60 / Interval().count());
}

CGPSTime PlanPeriod::Start() const
{
    const CTime midnight(static_cast<int>(date.year()),
                         static_cast<int>(static_cast<unsigned>(date.month())),
                         static_cast<int>(static_cast<unsigned>(date.day())), 0, 0, 0);
    return {midnight + CTimeSpan(0, startHour - kJapanBehindUtcH, 0, 0)};
}

std::string JstText(std::chrono::sys_seconds utc)
{
    const auto jst = utc + std::chrono::hours(kJapanBehindUtcH);
    const auto day = std::chrono::floor<std::chrono::days>(jst);
    const std::chrono::year_month_day calendar(day);
    const auto minutes = std::chrono::floor<std::chrono::minutes>(jst - day).count();
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d+09:00",
                  static_cast<int>(calendar.year()), static_cast<unsigned>(calendar.month()),
                  static_cast<unsigned>(calendar.day()), static_cast<int>(minutes / 60),
                  static_cast<int>(minutes % 60));
    return text.data();
}

std::chrono::sys_seconds PlanPeriod::UtcAfter(int samples) const
{
    return std::chrono::sys_days(date) + std::chrono::hours(startHour - kJapanBehindUtcH) +
           samples * Interval();
}

std::string PlanPeriod::JstText(int samples) const
{
    return fieldcore::JstText(UtcAfter(samples));
}

std::string PlanPeriod::ClockText(int samples) const
{
    constexpr std::size_t kClockAt = 11;
    constexpr std::size_t kClockLength = 5;
    const std::chrono::sys_seconds midnight =
        std::chrono::sys_days(date) + std::chrono::hours(24 - kJapanBehindUtcH);
    return UtcAfter(samples) == midnight ? "24:00"
                                         : JstText(samples).substr(kClockAt, kClockLength);
}

std::chrono::sys_days JapanDay(Clock::UtcTime utc)
{
    return std::chrono::floor<std::chrono::days>(utc + std::chrono::hours(kJapanBehindUtcH));
}

GpsEpoch ToEpoch(const CGPSTime& time)
{
    return {time.GetGpsWeek(), time.GetGpsTime()};
}

} // namespace fieldcore
