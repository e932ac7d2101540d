#include "core/platform/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cwchar>
#include <limits>

#include <locale.h>
#include <wchar.h>

namespace fieldcore {

namespace {

// The longest text of a double: sign, all its digits, point, 255 decimals.
constexpr std::size_t kLongestReal = 1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + 255;

locale_t CLocale()
{
    // Lives as long as the process: it belongs to every thread.
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", locale_t{});
    return locale;
}

/// std::to_chars is defined as printf in the "C" locale.
std::wstring Format(double value, std::chars_format format, int precision)
{
    std::array<char, kLongestReal> text;
    const std::to_chars_result end =
        std::to_chars(text.data(), text.data() + text.size(), value, format, precision);
    return {text.data(), end.ptr};
}

} // namespace

double ParseReal(const wchar_t* text)
{
    return text != nullptr ? wcstod_l(text, nullptr, CLocale()) : 0.0;
}

int ParseWhole(const wchar_t* text)
{
    const long number = text != nullptr ? std::wcstol(text, nullptr, 10) : 0;
    return static_cast<int>(
        std::clamp<long>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

std::wstring FormatFixed(double value, std::uint8_t decimals)
{
    return Format(value, std::chars_format::fixed, decimals);
}

std::wstring FormatWhole(std::uint32_t number, std::size_t width)
{
    std::wstring digits = std::to_wstring(number);
    if (digits.size() < width) {
        digits.insert(0, width - digits.size(), L'0');
    }
    return digits;
}

std::wstring FormatGeneral(double value)
{
    constexpr int kDigits = 6;
    return Format(value, std::chars_format::general, kDigits);
}

} // namespace fieldcore
