#include "core/planning/PackedDegrees.h"

#include "core/platform/NumberText.h"

#include <algorithm>
#include <cstddef>
#include <numbers>
#include <string>

namespace fieldcore {

namespace {

std::wstring TakeDigits(std::wstring_view& text)
{
    constexpr std::wstring_view kDigits = L"0123456789";
    const std::wstring digits(text.substr(0, text.find_first_not_of(kDigits)));
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
    const double angle = (degrees + minutes / 60.0 + seconds / 3600.0) * (std::numbers::pi / 180.0);
    return negative ? -angle : angle;
}

} // namespace fieldcore
