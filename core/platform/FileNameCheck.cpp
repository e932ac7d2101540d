#include "core/platform/FileNameCheck.h"

#include "core/platform/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace fieldcore {

namespace {

constexpr std::size_t kMostBytes = 255;
constexpr std::wstring_view kSpecial = L"/\\:*?\"<>|";
constexpr std::array<std::wstring_view, 6> kDevices{L"CON", L"PRN",    L"AUX",
                                                    L"NUL", L"CONIN$", L"CONOUT$"};

bool IsControl(wchar_t c)
{
    const auto code = static_cast<char32_t>(c);
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

bool IsNoCharacter(wchar_t c)
{
    const auto code = static_cast<char32_t>(c);
    return (code >= 0xD800 && code < 0xE000) || code > 0x10FFFF;
}

/// COM and LPT count with any digit, the raised ones included.
bool IsDevice(std::wstring_view name)
{
    std::wstring base(name.substr(0, name.find(L'.')));
    base.resize(base.find_last_not_of(L' ') + 1);
    std::transform(base.begin(), base.end(), base.begin(), [](wchar_t c) {
        return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
    });
    if (base.size() == 4 && (base.starts_with(L"COM") || base.starts_with(L"LPT"))) {
        return std::wstring_view(L"0123456789\u00B9\u00B2\u00B3").find(base[3]) !=
               std::wstring_view::npos;
    }
    return std::find(kDevices.begin(), kDevices.end(), base) != kDevices.end();
}

} // namespace

bool IsPlainFileName(std::wstring_view name)
{
    const bool framed =
        !name.empty() && name.front() != L' ' && name.back() != L' ' && name.back() != L'.';
    return framed && name.find_first_of(kSpecial) == std::wstring_view::npos &&
           std::none_of(name.begin(), name.end(), IsControl) &&
           std::none_of(name.begin(), name.end(), IsNoCharacter) && !IsDevice(name) &&
           ToUtf8(name).size() <= kMostBytes;
}

} // namespace fieldcore
