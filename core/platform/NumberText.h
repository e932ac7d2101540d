#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace fieldcore {

/// Numbers as text with a decimal point, whatever the language of the user's session: a decimal
/// comma would change files and figures. All numbers of the library are read and written with
/// these. Any thread.

/// The number at the start of @p text, as the C library reads it: leading white space is
/// skipped, what follows the number is ignored, and "inf", "nan" and hexadecimal numbers count as
/// numbers too. Input that a person types is checked before it gets here.
/// @param text  zero-terminated; a null pointer is read like an empty text
/// @return 0.0 if there is no number; an infinity if it is too large for a double
[[nodiscard]] double ParseReal(const wchar_t* text);

/// The decimal whole number at the start of @p text: leading white space is skipped, what follows
/// the digits is ignored, so that "40.7" is 40.
/// @param text  zero-terminated; a null pointer is read like an empty text
/// @return 0 if there is no number; the nearest int if there are too many digits
[[nodiscard]] int ParseWhole(const wchar_t* text);

/// The number that @p text is from its first to its last character; nothing if it is anything else
/// or beyond what a Number holds.
/// @param base  of a whole number, whose digits have no prefix
template <typename Number>
[[nodiscard]] std::optional<Number> NumberOf(std::string_view text, int base = 10)
{
    Number number{};
    const char* const end = text.data() + text.size();
    std::from_chars_result read{};
    if constexpr (std::is_integral_v<Number>) {
        read = std::from_chars(text.data(), end, number, base);
    } else {
        read = std::from_chars(text.data(), end, number);
    }
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

/// As printf's "%.*f": the decimal nearest to the exact value of the double, ties to even.
/// @param decimals  digits behind the point; with none there is no point either
[[nodiscard]] std::wstring FormatFixed(double value, std::uint8_t decimals);

/// As printf's "%0*u".
/// @param width  digits at least, zeros are put in front
[[nodiscard]] std::wstring FormatWhole(std::uint32_t number, std::size_t width);

/// As printf's "%g": six significant digits.
[[nodiscard]] std::wstring FormatGeneral(double value);

} // namespace fieldcore
