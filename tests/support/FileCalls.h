#pragma once

#include <functional>
#include <string>

namespace fieldcore::testing {

/// Stands before the calls of the C library with which this process uses the files below a folder,
/// whichever code makes them. One at a time; any thread. In a program with this class nothing is
/// ever synced: no power is cut, and waiting for the disk would be most of a test's time.
class FileCalls
{
public:
    struct Call
    {
        std::string name; ///< that of the C function
        std::string file; ///< full path
        std::string data; ///< written bytes; of rename() the new path; of ftruncate() the size
    };
    /// @return whether the call fails instead of being made
    using Watcher = std::function<bool(const Call& call)>;

    FileCalls(std::string folder, Watcher watcher);
    ~FileCalls();
    FileCalls(const FileCalls&) = delete;
    FileCalls& operator=(const FileCalls&) = delete;
};

} // namespace fieldcore::testing
