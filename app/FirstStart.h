#pragma once

#include "core/platform/Clock.h"

#include <filesystem>

namespace fieldcore {

/// Puts what a new user needs into the program's folder: sample sites, antennas and a nominal
/// almanac of @p now. What is there stays.
void PutSamples(const std::filesystem::path& folder, Clock::UtcTime now);

} // namespace fieldcore
