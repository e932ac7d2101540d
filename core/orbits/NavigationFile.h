#pragma once

#include "core/orbits/Constellations.h"
#include "core/platform/TextError.h"

#include <filesystem>
#include <optional>
#include <system_error>

namespace fieldcore {

// The messages that were imported, kept as a navigation text in the program's folder.

/// "GSurveyPlan.nav" in the program's @p folder.
[[nodiscard]] std::filesystem::path NavigationPath(const std::filesystem::path& folder);

/// What is kept, and what is wrong with the file if it cannot be read: nothing is known then.
struct KeptNavigation
{
    Constellations constellations;
    std::optional<TextError> error;
};
/// A file that is not there is none that is wrong.
[[nodiscard]] KeptNavigation LoadConstellations(const std::filesystem::path& folder);

/// Replaces the file as a whole; the folder is made if it is not there.
/// @return what went wrong: the old file is then still there
[[nodiscard]] std::error_code SaveConstellations(const std::filesystem::path& folder,
                                                 const Constellations& constellations);

} // namespace fieldcore
