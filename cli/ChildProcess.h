#pragma once

#include <functional>
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

/// Starts a command that shares this process's streams, and waits for its end.
/// @param stopSignal  the signal that asked this process for an end, or 0. Ctrl-C reaches the
///                    command by itself; any other is passed on to it
/// @param error  why it was not started; untouched otherwise
/// @return its exit code, or 128 and the number of the signal that ended it; nothing if it was
///         not started
[[nodiscard]] std::optional<int>
RunChild(const ChildProcess& child, const std::function<int()>& stopSignal, std::string& error);

} // namespace fieldcore::cli
