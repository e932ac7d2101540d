#include "tests/support/FileCalls.h"

#include "tests/support/Scarcity.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore::testing {

namespace {

// Before the first watcher nothing but this is looked at: the program's start makes calls, too.
std::atomic<bool> isWatched = false;
std::mutex mutex;
std::string below;               // guarded by mutex, as what follows
FileWatcher watch;               //
std::map<int, std::string> open; // descriptors of the folder's files
thread_local bool isInside = false;

std::string PathOf(const char* file)
{
    return file;
}

std::string PathOf(int descriptor)
{
    const auto file = open.find(descriptor);
    return file == open.end() ? std::string() : file->second;
}

/// @param of  a path or a descriptor
template <typename Of>
bool Fails(const char* name, Of of, std::string_view data = {}, std::int64_t at = -1)
{
    if (!isWatched || isInside) {
        return false;
    }
    const Spared spared;
    const std::lock_guard lock(mutex);
    const std::string file = PathOf(of);
    if (!watch || !file.starts_with(below)) {
        return false;
    }
    isInside = true; // what the watcher itself calls
    const bool fails = watch({name, file, std::string(data), at});
    isInside = false;
    errno = fails ? EIO : errno;
    return fails;
}

void Remember(int descriptor, const char* file)
{
    if (isWatched && descriptor >= 0) {
        const Spared spared;
        const std::lock_guard lock(mutex);
        open.erase(descriptor);
        if (file != nullptr && std::string(file).starts_with(below)) {
            open.emplace(descriptor, file);
        }
    }
}

/// The C library's own function, or a sanitizer's before it.
template <typename Function>
Function* Next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

FileCalls::FileCalls(std::string folder, FileWatcher watcher)
{
    const std::lock_guard lock(mutex);
    below = std::move(folder);
    watch = std::move(watcher);
    isWatched = true;
}

FileCalls::~FileCalls()
{
    const std::lock_guard lock(mutex);
    isWatched = false;
    watch = nullptr;
    open.clear();
}

} // namespace fieldcore::testing

// Found before those of the C library, by it that is, since they are the program's own.
using fieldcore::testing::Fails;
using fieldcore::testing::Next;

extern "C" {

int open(const char* path, int flags, ...)
{
    static auto* const next =
        reinterpret_cast<int (*)(const char*, int, ...)>(dlsym(RTLD_NEXT, "open"));
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    if (Fails((flags & O_CREAT) != 0 ? "make" : "open", path)) {
        return -1;
    }
    const int descriptor = next(path, flags, mode);
    fieldcore::testing::Remember(descriptor, path);
    return descriptor;
}

int close(int descriptor)
{
    static auto* const next = Next(close, "close");
    fieldcore::testing::Remember(descriptor, nullptr);
    return next(descriptor);
}

FILE* fopen64(const char* path, const char* mode)
{
    static auto* const next = Next(fopen64, "fopen64");
    if (Fails(mode[0] == 'r' ? "open" : "make", path)) {
        return nullptr;
    }
    FILE* const file = next(path, mode);
    if (file != nullptr) {
        fieldcore::testing::Remember(fileno(file), path);
    }
    return file;
}

int fclose(FILE* file)
{
    static auto* const next = Next(fclose, "fclose");
    fieldcore::testing::Remember(fileno(file), nullptr);
    return next(file);
}

ssize_t read(int descriptor, void* to, size_t count)
{
    static auto* const next = Next(read, "read");
    return Fails("read", descriptor) ? -1 : next(descriptor, to, count);
}

ssize_t write(int descriptor, const void* from, size_t count)
{
    static auto* const next = Next(write, "write");
    return Fails("write", descriptor, {static_cast<const char*>(from), count})
               ? -1
               : next(descriptor, from, count);
}

int ftruncate(int descriptor, off_t size) noexcept
{
    static auto* const next = Next(ftruncate, "ftruncate");
    return Fails("truncate", descriptor, {}, size) ? -1 : next(descriptor, size);
}

int fchmod(int descriptor, mode_t mode) noexcept
{
    static auto* const next = Next(fchmod, "fchmod");
    return Fails("fchmod", descriptor) ? -1 : next(descriptor, mode);
}

int flock(int descriptor, int operation) noexcept
{
    static auto* const next = Next(flock, "flock");
    return Fails("flock", descriptor) ? -1 : next(descriptor, operation);
}

int fsync(int descriptor)
{
    return Fails("sync", descriptor) ? -1 : 0;
}

int fdatasync(int)
{
    return 0;
}

int rename(const char* from, const char* to) noexcept
{
    static auto* const next = Next(rename, "rename");
    return Fails("rename", from, to) ? -1 : next(from, to);
}

int unlink(const char* path) noexcept
{
    static auto* const next = Next(unlink, "unlink");
    return Fails("unlink", path) ? -1 : next(path);
}

int remove(const char* path) noexcept
{
    static auto* const next = Next(remove, "remove");
    return Fails("unlink", path) ? -1 : next(path);
}

} // extern "C"
