#include "core/orbits/NavigationFile.h"

#include "core/orbits/NavigationText.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/Folders.h"

#include <span>
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

std::error_code SaveConstellations(const std::filesystem::path& folder,
                                   const Constellations& constellations)
{
    if (const std::error_code error = Folders::Create(folder)) {
        return error;
    }
    const std::string text = WriteNavigation(constellations.Records());
    return ReplaceFile(NavigationPath(folder), "GSurveyPlan.nav.new",
                       std::as_bytes(std::span(text)));
}

} // namespace fieldcore
