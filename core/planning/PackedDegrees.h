#pragma once

#include <string>
#include <string_view>

namespace fieldcore {

/// Radians of an angle that is written as DD.MMSSsss: degrees, a point, two digits of minutes, two
/// of whole seconds, and behind them the decimals of the seconds. Digits that are missing on the
/// right are zeros, so that "35.4" is 35 degrees 40 minutes. A minus in front goes for the whole
/// angle. The text is read as far as it is such an angle; without a digit it is 0. Minutes and
/// seconds of 60 and more count as they stand. Any thread.
[[nodiscard]] double ParsePackedDegrees(std::wstring_view text);

/// An angle as DD.MMSSsss, rounded in the last decimal of the seconds, with the minus of a negative
/// one.
/// @param angleRad  radians, less than 1000 degrees; what is not finite gives "0.0000"
/// @param decimals  of the seconds, 0 to 9
[[nodiscard]] std::wstring FormatPackedDegrees(double angleRad, int decimals);

} // namespace fieldcore
