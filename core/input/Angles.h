#pragma once

#include <cstdint>
#include <string>

namespace fieldcore {

/// Splits an angle into degrees, minutes and seconds, rounded half up in the last decimal.
///
/// The sign goes with the degrees alone: a negative angle of less than one degree loses it, and
/// one whose seconds round up to a full degree moves one degree towards zero. Both are kept on
/// purpose. The fraction is cut, not rounded again: a product that comes out a hair below a whole
/// number shows the number below.
///
/// @param angleRad  radians; NaN gives zeros, and an angle of more degrees than fit gives the
/// largest number of degrees (with its sign) and zeros
/// @param degrees   whole degrees, with the sign
/// @param minutes   0 to 59
/// @param seconds   whole seconds, 0 to 59
/// @param fraction  the rest of the seconds in units of 10^-decimals s; from 10 decimals on it
/// stops at 2^32 - 1
/// @param decimals  of the seconds
void RADtoDEGInt(double angleRad, std::int32_t& degrees, std::uint8_t& minutes,
                 std::uint8_t& seconds, std::uint32_t& fraction, std::uint8_t decimals);

/// Text of an angle in degrees, minutes and seconds.
///
/// @param style  0: 135-07-04.50000; other: 135ﾟ07'04".50000, with U+FF9F for the degree sign
/// @param decimals  digits of the fraction; with 0 it is still written, by its digits alone
[[nodiscard]] std::wstring GetDegFormat(std::int32_t degrees, std::uint8_t minutes,
                                        std::uint8_t seconds, std::uint32_t fraction, int style,
                                        std::uint8_t decimals);

/// The same into a buffer of the caller.
/// @param text  room for the text and its terminator: 32 characters do up to 9 decimals
void GetDegFormat(wchar_t* text, std::int32_t degrees, std::uint8_t minutes, std::uint8_t seconds,
                  std::uint32_t fraction, int style, std::uint8_t decimals);

/// Text of an angle in radians: RADtoDEGInt() and GetDegFormat().
[[nodiscard]] std::wstring RADtoDEGStr(double angleRad, int style, std::uint8_t decimals);

/// The same into a buffer of the caller, see GetDegFormat().
void RADtoDEGStr(double angleRad, wchar_t* text, int style, std::uint8_t decimals);

} // namespace fieldcore
