#pragma once

#include "cli/World.h"

#include <string>
#include <vector>

namespace fieldcore::cli {

/// Runs the program: reads the arguments, runs the command that they name, and says what came
/// of it.
/// @param arguments  without the program's own name
/// @return the exit code of the process: an ExitCode, or that of the command that sim run was
///         asked to start
[[nodiscard]] int RunCommandLine(const World& world, std::vector<std::string> arguments);

} // namespace fieldcore::cli
