#include "core/equipment/AmountTexts.h"

#include "core/platform/NumberText.h"

#include <algorithm>
#include <array>

namespace fieldcore {

namespace {

constexpr double kUnit = 1024.0;
constexpr std::array kUnits{L" B", L" KB", L" MB", L" GB", L" TB"};

std::wstring AmountText(double bytes)
{
    std::size_t unit = 0;
    // What would round to four digits takes the next unit.
    for (; bytes >= 999.5 && unit + 1 < kUnits.size(); ++unit) {
        bytes /= kUnit;
    }
    const std::uint8_t decimals = unit == 0 || bytes >= 99.95 ? 0 : bytes >= 9.995 ? 1 : 2;
    return FormatFixed(bytes, decimals) + kUnits.at(unit);
}

} // namespace

std::wstring ByteCountText(std::uint64_t bytes)
{
    return AmountText(static_cast<double>(bytes));
}

std::wstring ByteRateText(double bytesPerSecond)
{
    constexpr double kMost = 1e15;
    if (!(bytesPerSecond > 0.0)) {
        return L"--";
    }
    return AmountText(std::min(bytesPerSecond, kMost)) + L"/s";
}

} // namespace fieldcore
