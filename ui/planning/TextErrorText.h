#pragma once

#include "core/platform/TextError.h"

#include <filesystem>
#include <string>

namespace fieldcore {

/// What to tell the user of a text file that was not taken: its name, the line, and the detail.
[[nodiscard]] std::wstring TextErrorText(const std::filesystem::path& file, const TextError& error);

} // namespace fieldcore
