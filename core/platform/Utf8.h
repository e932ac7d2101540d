#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fieldcore {

/// UTF-8 as files and other programs keep text. Conversion never fails. Any thread.

/// Text as UTF-8; a surrogate or a number beyond Unicode becomes "?".
[[nodiscard]] std::string ToUtf8(std::wstring_view text);

/// UTF-8 as text; each byte that is no part of a character becomes "?".
[[nodiscard]] std::wstring FromUtf8(std::string_view utf8);

/// Appends one character; a surrogate or a number beyond Unicode becomes "?".
void AppendUtf8(std::string& utf8, char32_t code);

/// Takes the first character off @p utf8, which is not empty.
/// @return nothing, with one byte taken, if the bytes are no UTF-8
[[nodiscard]] std::optional<char32_t> TakeUtf8Character(std::string_view& utf8);

/// UTF-8 that is safe to show: control characters, which a receiver or a log could
/// smuggle in, and bytes that are no UTF-8 become "?".
[[nodiscard]] std::string Printable(std::string_view utf8);

} // namespace fieldcore
