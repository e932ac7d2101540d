#include "core/planning/PlanPeriod.h"

#include "core/planning/CalendarTime.h"
#include "core/platform/Calendar.h"

#include <algorithm>
#include <cstddef>

namespace fieldcore {

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
    return {midnight + CTimeSpan(0, startHour - static_cast<int>(kJst.count()), 0, 0)};
}

std::string JstText(std::chrono::sys_seconds utc)
{
    return FormatDate(utc + kJst, "%FT%H:%M+09:00");
}

std::chrono::sys_seconds PlanPeriod::UtcAfter(int samples) const
{
    return std::chrono::sys_days(date) + std::chrono::hours(startHour) - kJst +
           samples * Interval();
}

std::string PlanPeriod::JstText(int samples) const
{
    return fieldcore::JstText(UtcAfter(samples));
}

std::string PlanPeriod::ClockText(int samples) const
{
    const std::chrono::sys_seconds midnight =
        std::chrono::sys_days(date) + std::chrono::days(1) - kJst;
    return UtcAfter(samples) == midnight ? "24:00" : FormatDate(UtcAfter(samples) + kJst, "%H:%M");
}

std::chrono::sys_days JapanDay(Clock::UtcTime utc)
{
    return std::chrono::floor<std::chrono::days>(utc + kJst);
}

GpsEpoch ToEpoch(const CGPSTime& time)
{
    return {time.GetGpsWeek(), time.GetGpsTime()};
}

} // namespace fieldcore
