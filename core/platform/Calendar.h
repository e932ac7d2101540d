#pragma once

#include <chrono>

namespace fieldcore {

/// The midnight from which GPS weeks and the days of GPS time are counted.
inline constexpr std::chrono::sys_days kGpsEpoch{std::chrono::year(1980) / 1 / 6};

// Leap seconds are no part of either, s.
inline constexpr double kDayS = 86400.0;
inline constexpr double kWeekS = 7 * kDayS;

/// How far Japan is ahead of UTC; it has no daylight saving time.
inline constexpr std::chrono::hours kJst{9};

} // namespace fieldcore
