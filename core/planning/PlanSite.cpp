#include "core/planning/PlanSite.h"

#include "core/planning/PackedDegrees.h"
#include "core/platform/NumberText.h"
#include "core/settings/Profile.h"

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
