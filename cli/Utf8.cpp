#include "cli/Utf8.h"

#include <optional>

namespace fieldcore::cli {

namespace {

bool IsControl(char32_t code)
{
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

bool IsWide(char32_t code)
{
    return (code >= 0x1100 && code < 0x1160) || (code >= 0x2E80 && code < 0xA4D0) ||
           (code >= 0xAC00 && code < 0xD7A4) || (code >= 0xF900 && code < 0xFB00) ||
           (code >= 0xFF01 && code < 0xFF61) || (code >= 0xFFE0 && code < 0xFFE7);
}

} // namespace

std::string Printable(std::string_view utf8)
{
    std::string text;
    while (!utf8.empty()) {
        const std::optional<char32_t> code = TakeUtf8Character(utf8);
        AppendUtf8(text, code && !IsControl(*code) ? *code : U'?');
    }
    return text;
}

std::size_t DisplayWidth(std::string_view utf8)
{
    std::size_t width = 0;
    while (!utf8.empty()) {
        const std::optional<char32_t> code = TakeUtf8Character(utf8);
        width += code && IsWide(*code) ? 2U : 1U;
    }
    return width;
}

} // namespace fieldcore::cli
