#include "core/planning/PlanSite.h"

#include "core/planning/PackedDegrees.h"
#include "core/planning/SampleSites.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/Cp932.h"
#include "core/platform/Folders.h"
#include "core/platform/NumberText.h"
#include "core/settings/Profile.h"

#include <array>
#include <cstdint>
#include <span>
#include <system_error>

namespace fieldcore {

namespace fs = std::filesystem;

fs::path SitesPath(const fs::path& folder)
{
    return folder / "GSurveyPlan.ini";
}

std::vector<std::wstring> SiteNames(const fs::path& folder)
{
    return ReadProfileSections(SitesPath(folder));
}

SiteEntry ReadSite(const fs::path& folder, std::wstring_view name)
{
    const fs::path file = SitesPath(folder);
    const auto read = [&](std::wstring_view key) {
        std::wstring text;
        return ReadProfile(name, key, L"", text, file) == 1 ? std::optional(text) : std::nullopt;
    };
    SiteEntry entry;
    if (const auto text = read(L"LAT")) {
        entry.latitudeRad = ParsePackedDegrees(*text);
    }
    if (const auto text = read(L"LON")) {
        entry.longitudeRad = ParsePackedDegrees(*text);
    }
    if (const auto text = read(L"HGT")) {
        entry.heightM = ParseReal(text->c_str());
    }
    return entry;
}

int WriteSite(const fs::path& folder, std::wstring_view name, const Observer& observer)
{
    constexpr int kSecondsDecimals = 5; // 0.3 mm
    constexpr std::uint8_t kHeightDecimals = 4;
    if (name.empty() || Folders::Create(folder)) {
        return 0;
    }
    const std::wstring latitude = FormatPackedDegrees(observer.latitudeRad, kSecondsDecimals);
    const std::wstring longitude = FormatPackedDegrees(observer.longitudeRad, kSecondsDecimals);
    const std::wstring height = FormatFixed(observer.heightM, kHeightDecimals);
    const std::array entries{ProfileEntry{L"LAT", latitude}, ProfileEntry{L"LON", longitude},
                             ProfileEntry{L"HGT", height}};
    return WriteProfile(name, entries, SitesPath(folder));
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
