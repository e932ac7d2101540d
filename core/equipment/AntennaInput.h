#pragma once

#include "core/input/Check.h"

#include <cstddef>
#include <string>

namespace fieldcore {

// What may be typed for an antenna, and what to tell the user otherwise.

/// The greatest height that is taken, metres: no pole and no tripod is higher, and a height in
/// centimetres is found out.
inline constexpr double kHighestAntennaM = 100.0;
inline constexpr std::size_t kMaxAntennaSerial = 16; ///< characters

/// The checker of heights as they are typed: numbers from 0 to kHighestAntennaM. It takes a text
/// without any digit for 0.
/// @param host  shows the messages; must outlive the checker
[[nodiscard]] CCheck AntennaHeightCheck(Host& host = DefaultHost());

/// The same without a message, and a height has a digit.
/// @param text  a number of metres
/// @return what is wrong with it, in a few words for beside the text; empty: nothing
[[nodiscard]] std::wstring AntennaHeightFault(const std::wstring& text);

/// @param text  letters, digits and "-" of ASCII; may be empty
/// @return what is wrong with it, in words; empty: nothing
[[nodiscard]] std::wstring AntennaSerialFault(const std::wstring& text);

} // namespace fieldcore
