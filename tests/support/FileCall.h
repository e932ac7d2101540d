#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace fieldcore::testing {

/// A call that uses a file.
struct FileCall
{
    std::string name;     ///< "open", "read", "write", "sync", "truncate"...
    std::string file;     ///< full path
    std::string data;     ///< bytes that are written; the new path when renaming
    std::int64_t at = -1; ///< where it is written, -1: at the end; the new size when truncating
};

/// @return whether the call fails instead of being made
using FileWatcher = std::function<bool(const FileCall& call)>;

} // namespace fieldcore::testing
