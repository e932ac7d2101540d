#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fieldcore::cli {

/// A command to start, found as a shell would find it.
struct ChildProcess
{
    std::vector<std::string> arguments;             ///< the first one is the command
    std::map<std::string, std::string> environment; ///< on top of this process's own
};

/// Starts a command that shares this process's streams, and waits for its end. A signal that asks
/// this process for an end meanwhile is passed on to the command, unless it came from the terminal,
/// which tells both. One call at a time.
/// @param error  why it was not started; untouched otherwise
/// @return its exit code, or 128 and the number of the signal that ended it; nothing if it was
///         not started
[[nodiscard]] std::optional<int> RunChild(const ChildProcess& child, std::string& error);

} // namespace fieldcore::cli
