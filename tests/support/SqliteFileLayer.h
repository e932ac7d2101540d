#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace fieldcore::testing {

/// SQLite's file layer with a watcher before it, and without syncs; its memory, too. As long as it
/// lives, every database that this process opens goes through it. One at a time, and one thread.
class SqliteFileLayer
{
public:
    struct Call
    {
        std::string name;    ///< "open", "read", "write", "sync", "truncate"... or "memory"
        std::string file;    ///< full path
        std::int64_t at = 0; ///< where in the file; the new size when truncating
        std::span<const std::uint8_t> bytes; ///< that are written
    };
    /// @return whether the call fails instead of being made
    using Watcher = std::function<bool(const Call& call)>;

    explicit SqliteFileLayer(Watcher watcher);
    ~SqliteFileLayer();
    SqliteFileLayer(const SqliteFileLayer&) = delete;
    SqliteFileLayer& operator=(const SqliteFileLayer&) = delete;
};

} // namespace fieldcore::testing
