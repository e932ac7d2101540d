#include "core/planning/PackedDegrees.h"

#include "core/platform/Degrees.h"
#include "core/platform/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

namespace fieldcore {

namespace {

std::wstring TakeDigits(std::wstring_view& text)
{
    constexpr std::wstring_view kDigits = L"0123456789";
    std::wstring digits(text.substr(0, text.find_first_not_of(kDigits)));
    text.remove_prefix(digits.size());
    return digits;
}

double Number(const std::wstring& digits)
{
    return ParseReal(digits.c_str());
}

} // namespace

double ParsePackedDegrees(std::wstring_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(L' '), text.size()));
    const bool negative = text.starts_with(L'-');
    if (negative || text.starts_with(L'+')) {
        text.remove_prefix(1);
    }
    const double degrees = Number(TakeDigits(text));
    std::wstring packed;
    if (text.starts_with(L'.')) {
        text.remove_prefix(1);
        packed = TakeDigits(text);
    }
    constexpr std::size_t kMinutesAndSeconds = 4; // digits
    packed.resize(std::max(packed.size(), kMinutesAndSeconds), L'0');
    const double minutes = Number(packed.substr(0, 2));
    const double seconds = Number(packed.substr(2, 2) + L'.' + packed.substr(4));
    const double angle = RadiansOf(degrees + minutes / 60.0 + seconds / 3600.0);
    return negative ? -angle : angle;
}

std::wstring FormatPackedDegrees(double angleRad, int decimals)
{
    const double degrees = std::isfinite(angleRad) ? DegreesOf(std::abs(angleRad)) : 0.0;
    // In units of the last decimal: then nothing can round up to 60.
    const std::int64_t unit = std::llround(std::pow(10.0, decimals));
    const std::int64_t count = std::llround(degrees * 3600.0 * static_cast<double>(unit));
    const std::int64_t seconds = count / unit;
    const auto whole = [](std::int64_t number, int width) {
        return FormatWhole(static_cast<std::uint32_t>(number), static_cast<std::size_t>(width));
    };
    std::wstring text = angleRad < 0.0 && count > 0 ? L"-" : L"";
    text += whole(seconds / 3600, 1) + L"." + whole(seconds / 60 % 60, 2) + whole(seconds % 60, 2);
    return decimals > 0 ? text + whole(count % unit, decimals) : text;
}

} // namespace fieldcore
