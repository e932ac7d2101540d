#include "tests/support/SqliteFileLayer.h"

#include <utility>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace fieldcore::testing {

namespace {

SqliteFileLayer::Watcher watch; // set while there is a layer
sqlite3_vfs* below = nullptr;   // SQLite's own layer
sqlite3_vfs layer{};

/// An open file; the one of the layer below follows it in the same block.
struct File
{
    sqlite3_file methods;
    const char* name; // SQLite keeps it as long as the file is open
};

sqlite3_file* Below(sqlite3_file* file)
{
    return reinterpret_cast<sqlite3_file*>(reinterpret_cast<File*>(file) + 1);
}

const sqlite3_io_methods& Methods(sqlite3_file* file)
{
    return *Below(file)->pMethods;
}

bool Fails(const char* call, const char* file, std::int64_t at = 0,
           std::span<const std::uint8_t> bytes = {})
{
    return watch && watch({call, file != nullptr ? file : "", at, bytes});
}

bool Fails(const char* call, sqlite3_file* file, std::int64_t at = 0,
           std::span<const std::uint8_t> bytes = {})
{
    return Fails(call, reinterpret_cast<File*>(file)->name, at, bytes);
}

int Close(sqlite3_file* file)
{
    return Methods(file).xClose(Below(file));
}

int Read(sqlite3_file* file, void* to, int count, sqlite3_int64 at)
{
    return Fails("read", file) ? SQLITE_IOERR_READ
                               : Methods(file).xRead(Below(file), to, count, at);
}

int Write(sqlite3_file* file, const void* from, int count, sqlite3_int64 at)
{
    const std::span bytes(static_cast<const std::uint8_t*>(from), static_cast<std::size_t>(count));
    return Fails("write", file, at, bytes) ? SQLITE_IOERR_WRITE
                                           : Methods(file).xWrite(Below(file), from, count, at);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size)
{
    return Fails("truncate", file, size) ? SQLITE_IOERR_TRUNCATE
                                         : Methods(file).xTruncate(Below(file), size);
}

/// Only seen: no power is cut, and waiting for the disk would be most of a test's time.
int Sync(sqlite3_file* file, int)
{
    return Fails("sync", file) ? SQLITE_IOERR_FSYNC : SQLITE_OK;
}

int Size(sqlite3_file* file, sqlite3_int64* size)
{
    return Fails("size", file) ? SQLITE_IOERR_FSTAT : Methods(file).xFileSize(Below(file), size);
}

int Lock(sqlite3_file* file, int level)
{
    return Fails("lock", file) ? SQLITE_IOERR_LOCK : Methods(file).xLock(Below(file), level);
}

int Unlock(sqlite3_file* file, int level)
{
    return Methods(file).xUnlock(Below(file), level);
}

int IsReserved(sqlite3_file* file, int* is)
{
    return Fails("look for a lock", file) ? SQLITE_IOERR_CHECKRESERVEDLOCK
                                          : Methods(file).xCheckReservedLock(Below(file), is);
}

int Control(sqlite3_file* file, int operation, void* argument)
{
    return Methods(file).xFileControl(Below(file), operation, argument);
}

int SectorSize(sqlite3_file* file)
{
    return Methods(file).xSectorSize(Below(file));
}

int Characteristics(sqlite3_file* file)
{
    return Methods(file).xDeviceCharacteristics(Below(file));
}

int ShareMap(sqlite3_file* file, int page, int size, int extend, void volatile** memory)
{
    return Fails("map", file) ? SQLITE_IOERR_SHMMAP
                              : Methods(file).xShmMap(Below(file), page, size, extend, memory);
}

int ShareLock(sqlite3_file* file, int offset, int count, int flags)
{
    return (flags & SQLITE_SHM_LOCK) != 0 && Fails("lock the map", file)
               ? SQLITE_IOERR_SHMLOCK
               : Methods(file).xShmLock(Below(file), offset, count, flags);
}

void ShareBarrier(sqlite3_file* file)
{
    Methods(file).xShmBarrier(Below(file));
}

int ShareUnmap(sqlite3_file* file, int remove)
{
    return Methods(file).xShmUnmap(Below(file), remove);
}

constexpr sqlite3_io_methods kMethods{
    2,          Close,      Read,    Write,      Truncate,        Sync,     Size,      Lock,
    Unlock,     IsReserved, Control, SectorSize, Characteristics, ShareMap, ShareLock, ShareBarrier,
    ShareUnmap, nullptr,    nullptr};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags)
{
    auto* const ours = reinterpret_cast<File*>(file);
    *ours = {{nullptr}, name};
    if (Fails("open", name)) {
        return SQLITE_CANTOPEN;
    }
    const int result = below->xOpen(below, name, Below(file), flags, outFlags);
    ours->methods.pMethods = Below(file)->pMethods != nullptr ? &kMethods : nullptr;
    return result;
}

int Delete(sqlite3_vfs*, const char* name, int syncFolder)
{
    return Fails("delete", name) ? SQLITE_IOERR_DELETE : below->xDelete(below, name, syncFolder);
}

int Access(sqlite3_vfs*, const char* name, int flags, int* answer)
{
    return Fails("access", name) ? SQLITE_IOERR_ACCESS : below->xAccess(below, name, flags, answer);
}

} // namespace

namespace {

sqlite3_mem_methods memory;

void* Allocate(int size)
{
    return Fails("memory", "") ? nullptr : memory.xMalloc(size);
}

void* Reallocate(void* block, int size)
{
    return Fails("memory", "") ? nullptr : memory.xRealloc(block, size);
}

/// Before SQLite is used for the first time.
const bool kIsMemoryWatched = [] {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &memory);
    sqlite3_mem_methods watched = memory;
    watched.xMalloc = Allocate;
    watched.xRealloc = Reallocate;
    return sqlite3_config(SQLITE_CONFIG_MALLOC, &watched) == SQLITE_OK;
}();

} // namespace

SqliteFileLayer::SqliteFileLayer(Watcher watcher)
{
    EXPECT_TRUE(kIsMemoryWatched);
    watch = std::move(watcher);
    below = sqlite3_vfs_find(nullptr);
    layer = *below; // what is not watched is the other's
    layer.zName = "watched";
    layer.szOsFile = static_cast<int>(sizeof(File)) + below->szOsFile;
    layer.xOpen = Open;
    layer.xDelete = Delete;
    layer.xAccess = Access;
    sqlite3_vfs_register(&layer, 1);
}

SqliteFileLayer::~SqliteFileLayer()
{
    sqlite3_vfs_unregister(&layer);
    sqlite3_vfs_register(below, 1);
    watch = nullptr;
}

} // namespace fieldcore::testing
