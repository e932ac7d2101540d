#include "core/orbits/NavigationFile.h"

#include "core/orbits/NavigationText.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/Calendar.h"
#include "core/platform/Folders.h"

#include <algorithm>
#include <map>
#include <string>

namespace fieldcore {

std::filesystem::path NavigationPath(const std::filesystem::path& folder)
{
    return folder / "GSurveyPlan.nav";
}

KeptNavigation LoadConstellations(const std::filesystem::path& folder)
{
    KeptNavigation kept;
    const std::filesystem::path file = NavigationPath(folder);
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        return kept;
    }
    const NavigationText text = LoadNavigation(file);
    kept.constellations.Add(text.records);
    kept.error = text.error;
    return kept;
}

std::error_code KeepMessages(const std::filesystem::path& folder,
                             std::span<const NavigationRecord> records, double nowS)
{
    constexpr double kForgottenS = 30 * kDayS;
    if (const std::error_code error = Folders::Create(folder)) {
        return error;
    }
    Constellations known = LoadConstellations(folder).constellations;
    known.Add(records);
    std::map<GnssSystem, double> newest;
    for (const NavigationRecord& record : records) {
        if (record.ReferenceS() < nowS + kDayS) {
            double& newestS = newest[record.satellite.system];
            newestS = std::max(newestS, record.ReferenceS());
        }
    }
    for (const auto& [system, newestS] : newest) {
        known.DropBefore(system, newestS - kForgottenS);
    }
    const std::string text = WriteNavigation(known.Records());
    return ReplaceFile(NavigationPath(folder), "GSurveyPlan.nav.new",
                       std::as_bytes(std::span(text)));
}

} // namespace fieldcore
