#pragma once

#include "core/link/ConnectChoice.h"
#include "core/platform/Clock.h"

#include <filesystem>

namespace fieldcore {

class SettingsRoots;

/// Puts what a new user needs into the program's folder: sample sites, antennas and a nominal
/// almanac of @p now. What is there stays.
void PutSamples(const std::filesystem::path& folder, Clock::UtcTime now);

/// The port of a user who has chosen none: where the host suite has the receiver, if it says so.
[[nodiscard]] ConnectChoice FirstChoice(SettingsRoots& roots);

} // namespace fieldcore
