#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace fieldcore {

/// The receiver's and the old files' text: code page 932. Conversion never fails and never
/// allocates more than its result. Any thread.

/// Bytes to text. A byte pair cut at the end, a pair without a character, and any byte that means
/// nothing (0x80, 0xA0, 0xFD to 0xFF) becomes one "?"; an ASCII byte behind such a lead byte
/// stands for itself. NUL is kept. Duplicate characters of the code page read alike.
[[nodiscard]] std::wstring FromCp932(std::string_view bytes);

/// Text to bytes. Characters that other systems write for the same sign are first brought to the
/// form that the code page has (wave dash, double vertical line, minus, cent, pound, not sign,
/// em dash); a character without a CP932 form becomes one "?". The yen sign U+00A5 and the
/// overline U+203E are such characters: they never turn into a backslash or a tilde.
[[nodiscard]] std::string ToCp932(std::wstring_view text);

/// Text to exactly @p width bytes: cut on a character boundary, blank-filled on the right.
[[nodiscard]] std::string ToCp932Field(std::wstring_view text, std::size_t width);

} // namespace fieldcore
