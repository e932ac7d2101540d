#include "core/planning/PlanSite.h"

#include "core/planning/PackedDegrees.h"
#include "core/planning/SampleSites.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/Cp932.h"
#include "core/platform/Folders.h"
#include "core/platform/NumberText.h"
#include "core/settings/Profile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <span>
#include <system_error>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

/// The entries of a site, with their texts. Stays where it is made.
struct SiteLines
{
    explicit SiteLines(const Observer& observer)
        : latitude(FormatPackedDegrees(observer.latitudeRad, kSecondsDecimals)),
          longitude(FormatPackedDegrees(observer.longitudeRad, kSecondsDecimals)),
          height(FormatFixed(observer.heightM, kHeightDecimals)),
          entries{ProfileEntry{L"LAT", latitude}, ProfileEntry{L"LON", longitude},
                  ProfileEntry{L"HGT", height}}
    {}
    SiteLines(const SiteLines&) = delete;
    SiteLines& operator=(const SiteLines&) = delete;

    static constexpr int kSecondsDecimals = 5; // 0.3 mm
    static constexpr std::uint8_t kHeightDecimals = 4;
    const std::wstring latitude, longitude, height;
    const std::array<ProfileEntry, 3> entries;
};

/// What the profile says of the sites @p names.
std::vector<std::pair<std::wstring, SiteEntry>> EntriesOf(const ProfileText& profile,
                                                          const std::vector<std::wstring>& names)
{
    std::vector<std::pair<std::wstring, SiteEntry>> sites;
    sites.reserve(names.size());
    for (const std::wstring& name : names) {
        sites.emplace_back(name, SiteEntry());
    }
    profile.Visit(names, [&](std::size_t at, std::wstring_view key, std::wstring_view value) {
        SiteEntry& entry = sites[at].second;
        // Of an entry that is there twice the first counts.
        if (key == L"LAT" && !entry.latitudeRad) {
            entry.latitudeRad = ParsePackedDegrees(value);
        } else if (key == L"LON" && !entry.longitudeRad) {
            entry.longitudeRad = ParsePackedDegrees(value);
        } else if (key == L"HGT" && !entry.heightM) {
            entry.heightM = ParseReal(std::wstring(value).c_str());
        }
    });
    return sites;
}

} // namespace

fs::path SitesPath(const fs::path& folder)
{
    return folder / "GSurveyPlan.ini";
}

std::vector<std::wstring> SiteNames(const fs::path& folder)
{
    return ReadProfileSections(SitesPath(folder));
}

std::vector<std::pair<std::wstring, SiteEntry>> ReadSites(const fs::path& folder)
{
    const std::optional<ProfileText> profile = LoadProfile(SitesPath(folder));
    return profile ? EntriesOf(*profile, profile->Sections())
                   : std::vector<std::pair<std::wstring, SiteEntry>>();
}

SiteEntry ReadSite(const fs::path& folder, std::wstring_view name)
{
    const std::optional<ProfileText> profile = LoadProfile(SitesPath(folder));
    return profile ? EntriesOf(*profile, {std::wstring(name)}).front().second : SiteEntry();
}

int WriteSite(const fs::path& folder, std::wstring_view name, const Observer& observer)
{
    const ListedSite site{std::wstring(name), observer};
    return WriteSites(folder, std::span(&site, 1));
}

int WriteSites(const fs::path& folder, std::span<const ListedSite> sites)
{
    if (std::any_of(sites.begin(), sites.end(),
                    [](const ListedSite& site) { return site.name.empty(); }) ||
        Folders::Create(folder)) {
        return 0;
    }
    std::deque<SiteLines> lines; // which the sections point into
    std::vector<ProfileSection> sections;
    sections.reserve(sites.size());
    for (const ListedSite& site : sites) {
        const SiteLines& kept = lines.emplace_back(site.observer);
        sections.push_back({site.name, kept.entries});
    }
    return WriteProfile(sections, SitesPath(folder));
}

int ChangeSite(const fs::path& folder, std::wstring_view name, const ListedSite& site)
{
    if (site.name == name) {
        return WriteSite(folder, site.name, site.observer);
    }
    if (HasSite(folder, site.name) || WriteSite(folder, site.name, site.observer) == 0) {
        return 0;
    }
    // Last: a site that is there twice can be mended, one that is gone cannot.
    RemoveSite(folder, name);
    return 1;
}

bool HasSite(const fs::path& folder, std::wstring_view name)
{
    const std::vector<std::wstring> names = SiteNames(folder);
    return std::find(names.begin(), names.end(), name) != names.end();
}

int RemoveSite(const fs::path& folder, std::wstring_view name)
{
    return RemoveProfileSection(name, SitesPath(folder));
}

int InstallSampleSites(const fs::path& folder)
{
    const fs::path file = SitesPath(folder);
    std::error_code error;
    if (fs::exists(file, error)) {
        return 1;
    }
    std::wstring text;
    for (const SampleSite& site : SampleSites()) {
        text += L"[" + std::wstring(site.name) + L"]\r\nLAT=" + site.latitude + L"\r\nLON=" +
                site.longitude + L"\r\nHGT=" + FormatFixed(site.heightM, 1) + L"\r\n\r\n";
    }
    const std::string bytes = ToCp932(text);
    error = Folders::Create(folder);
    return !error && !ReplaceFile(file, "$#TEMP.TMP", std::as_bytes(std::span(bytes))) ? 1 : 0;
}

void ReadPosition(const fs::path& folder, std::wstring_view name, Observer& observer)
{
    constexpr Observer kDefault;
    constexpr double kHeightForWhichItWasMeant = 50.0;
    const SiteEntry entry = ReadSite(folder, name);
    observer.latitudeRad = entry.latitudeRad.value_or(kDefault.latitudeRad);
    observer.longitudeRad = entry.longitudeRad.value_or(kDefault.longitudeRad);
    if (entry.heightM) {
        observer.heightM = *entry.heightM;
    } else {
        observer.latitudeRad = kHeightForWhichItWasMeant; // kept: hosts know it
    }
}

} // namespace fieldcore
