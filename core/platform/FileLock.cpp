#include "core/platform/FileLock.h"

#include <cerrno>
#include <thread>

#include <sys/file.h>

namespace fieldcore {

std::error_code LockFile(int descriptor, std::chrono::milliseconds limit)
{
    // flock() has no time-out of its own, and whoever holds the lock needs milliseconds.
    constexpr std::chrono::milliseconds kPause{2};
    const auto end = std::chrono::steady_clock::now() + limit;
    while (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            return {errno, std::generic_category()};
        }
        if (std::chrono::steady_clock::now() >= end) {
            return std::make_error_code(std::errc::timed_out);
        }
        std::this_thread::sleep_for(kPause);
    }
    return {};
}

} // namespace fieldcore
