#pragma once

#include "core/planning/ListedSite.h"
#include "core/platform/TextError.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore {

struct SitesCsv
{
    std::vector<ListedSite> sites; ///< after an error none
    std::optional<TextError> error;
};

/// Reads sites from comma-separated values, one a line: name, latitude, longitude and, where known,
/// height; degrees with decimals, north and east positive, and metres above the ellipsoid (0 if not
/// given). A first line without numbers holds titles. A name may stand in quotes. The text is
/// UTF-8, with or without its mark, or CP932.
///
/// Any bytes may be given. An error names the line: a name that is empty or given twice, a field
/// that is no number, a place that is none, more than 10,000 sites or a megabyte. Any thread.
[[nodiscard]] SitesCsv ParseSitesCsv(std::string_view text);

/// The same with the text of @p file. An error if there is no such regular file.
[[nodiscard]] SitesCsv LoadSitesCsv(const std::filesystem::path& file);

} // namespace fieldcore
