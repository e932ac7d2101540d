#pragma once

#include "core/planning/SkyLimits.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <system_error>

namespace fieldcore {

// The obstruction curtain "CurTain.obs": 360 bytes without a header.

/// @param folder  the program's folder
[[nodiscard]] std::filesystem::path CurtainPath(const std::filesystem::path& folder);

/// What the content of such a file says. A short one leaves the rest without obstruction; what is
/// behind 360 bytes is ignored.
[[nodiscard]] ObstructionCurtain CurtainOf(std::span<const std::uint8_t> content);

/// A short file leaves the rest without obstruction, a missing one everything; what a longer one
/// has behind its 360 bytes is ignored.
[[nodiscard]] ObstructionCurtain LoadCurtain(const std::filesystem::path& folder);

/// Replaces the file as a whole.
/// @return what went wrong; the old file is then still there
[[nodiscard]] std::error_code SaveCurtain(const std::filesystem::path& folder,
                                          const ObstructionCurtain& curtain);

/// The file of a site's own curtain, "NAME.txt" in the folder "Curtains" of the program's @p
/// folder. What cannot be in the name of a file everywhere stands there as in an address, a byte of
/// UTF-8 as "%2F": / \ : * ? " < > | %, what is not printed, and a dot or blank at either end. So
/// no two sites share a file, and none leads to another folder.
/// @param name  of the site
/// @return nothing if the name is empty, or too long for a file (200 bytes as it is written there)
[[nodiscard]] std::optional<std::filesystem::path>
SiteCurtainPath(const std::filesystem::path& folder, std::wstring_view name);

} // namespace fieldcore
