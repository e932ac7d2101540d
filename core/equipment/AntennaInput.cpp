#include "core/equipment/AntennaInput.h"

#include "core/input/Parts.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <string_view>

namespace fieldcore {

namespace {

bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

/// Digits, one point at most, and a sign in front; with one digit at least.
bool IsNumber(std::wstring_view text)
{
    if (!text.empty() && (text.front() == L'-' || text.front() == L'+')) {
        text.remove_prefix(1);
    }
    const auto digits = std::count_if(text.begin(), text.end(), IsDigit);
    const auto points = std::count(text.begin(), text.end(), L'.');
    return digits > 0 && points <= 1 && digits + points == static_cast<std::ptrdiff_t>(text.size());
}

} // namespace

std::wstring AntennaHeightFault(const std::wstring& text)
{
    if (!IsNumber(text)) {
        return Text(text::kAntennaBadHeight);
    }
    const double heightM = CParts::atof(text);
    if (heightM < 0.0) {
        return Text(text::kAntennaNegativeHeight);
    }
    return heightM > kHighestAntennaM ? FormatText(text::kAntennaHighHeight, kHighestAntennaM)
                                      : std::wstring();
}

std::wstring AntennaSerialFault(const std::wstring& text)
{
    const bool isGood =
        text.size() <= kMaxAntennaSerial && std::all_of(text.begin(), text.end(), [](wchar_t c) {
            return IsDigit(c) || c == L'-' || (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
        });
    return isGood ? std::wstring()
                  : FormatText(text::kAntennaBadSerial, static_cast<int>(kMaxAntennaSerial));
}

} // namespace fieldcore
