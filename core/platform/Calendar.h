#pragma once

#include <chrono>
#include <string>

namespace fieldcore {

/// The midnight from which GPS weeks and the days of GPS time are counted.
inline constexpr std::chrono::sys_days kGpsEpoch{std::chrono::year(1980) / 1 / 6};

// Leap seconds are no part of either, s.
inline constexpr double kDayS = 86400.0;
inline constexpr double kWeekS = 7 * kDayS;

/// How far Japan is ahead of UTC; it has no daylight saving time.
inline constexpr std::chrono::hours kJst{9};

/// A date and time as it is, in no zone of the machine's.
/// @param format  as of strftime: "%F %T" is 2026-11-22 09:05:00
[[nodiscard]] std::string FormatDate(std::chrono::sys_seconds time, const std::string& format);

} // namespace fieldcore
