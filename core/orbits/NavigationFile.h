#pragma once

#include "core/orbits/Constellations.h"
#include "core/platform/TextError.h"

#include <filesystem>
#include <optional>
#include <span>
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

/// Adds @p records to what is kept and replaces the file as a whole; the folder is made if it is
/// not there. What cannot be read of it is not kept. Satellites of which nothing was heard for 30
/// days before the newest of @p records of their system are forgotten: they have been taken out of
/// service, or are not received here any more. A record from after tomorrow makes nothing old.
/// @param nowS  seconds of GPS time
/// @return what went wrong: the old file is then still there
[[nodiscard]] std::error_code KeepMessages(const std::filesystem::path& folder,
                                           std::span<const NavigationRecord> records, double nowS);

} // namespace fieldcore
