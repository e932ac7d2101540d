#include "core/equipment/FileTexts.h"

#include "core/input/Parts.h"
#include "core/link/DirectoryListing.h"
#include "core/platform/Calendar.h"
#include "core/platform/NumberText.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace fieldcore {

namespace {

constexpr int kFirstYearOf1900s = 80;
constexpr double kUnit = 1024.0;
constexpr double kMostKilobytes = 1000.0;
constexpr std::uint64_t kKilobyte = 1024;
constexpr std::uint64_t kMegabyte = 1024 * kKilobyte;
constexpr std::uint32_t kUsualRate = 9600;
constexpr std::uint64_t kBitsPerByte = 10; // with start and stop bit

std::chrono::year_month_day DayOf(std::uint32_t seconds)
{
    return std::chrono::floor<std::chrono::days>(kGpsEpoch + std::chrono::seconds(seconds));
}

std::wstring WithMonthAndDay(int year, wchar_t between, std::chrono::year_month_day date)
{
    return FormatWhole(static_cast<std::uint32_t>(year), 2) + between +
           FormatWhole(static_cast<unsigned>(date.month()), 2) + between +
           FormatWhole(static_cast<unsigned>(date.day()), 2);
}

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

std::wstring FileRowName(std::wstring_view name)
{
    return std::wstring(name.substr(0, std::min(name.find(L'.'), kLongestFileName)));
}

std::wstring FileDateText(std::uint32_t seconds)
{
    const std::chrono::year_month_day date = DayOf(seconds);
    const int year = static_cast<int>(date.year());
    return WithMonthAndDay(year < 2000 ? year - 1900 : year - 2000, L'/', date);
}

std::wstring DateFolderName(std::uint32_t seconds)
{
    const std::chrono::year_month_day date = DayOf(seconds);
    const int year = static_cast<int>(date.year()) % 100;
    return WithMonthAndDay(year + (year >= kFirstYearOf1900s ? 1900 : 2000), L'-', date);
}

std::wstring FileTimeText(std::uint32_t seconds)
{
    const std::uint32_t minutes = seconds / 60;
    return FormatWhole(minutes / 60 % 24, 2) + L":" + FormatWhole(minutes % 60, 2);
}

std::wstring FileSizeText(double bytes)
{
    const double kilobytes = std::abs(bytes) / kUnit;
    if (kilobytes < kMostKilobytes) {
        return CParts::Round(kilobytes, 1);
    }
    return CParts::Round(kilobytes / kUnit, 1) + L"M";
}

const wchar_t* FileSizeUnit(std::wstring_view sizeText)
{
    return sizeText.ends_with(L'M') ? L"B" : L" KB";
}

const wchar_t* FileExtension(bool q02Format, double version, bool live)
{
    if (q02Format) {
        return L".Q02";
    }
    if (version >= 1.0 && version < 2.0) {
        return live ? L".Q00" : L".Q0D";
    }
    return live ? L".Q01" : L".Q1D";
}

std::wstring TotalSizeText(std::uint64_t bytes)
{
    if (bytes < kKilobyte) {
        return Text(text::kTotalBelowKilobyte);
    }
    const bool small = bytes < kMegabyte;
    const std::uint64_t unit = small ? kKilobyte : kMegabyte;
    return FormatText(small ? text::kTotalKilobytes : text::kTotalMegabytes,
                      static_cast<unsigned long long>((bytes + unit / 2) / unit));
}

std::wstring TransferTimeText(std::uint64_t bytes, std::uint32_t bitsPerSecond)
{
    const std::uint32_t rate = bitsPerSecond != 0 ? bitsPerSecond : kUsualRate;
    const auto seconds = static_cast<unsigned long long>(bytes * kBitsPerByte / rate);
    if (seconds < 10) {
        return Text(text::kTimeBelowTenSeconds);
    }
    if (seconds < 50) {
        return FormatText(text::kTimeTensOfSeconds, seconds / 10 + 1);
    }
    return FormatText(text::kTimeMinutes, seconds / 60 + 1);
}

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
