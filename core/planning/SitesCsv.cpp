#include "core/planning/SitesCsv.h"

#include "core/planning/Geodesy.h"
#include "core/platform/Cp932.h"
#include "core/platform/Degrees.h"
#include "core/platform/TextLines.h"
#include "core/platform/Utf8.h"
#include "core/platform/WholeFile.h"

#include <cstddef>
#include <set>

namespace fieldcore {

namespace {

constexpr std::size_t kMostSites = 10000;

struct Column
{
    std::string_view name;
    FieldRange range;
};

constexpr Column kColumns[] = {
    {"latitude", {-90.0, 90.0, false, "-90 to 90 degrees"}},
    {"longitude", {-360.0, 360.0, false, "-360 to 360 degrees"}},
    {"height", {-1e5, 1e8, false, "metres above the ellipsoid"}},
};

/// @return the fields of a line, each without white space around it, quotes taken off
std::vector<std::string> FieldsOf(std::string_view line)
{
    std::vector<std::string> fields(1);
    bool isQuoted = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char c = line[at];
        if (c == '"') {
            const bool isDoubled = isQuoted && at + 1 < line.size() && line[at + 1] == '"';
            if (isDoubled) {
                fields.back() += c;
                ++at;
            } else {
                isQuoted = !isQuoted;
            }
        } else if (c == ',' && !isQuoted) {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    for (std::string& field : fields) {
        field = std::string(Trimmed(field));
    }
    return fields;
}

/// Whether the bytes are UTF-8 from end to end.
bool IsUtf8(std::string_view text)
{
    while (!text.empty()) {
        if (!TakeUtf8Character(text)) {
            return false;
        }
    }
    return true;
}

bool HasNumbers(const std::vector<std::string>& fields)
{
    double ignored = 0.0;
    for (std::size_t at = 1; at < fields.size(); ++at) {
        if (!ReadNumber(fields[at], {-1e300, 1e300, false, ""}, ignored)) {
            return true;
        }
    }
    return false;
}

std::optional<TextError> ReadSite(const std::vector<std::string>& fields, int line,
                                  ListedSite& site)
{
    if (fields.size() < 3 || fields.size() > 4) {
        return TextError{line, "", "a site is name, latitude, longitude and, where known, height"};
    }
    if (fields[0].empty()) {
        return TextError{line, "name", "it is empty"};
    }
    double numbers[3] = {0.0, 0.0, 0.0};
    for (std::size_t at = 1; at < fields.size(); ++at) {
        const Column& column = kColumns[at - 1];
        if (at == 3 && fields[at].empty()) {
            continue;
        }
        if (const auto fault = ReadNumber(fields[at], column.range, numbers[at - 1])) {
            return TextError{line, std::string(column.name), *fault};
        }
    }
    const GeodeticPosition place{RadiansOf(numbers[0]), RadiansOf(numbers[1]), numbers[2]};
    if (!IsPlace(place)) {
        return TextError{line, "", "the coordinates are no place on Earth"};
    }
    site.observer = {place.latitudeRad, place.longitudeRad, place.heightM};
    return std::nullopt;
}

SitesCsv Refused(TextError error)
{
    SitesCsv result;
    result.error = std::move(error);
    return result;
}

} // namespace

SitesCsv ParseSitesCsv(std::string_view text)
{
    if (text.size() > kMostText) {
        return Refused({0, "", "longer than a megabyte: this is no list of sites"});
    }
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (text.starts_with(kMark)) {
        text.remove_prefix(kMark.size());
    }
    const bool isUtf8 = IsUtf8(text);
    SitesCsv result;
    std::set<std::wstring> names;
    TextLines lines(text);
    bool isFirst = true;
    while (const std::optional<std::string_view> line = lines.Next()) {
        if (line->empty()) {
            continue;
        }
        const std::vector<std::string> fields = FieldsOf(*line);
        const bool isTitle = isFirst && !HasNumbers(fields);
        isFirst = false;
        if (isTitle) {
            continue;
        }
        ListedSite site;
        if (std::optional<TextError> error = ReadSite(fields, lines.Number(), site)) {
            return Refused(std::move(*error));
        }
        site.name = isUtf8 ? FromUtf8(fields[0]) : FromCp932(fields[0]);
        if (!names.insert(site.name).second) {
            return Refused({lines.Number(), "name", "this site is given twice"});
        }
        if (result.sites.size() == kMostSites) {
            return Refused({lines.Number(), "", "more than 10000 sites"});
        }
        result.sites.push_back(std::move(site));
    }
    if (result.sites.empty()) {
        return Refused({0, "", "there is no site in it"});
    }
    return result;
}

SitesCsv LoadSitesCsv(const std::filesystem::path& file)
{
    const auto content = ReadWholeFile(file, kMostText + 1);
    if (!content) {
        return Refused({0, "", "it cannot be read, or is no file"});
    }
    return ParseSitesCsv({reinterpret_cast<const char*>(content->data()), content->size()});
}

} // namespace fieldcore
