#pragma once

#include <cstddef>
#include <string>

namespace fieldcore {

// What may be typed for an antenna, and what to tell the user otherwise.

/// The greatest height that is taken, metres: no pole and no tripod is higher, and a height in
/// centimetres is found out.
inline constexpr double kHighestAntennaM = 100.0;
inline constexpr std::size_t kMaxAntennaSerial = 16; ///< characters

/// @param text  a number of metres: digits with at most one point
/// @return what is wrong with it, in words; empty: it is 0 to kHighestAntennaM
[[nodiscard]] std::wstring AntennaHeightFault(const std::wstring& text);

/// @param text  letters, digits and "-" of ASCII; may be empty
/// @return what is wrong with it, in words; empty: nothing
[[nodiscard]] std::wstring AntennaSerialFault(const std::wstring& text);

} // namespace fieldcore
