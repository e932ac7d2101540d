#include "core/platform/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace fieldcore {

namespace {

constexpr char32_t kBeyondUnicode = 0x110000;

bool IsCharacter(char32_t code)
{
    return code < kBeyondUnicode && (code < 0xD800 || code > 0xDFFF);
}

bool IsControl(char32_t code)
{
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

} // namespace

void AppendUtf8(std::string& utf8, char32_t code)
{
    const auto tail = [code](unsigned shift) {
        return static_cast<char>(0x80U | ((code >> shift) & 0x3FU));
    };
    if (!IsCharacter(code)) {
        utf8 += '?';
    } else if (code < 0x80) {
        utf8 += static_cast<char>(code);
    } else if (code < 0x800) {
        utf8 += {static_cast<char>(0xC0U | (code >> 6U)), tail(0)};
    } else if (code < 0x10000) {
        utf8 += {static_cast<char>(0xE0U | (code >> 12U)), tail(6), tail(0)};
    } else {
        utf8 += {static_cast<char>(0xF0U | (code >> 18U)), tail(12), tail(6), tail(0)};
    }
}

std::optional<char32_t> TakeUtf8Character(std::string_view& utf8)
{
    const auto byte = [&utf8](std::size_t at) { return static_cast<std::uint8_t>(utf8[at]); };
    const std::uint8_t lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                                             : 4;
    char32_t code = length == 1 ? lead : lead & (0x7FU >> length);
    bool valid = length > 0 && length <= utf8.size();
    for (std::size_t at = 1; valid && at < length; ++at) {
        valid = (byte(at) & 0xC0U) == 0x80U;
        code = (code << 6U) | (byte(at) & 0x3FU);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000}; // by length
    valid = valid && IsCharacter(code) && code >= kSmallest[length];
    utf8.remove_prefix(valid ? length : 1);
    return valid ? std::optional(code) : std::nullopt;
}

std::string ToUtf8(std::wstring_view text)
{
    std::string utf8;
    utf8.reserve(text.size());
    for (const wchar_t unit : text) {
        AppendUtf8(utf8, static_cast<char32_t>(unit));
    }
    return utf8;
}

std::wstring FromUtf8(std::string_view utf8)
{
    std::wstring text;
    text.reserve(utf8.size());
    while (!utf8.empty()) {
        const auto byte = static_cast<std::uint8_t>(utf8.front());
        if (byte < 0x80) {
            text += static_cast<wchar_t>(byte);
            utf8.remove_prefix(1);
        } else {
            text += static_cast<wchar_t>(TakeUtf8Character(utf8).value_or(U'?'));
        }
    }
    return text;
}

std::string Printable(std::string_view utf8)
{
    std::string text;
    while (!utf8.empty()) {
        const std::optional<char32_t> code = TakeUtf8Character(utf8);
        AppendUtf8(text, code && !IsControl(*code) ? *code : U'?');
    }
    return text;
}

} // namespace fieldcore
