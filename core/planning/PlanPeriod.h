#pragma once

#include "core/planning/AlmanacOrbit.h"
#include "core/planning/GPSTime.h"
#include "core/platform/Clock.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace fieldcore {

/// The hours that are planned, in Japan Standard Time (UTC + 9 h), and the samples that they are
/// divided into.
struct PlanPeriod
{
    /// The longest period is a day of half hours.
    static constexpr int kMostSamples = 48;

    std::chrono::year_month_day date{std::chrono::year(1980), std::chrono::January,
                                     std::chrono::day(6)};
    int startHour = 9; ///< 0 to 23
    int hours = 2;     ///< 1 to 24; others count as the nearest of these. May pass midnight

    /// 5, 10 or 15 for periods of one, two or three hours, else 30.
    [[nodiscard]] std::chrono::minutes Interval() const;
    /// Number of samples, 8 to 48.
    [[nodiscard]] std::uint8_t Division() const;

    /// When the period begins: midnight of the date by the controller's clock, and start hour less
    /// nine; the GPS epoch if that is earlier. It fits the hours typed in Japan time when the
    /// controller runs on UTC.
    [[nodiscard]] CGPSTime Start() const;

    /// UTC of @p samples intervals after the start, by the calendar alone: what to write beside the
    /// samples, whatever the zone of the controller.
    [[nodiscard]] std::chrono::sys_seconds UtcAfter(int samples) const;
    /// The same as JstText().
    [[nodiscard]] std::string JstText(int samples) const;
    /// Its time of day: "09:00". The first midnight behind the start is "24:00".
    [[nodiscard]] std::string ClockText(int samples) const;
};

/// An instant in Japan Standard Time: "2026-11-21T09:00+09:00".
[[nodiscard]] std::string JstText(std::chrono::sys_seconds utc);

/// The day that Japan has at @p utc: what 今日 and "today" mean.
[[nodiscard]] std::chrono::sys_days JapanDay(Clock::UtcTime utc);

/// As the orbits take it.
[[nodiscard]] GpsEpoch ToEpoch(const CGPSTime& time);

} // namespace fieldcore
