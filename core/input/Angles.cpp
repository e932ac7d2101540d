#include "core/input/Angles.h"

#include "core/platform/NumberText.h"
#include "core/platform/SaturateCast.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace fieldcore {

namespace {

constexpr wchar_t kDegreeMark = L'\uFF9F';

void CopyInto(wchar_t* buffer, const std::wstring& text)
{
    text.copy(buffer, text.size());
    buffer[text.size()] = L'\0';
}

} // namespace

void RADtoDEGInt(double angleRad, std::int32_t& degrees, std::uint8_t& minutes,
                 std::uint8_t& seconds, std::uint32_t& fraction, std::uint8_t decimals)
{
    degrees = 0;
    minutes = 0;
    seconds = 0;
    fraction = 0;
    if (angleRad == 0.0) {
        return;
    }
    const bool positive = angleRad > 0.0;
    // The order of these operations decides the last digit.
    double s = (positive ? angleRad : -angleRad) * 3600.0 * 180.0 / std::numbers::pi;

    degrees = SaturateCast<std::int32_t>(std::floor(s / 3600.0));
    const bool tooLarge = degrees == std::numeric_limits<std::int32_t>::max();
    s -= 3600.0 * degrees;
    degrees = positive ? degrees : -degrees;
    if (tooLarge) {
        return;
    }
    minutes = SaturateCast<std::uint8_t>(std::floor(s / 60.0));
    s -= 60.0 * minutes;

    const double scale = std::pow(10.0, decimals);
    const double rounded = std::floor(s * scale + 0.5) * std::pow(0.1, decimals);
    seconds = SaturateCast<std::uint8_t>(std::floor(rounded));
    fraction = SaturateCast<std::uint32_t>((rounded - seconds) * scale);

    if (seconds >= 60) {
        ++minutes;
        seconds = static_cast<std::uint8_t>(seconds - 60);
    }
    if (minutes >= 60) {
        ++degrees;
        minutes = static_cast<std::uint8_t>(minutes - 60);
    }
}

std::wstring GetDegFormat(std::int32_t degrees, std::uint8_t minutes, std::uint8_t seconds,
                          std::uint32_t fraction, int style, std::uint8_t decimals)
{
    const bool plain = style == 0;
    std::wstring text = std::to_wstring(degrees);
    text += plain ? L'-' : kDegreeMark;
    text += FormatWhole(minutes, 2);
    text += plain ? L'-' : L'\'';
    text += FormatWhole(seconds, 2);
    text += plain ? L"." : L"\".";
    text += FormatWhole(fraction, decimals);
    return text;
}

void GetDegFormat(wchar_t* text, std::int32_t degrees, std::uint8_t minutes, std::uint8_t seconds,
                  std::uint32_t fraction, int style, std::uint8_t decimals)
{
    CopyInto(text, GetDegFormat(degrees, minutes, seconds, fraction, style, decimals));
}

std::wstring RADtoDEGStr(double angleRad, int style, std::uint8_t decimals)
{
    std::int32_t degrees = 0;
    std::uint8_t minutes = 0;
    std::uint8_t seconds = 0;
    std::uint32_t fraction = 0;
    RADtoDEGInt(angleRad, degrees, minutes, seconds, fraction, decimals);
    return GetDegFormat(degrees, minutes, seconds, fraction, style, decimals);
}

void RADtoDEGStr(double angleRad, wchar_t* text, int style, std::uint8_t decimals)
{
    CopyInto(text, RADtoDEGStr(angleRad, style, decimals));
}

} // namespace fieldcore
