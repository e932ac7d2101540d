#include "core/planning/PlanPeriod.h"

#include "core/planning/CalendarTime.h"

#include <algorithm>

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

GpsEpoch ToEpoch(const CGPSTime& time)
{
    return {time.GetGpsWeek(), time.GetGpsTime()};
}

} // namespace fieldcore
