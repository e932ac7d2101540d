#pragma once

#include "core/planning/ListedSite.h"
#include "core/planning/LocalFrame.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fieldcore {

// The sites of the plan: "GSurveyPlan.ini" in the program's folder, a profile file with a section
// for each site, "LAT" and "LON" as DD.MMSSsss and "HGT" in metres above the ellipsoid.

[[nodiscard]] std::filesystem::path SitesPath(const std::filesystem::path& folder);

/// The names of all sites of the file, in its order.
[[nodiscard]] std::vector<std::wstring> SiteNames(const std::filesystem::path& folder);

[[nodiscard]] bool HasSite(const std::filesystem::path& folder, std::wstring_view name);

/// What the file says of one site.
struct SiteEntry
{
    std::optional<double> latitudeRad;
    std::optional<double> longitudeRad;
    std::optional<double> heightM;

    /// Whether all of it is there, or nothing.
    [[nodiscard]] bool IsComplete() const { return latitudeRad && longitudeRad && heightM; }
    [[nodiscard]] bool IsEmpty() const { return !latitudeRad && !longitudeRad && !heightM; }
};
[[nodiscard]] SiteEntry ReadSite(const std::filesystem::path& folder, std::wstring_view name);
/// All sites with their names, in the order of the file, in one pass.
[[nodiscard]] std::vector<std::pair<std::wstring, SiteEntry>>
ReadSites(const std::filesystem::path& folder);

/// Stores a site: a new one behind the others, a known one with its coordinates replaced.
/// @return 1, or 0 with the file as it was: it cannot be written, or the name cannot be a section
int WriteSite(const std::filesystem::path& folder, std::wstring_view name,
              const Observer& observer);

/// Stores a list of sites, all or none: known ones with their coordinates replaced, the others
/// behind them.
/// @return 1, or 0 with the file as it was: see WriteSite(), or a name is there twice
int WriteSites(const std::filesystem::path& folder, std::span<const ListedSite> sites);

/// Stores a site that had another name before.
/// @param name  of before; the same as the new one: only the coordinates change
/// @return 1, or 0 with the file as it was: see WriteSite(), or the new name is another site's; a
/// site that is not there any more is stored anew
int ChangeSite(const std::filesystem::path& folder, std::wstring_view name, const ListedSite& site);

/// @return 1, or 0 with the file as it was: there is no such site, or the file cannot be written
int RemoveSite(const std::filesystem::path& folder, std::wstring_view name);

/// Makes the site file with the sample sites in it, if there is none yet: a program that begins
/// does that, so that the site of a new user is there.
/// @return 1 if the file is there now, else 0
int InstallSampleSites(const std::filesystem::path& folder);

/// Moves @p observer to a site of the file, as the plan's screen has always done: a missing
/// latitude is 35 degrees, a missing longitude 139 degrees, and a missing height puts 50.0 into the
/// latitude and leaves the height as it was. Whoever wants to know what is missing asks
/// ReadSite().
void ReadPosition(const std::filesystem::path& folder, std::wstring_view name, Observer& observer);

} // namespace fieldcore
