#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace fieldcore::cli {

/// A day of the years 1980 to 2099, written 2026-11-21 and in no other way.
/// @return nothing if @p text is none, or the calendar has no such day
[[nodiscard]] std::optional<std::chrono::sys_days> ParseDay(std::string_view text);

} // namespace fieldcore::cli
