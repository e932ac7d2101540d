#pragma once

#include <chrono>
#include <optional>

namespace fieldcore {

/// Julian date of 1980-01-06 00:00, from which GPS weeks are counted.
inline constexpr double kGpsEpochJulianDate = 2444244.5;

/// The Gregorian calendar date in which a Julian date lies; the time of day is dropped. Dates
/// before 1582 are counted by the Gregorian rules too.
///
/// @param julianDate  days since noon of 24 November 4714 B.C.; a double tells instants of our age
/// apart by 4e-5 s
/// @return nothing if not finite or beyond the years -32767 to 32767
[[nodiscard]] std::optional<std::chrono::year_month_day>
CalendarDateOfJulian(double julianDate) noexcept;

} // namespace fieldcore
