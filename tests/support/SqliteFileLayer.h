#pragma once

#include "tests/support/FileCall.h"

namespace fieldcore::testing {

/// SQLite's file layer with a watcher before it, and without syncs; its memory, too, as calls named
/// "memory". As long as it lives, every database that this process opens goes through it. One at a
/// time, and one thread.
class SqliteFileLayer
{
public:
    explicit SqliteFileLayer(FileWatcher watcher);
    ~SqliteFileLayer();
    SqliteFileLayer(const SqliteFileLayer&) = delete;
    SqliteFileLayer& operator=(const SqliteFileLayer&) = delete;
};

} // namespace fieldcore::testing
