#include "core/platform/FileOperations.h"

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
constexpr int kMaxAttempts = 1000;    // each time another process was faster
constexpr mode_t kUsualMode = 0666;   // less the user's umask
constexpr mode_t kPermissions = 0777; // a replaced file's other bits do not pass on

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

bool IsOwn(const struct stat& info)
{
    return S_ISREG(info.st_mode) && info.st_uid == geteuid();
}

/// Gives the file the permissions of @p like, if that is the user's.
std::error_code TakePermissions(int descriptor, const fs::path& like)
{
    struct stat model
    {};
    if (lstat(like.c_str(), &model) == 0 && IsOwn(model) &&
        fchmod(descriptor, model.st_mode & kPermissions) != 0) {
        return LastError();
    }
    return {};
}

std::error_code Unlink(const fs::path& file)
{
    return unlink(file.c_str()) == 0 || errno == ENOENT ? std::error_code() : LastError();
}

/// Takes the name from what has it, when nobody writes to that any more.
std::error_code FreeName(const fs::path& file)
{
    struct stat left
    {};
    if (lstat(file.c_str(), &left) != 0) {
        return errno == ENOENT ? std::error_code() : LastError();
    }
    if (!S_ISREG(left.st_mode)) {
        return Unlink(file);
    }
    // Only for the lock. Not blocking: by now a pipe may be under the name.
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0) {
        return errno == ENOENT ? std::error_code() : LastError();
    }
    std::error_code error = LockFile(descriptor, kLockLimit);
    if (!error && IsStillNamed(descriptor, file)) {
        error = Unlink(file);
    }
    close(descriptor);
    return error;
}

} // namespace

FileOperations& FileOperations::Instance()
{
    static FileOperations instance;
    return instance;
}

std::error_code FileOperations::Open(const fs::path& file, const fs::path& like, int& handle)
{
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
        const int descriptor = open(file.c_str(), kFlags, kUsualMode);
        if (descriptor < 0) {
            std::error_code error = LastError();
            if (error == std::errc::file_exists) {
                error = FreeName(file);
            }
            if (error) {
                return error;
            }
            continue;
        }
        std::error_code error = LockFile(descriptor, kLockLimit);
        if (!error && !IsStillNamed(descriptor, file)) {
            // Before it was locked, another writer took it for one that was left.
            close(descriptor);
            continue;
        }
        if (!error) {
            error = TakePermissions(descriptor, like);
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

std::error_code FileOperations::OpenLeft(const fs::path& file, int& handle)
{
    const int descriptor = open(file.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0) {
        return LastError();
    }
    std::error_code error = LockFile(descriptor, kLockLimit);
    struct stat info
    {};
    if (!error && fstat(descriptor, &info) != 0) {
        error = LastError();
    }
    if (!error && (!IsOwn(info) || info.st_nlink != 1 || !IsStillNamed(descriptor, file))) {
        error = std::make_error_code(std::errc::operation_not_permitted);
    }
    if (error) {
        close(descriptor);
        return error;
    }
    handle = descriptor;
    return {};
}

std::error_code FileOperations::Read(int handle, std::span<char> bytes, std::size_t& count)
{
    ssize_t got = 0;
    do {
        got = read(handle, bytes.data(), bytes.size());
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        return LastError();
    }
    count = static_cast<std::size_t>(got);
    return {};
}

std::error_code FileOperations::Cut(int handle, std::uint64_t size)
{
    const auto end = static_cast<off_t>(size);
    return ftruncate(handle, end) == 0 && lseek(handle, end, SEEK_SET) == end ? std::error_code()
                                                                              : LastError();
}

std::error_code FileOperations::Write(int handle, std::string_view bytes)
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

std::error_code FileOperations::Sync(int handle)
{
    return fsync(handle) == 0 ? std::error_code() : LastError();
}

void FileOperations::Close(int handle)
{
    close(handle);
}

std::error_code FileOperations::Rename(const fs::path& from, const fs::path& to)
{
    std::error_code error;
    fs::rename(from, to, error);
    return error;
}

std::error_code FileOperations::SyncFolder(const fs::path& folder)
{
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return LastError();
    }
    const std::error_code error = Sync(descriptor);
    close(descriptor);
    return error;
}

void FileOperations::Remove(const fs::path& file)
{
    std::error_code ignored; // a left-over is removed by the next writer
    fs::remove(file, ignored);
}

} // namespace fieldcore
