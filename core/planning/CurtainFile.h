#pragma once

#include "core/planning/SkyLimits.h"

#include <cstdint>
#include <filesystem>
#include <span>
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

} // namespace fieldcore
