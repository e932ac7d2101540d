#include "core/planning/GPSTime.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/platform/SaturateCast.h"

namespace fieldcore {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kWeekCycle = 1024; // a broadcast week has 10 bits

// For objects that are made before this file's constants: they find the epoch all the same.
CTime Epoch()
{
    static const CTime epoch(1980, 1, 6, 0, 0, 0);
    return epoch;
}

std::int64_t DaysSinceEpoch(CTime time)
{
    return (time - Epoch()).GetDays();
}

int LocalSecondOfDay(CTime time)
{
    const CTime::LocalParts local = time.GetLocalParts();
    return local.hour * 3600 + local.minute * 60 + local.second;
}

} // namespace

const CTime CGPSTime::m_OriginalTime = Epoch();

CGPSTime::CGPSTime() : CGPSTime(CTime::GetCurrentTime()) {}

CGPSTime::CGPSTime(const CTime& time) : m_time(std::max(time, Epoch())) {}

CGPSTime::CGPSTime(int week, double seconds)
{
    const std::int64_t fullWeek = week < kWeekCycle ? week + kWeekCycle : week;
    double rest = std::isfinite(seconds) ? seconds : 0.0;
    const double days = std::trunc(rest / 86400.0);
    rest -= days * 86400.0;
    const double hours = std::trunc(rest / 3600.0);
    rest -= hours * 3600.0;
    const double minutes = std::trunc(rest / 60.0);
    rest -= minutes * 60.0;
    const CTimeSpan wholeDays(SaturateCast<std::int64_t>(days), 0, 0, 0);
    const CTimeSpan sinceWeek(0, SaturateCast<std::int64_t>(hours),
                              SaturateCast<std::int64_t>(minutes),
                              SaturateCast<std::int64_t>(rest));
    m_time = std::max(Epoch() + CTimeSpan(fullWeek * 7, 0, 0, 0) + wholeDays + sinceWeek, Epoch());
}

void CGPSTime::SetUtcTime(const CTime& time)
{
    if (time >= Epoch()) {
        m_time = time;
    }
}

void CGPSTime::SetGpsTime(int week, double seconds)
{
    if (week < 0 || seconds < 0.0 || !std::isfinite(seconds)) {
        return;
    }
    // Not 1024 as in the constructor: weeks 1000 to 1023 are meant as they are here.
    const std::int64_t fullWeek = week < 1000 ? week + kWeekCycle : week;
    m_time = Epoch() + CTimeSpan(fullWeek * 7, 0, 0, SaturateCast<std::int64_t>(seconds));
}

int CGPSTime::GetGpsWeek() const
{
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(
        std::clamp<std::int64_t>(DaysSinceEpoch(m_time) / 7, Limits::min(), Limits::max()));
}

double CGPSTime::GetGpsTime() const
{
    const std::int64_t dayOfWeek = DaysSinceEpoch(m_time) % 7;
    return static_cast<double>(dayOfWeek * kSecondsPerDay + LocalSecondOfDay(m_time));
}

std::uint32_t CGPSTime::GetGpsTimeInSecond() const
{
    // Days of a 64-bit count of seconds: the product fits.
    const std::int64_t days = DaysSinceEpoch(m_time);
    return static_cast<std::uint32_t>(days * kSecondsPerDay + LocalSecondOfDay(m_time));
}

CGPSTime& CGPSTime::operator+(const CTimeSpan& span)
{
    return *this += span;
}

CGPSTime& CGPSTime::operator+=(const CTimeSpan& span)
{
    m_time += span;
    return *this;
}

CGPSTime& CGPSTime::operator-(const CTimeSpan& span)
{
    return *this -= span;
}

CGPSTime& CGPSTime::operator-=(const CTimeSpan& span)
{
    if (m_time - span >= Epoch()) {
        m_time -= span;
    }
    return *this;
}

} // namespace fieldcore
