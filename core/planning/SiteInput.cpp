#include "core/planning/SiteInput.h"

#include "core/input/Check.h"
#include "core/planning/PackedDegrees.h"
#include "core/platform/Cp932.h"
#include "core/platform/NumberText.h"
#include "core/resources/StringTable.h"

#include <string_view>

namespace fieldcore {

namespace {

constexpr std::size_t kMostName = 60;
constexpr std::wstring_view kDigits = L"0123456789";

std::wstring Trimmed(std::wstring_view text)
{
    constexpr std::wstring_view kBlanks = L" \t\u3000";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::wstring_view::npos
               ? std::wstring()
               : std::wstring(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

/// A number within limits. That of a site has a digit before its point, too, and not more of them
/// than a coordinate can have.
bool IsNumber(const std::wstring& text, double lowest, double highest)
{
    constexpr std::size_t kMostCharacters = 21;
    const std::size_t first = text.find_first_of(kDigits);
    return first != std::wstring::npos && first < text.find(L'.') &&
           text.size() <= kMostCharacters &&
           CCheck(lowest, highest).CheckNum(text, nullptr, 0, 0) == 1;
}

/// Whether the two digits at @p place behind the point, where there are any, are below 60.
bool IsSexagesimal(std::wstring_view text, std::size_t place)
{
    const std::size_t point = text.find(L'.');
    const std::size_t at = point + 1 + place;
    return point == std::wstring_view::npos || at >= text.size() || text[at] < L'6';
}

std::optional<double> ReadAngle(const std::wstring& text, double mostDeg)
{
    if (!IsNumber(text, -mostDeg, mostDeg) || !IsSexagesimal(text, 0) || !IsSexagesimal(text, 2)) {
        return std::nullopt;
    }
    return ParsePackedDegrees(text);
}

bool IsName(const std::wstring& name)
{
    return !name.empty() && name.size() <= kMostName &&
           name.find_first_of(L"[]\r\n\0", 0, 5) == std::wstring::npos &&
           FromCp932(ToCp932(name)) == name;
}

} // namespace

std::optional<SiteFault> CheckSite(const SiteInput& input, ListedSite& site)
{
    constexpr double kPole = 90.0;
    constexpr double kDateLine = 180.0;
    constexpr double kLowest = -1000.0;
    constexpr double kHighest = 10000.0;
    ListedSite read;
    read.name = Trimmed(input.name);
    if (read.name.empty()) {
        return SiteFault{SiteField::Name, text::kSiteNoName};
    }
    if (!IsName(read.name)) {
        return SiteFault{SiteField::Name, text::kSiteBadName};
    }
    const std::optional<double> latitude = ReadAngle(Trimmed(input.latitude), kPole);
    if (!latitude) {
        return SiteFault{SiteField::Latitude, text::kSiteBadLatitude};
    }
    const std::optional<double> longitude = ReadAngle(Trimmed(input.longitude), kDateLine);
    if (!longitude) {
        return SiteFault{SiteField::Longitude, text::kSiteBadLongitude};
    }
    const std::wstring height = Trimmed(input.height);
    if (!IsNumber(height, kLowest, kHighest)) {
        return SiteFault{SiteField::Height, text::kSiteBadHeight};
    }
    read.observer = {*latitude, *longitude, ParseReal(height.c_str())};
    site = read;
    return std::nullopt;
}

SiteInput InputOf(const ListedSite& site)
{
    constexpr int kSecondsDecimals = 5;
    constexpr std::uint8_t kHeightDecimals = 3;
    return {site.name, FormatPackedDegrees(site.observer.latitudeRad, kSecondsDecimals),
            FormatPackedDegrees(site.observer.longitudeRad, kSecondsDecimals),
            FormatFixed(site.observer.heightM, kHeightDecimals)};
}

} // namespace fieldcore
