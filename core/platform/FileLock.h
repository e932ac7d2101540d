#pragma once

#include <chrono>
#include <system_error>

namespace fieldcore {

/// Waits until this process has @p descriptor 's file to itself among all that ask the same. The
/// lock ends when the descriptor is closed, so that a killed process leaves none behind.
/// @param limit  real time
/// @return timed_out if another holds it for longer, or what prevents locking
[[nodiscard]] std::error_code LockFile(int descriptor, std::chrono::milliseconds limit);

} // namespace fieldcore
