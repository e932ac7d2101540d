#include "core/platform/PosixFileOperations.h"

#include "core/platform/FileLock.h"

#include <cerrno>
#include <chrono>
#include <cstddef>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kLockLimit{5};
constexpr int kMaxAttempts = 1000;  // each time another process was faster
constexpr mode_t kUsualMode = 0666; // less the user's umask
constexpr mode_t kPermissions = 07777;

std::error_code LastError()
{
    return {errno, std::generic_category()};
}

/// Whether @p descriptor is still what is found under the name @p file.
bool IsStillNamed(int descriptor, const fs::path& file)
{
    struct stat opened
    {};
    struct stat named
    {};
    return fstat(descriptor, &opened) == 0 && lstat(file.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

/// Empties the file, which is a plain one, and gives it the permissions of @p like.
std::error_code Prepare(int descriptor, const fs::path& like)
{
    struct stat own
    {};
    struct stat model
    {};
    if (fstat(descriptor, &own) != 0) {
        return LastError();
    }
    if (!S_ISREG(own.st_mode)) {
        return std::make_error_code(std::errc::not_supported);
    }
    if (stat(like.c_str(), &model) == 0 && fchmod(descriptor, model.st_mode & kPermissions) != 0) {
        return LastError();
    }
    return ftruncate(descriptor, 0) == 0 ? std::error_code() : LastError();
}

} // namespace

PosixFileOperations& PosixFileOperations::Instance()
{
    static PosixFileOperations instance;
    return instance;
}

std::error_code PosixFileOperations::Open(const fs::path& file, const fs::path& like, int& handle)
{
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        // Not blocking: a pipe left under the name would otherwise wait for a reader.
        constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
        const int descriptor = open(file.c_str(), kFlags, kUsualMode);
        if (descriptor < 0) {
            return LastError();
        }
        std::error_code error = LockFile(descriptor, kLockLimit);
        if (!error && !IsStillNamed(descriptor, file)) {
            // Who held the lock has renamed the file away: under the name is another one now.
            close(descriptor);
            continue;
        }
        if (!error) {
            error = Prepare(descriptor, like);
        }
        if (error) {
            close(descriptor);
            return error;
        }
        handle = descriptor;
        return {};
    }
    return std::make_error_code(std::errc::device_or_resource_busy);
}

std::error_code PosixFileOperations::Write(int handle, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(handle, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return LastError();
        }
    }
    return {};
}

std::error_code PosixFileOperations::Sync(int handle)
{
    return fsync(handle) == 0 ? std::error_code() : LastError();
}

void PosixFileOperations::Close(int handle)
{
    close(handle);
}

std::error_code PosixFileOperations::Rename(const fs::path& from, const fs::path& to)
{
    std::error_code error;
    fs::rename(from, to, error);
    return error;
}

std::error_code PosixFileOperations::SyncFolder(const fs::path& folder)
{
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return LastError();
    }
    const std::error_code error = Sync(descriptor);
    close(descriptor);
    return error;
}

void PosixFileOperations::Remove(const fs::path& file)
{
    std::error_code ignored; // a left-over is emptied and used again by the next writer
    fs::remove(file, ignored);
}

} // namespace fieldcore
