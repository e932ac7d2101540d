#pragma once

#include "tests/support/FileCall.h"

#include <string>

namespace fieldcore::testing {

/// Stands before the calls of the C library with which this process uses the files below a folder,
/// whichever code makes them. One at a time; any thread. In a program with this class nothing is
/// ever synced: no power is cut, and waiting for the disk would be most of a test's time.
class FileCalls
{
public:
    FileCalls(std::string folder, FileWatcher watcher);
    ~FileCalls();
    FileCalls(const FileCalls&) = delete;
    FileCalls& operator=(const FileCalls&) = delete;
};

} // namespace fieldcore::testing
