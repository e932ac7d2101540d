#include "cli/Utf8.h"

#include <optional>

namespace fieldcore::cli {

namespace {

bool IsWide(char32_t code)
{
    return (code >= 0x1100 && code < 0x1160) || (code >= 0x2E80 && code < 0xA4D0) ||
           (code >= 0xAC00 && code < 0xD7A4) || (code >= 0xF900 && code < 0xFB00) ||
           (code >= 0xFF01 && code < 0xFF61) || (code >= 0xFFE0 && code < 0xFFE7);
}

} // namespace

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
