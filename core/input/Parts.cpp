#include "core/input/Parts.h"

#include "core/platform/NumberText.h"
#include "core/platform/SaturateCast.h"

#include <cmath>
#include <cstddef>

namespace fieldcore {

double CParts::atof(const std::wstring& text)
{
    return ParseReal(text.c_str());
}

double CParts::atof(const wchar_t* text)
{
    return ParseReal(text);
}

double CParts::round(double value, std::uint8_t decimals)
{
    if (std::isnan(value)) {
        return value;
    }
    const double sign = value < 0.0 ? -1.0 : 1.0;
    const double magnitude = std::fabs(value);
    const auto scaled =
        SaturateCast<std::uint32_t>(std::floor(magnitude * std::pow(10.0, decimals) + 0.5));

    // One digit at least stands before the point.
    std::wstring digits = FormatWhole(scaled, decimals + std::size_t{1});
    digits.insert(digits.size() - decimals, 1, L'.');
    return atof(digits) * sign;
}

std::wstring CParts::Round(double value, std::uint8_t decimals)
{
    constexpr std::uint8_t kRoundedFirst = 3;
    return FormatFixed(round(value, kRoundedFirst), decimals);
}

double CParts::RoundNega(double a, double b, std::uint8_t decimals)
{
    return round(round(a, decimals) - round(b, decimals), decimals);
}

double CParts::RoundAve(double a, double b, std::uint8_t decimals)
{
    return round((round(a, decimals) + round(b, decimals)) / 2.0, decimals);
}

const wchar_t* CParts::GetRtkSec(std::uint32_t surveyType, int rover)
{
    if (rover == 0) {
        return L"RtkRef";
    }
    switch (surveyType) {
    case 2:
        return L"RtkKijun";
    case 4:
        return L"2Set";
    case 8:
        return L"Calib";
    case 32:
        return L"1Set";
    case 256:
        return L"RtkDGPS";
    case 512:
        return L"Single";
    case 4096:
        return L"SokuLine";
    default:
        return L"RtkRov";
    }
}

const wchar_t* CParts::GetPostSec(std::uint32_t surveyType)
{
    switch (surveyType) {
    case 2:
        return L"FStatic";
    case 4:
        return L"KinemaRef";
    case 8:
        return L"KinemaRov";
    default:
        return L"Static";
    }
}

} // namespace fieldcore
