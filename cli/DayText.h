#pragma once

#include "cli/Failure.h"
#include "cli/World.h"

#include <chrono>
#include <optional>
#include <string>

namespace fieldcore::cli {

/// What stands behind --date: a day written 2026-11-21, today or tomorrow in Japan.
/// @param days  so many from that day on must lie in 1980-01-07 to 2099-12-31
/// @return what is wrong with it
[[nodiscard]] std::optional<Failure> ReadDate(const std::string& text, int days, const World& world,
                                              std::chrono::sys_days& day);

} // namespace fieldcore::cli
