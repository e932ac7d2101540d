#include "tests/support/SqliteFileLayer.h"

#include <map>
#include <utility>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace fieldcore::testing {

namespace {

/// An open file.
struct File
{
    const char* name; // SQLite keeps it as long as the file is open
    const sqlite3_io_methods* own;
    sqlite3_io_methods watched;
};

FileWatcher watch;            // set while there is a layer
sqlite3_vfs* below = nullptr; // SQLite's own layer
sqlite3_vfs layer{};
std::map<sqlite3_file*, File> files; // as they were opened last

bool Fails(const char* call, const char* name, std::string data = {}, std::int64_t at = -1)
{
    return watch && watch({call, name != nullptr ? name : "", std::move(data), at});
}

bool Fails(const char* call, sqlite3_file* file, std::string data = {}, std::int64_t at = -1)
{
    return Fails(call, files.at(file).name, std::move(data), at);
}

const sqlite3_io_methods& Own(sqlite3_file* file)
{
    return *files.at(file).own;
}

/// What is not watched is the layer's below.
sqlite3_io_methods Watched(sqlite3_io_methods methods)
{
    methods.iVersion = 2; // without files as memory
    methods.xRead = [](sqlite3_file* file, void* to, int count, sqlite3_int64 at) {
        return Fails("read", file) ? SQLITE_IOERR_READ : Own(file).xRead(file, to, count, at);
    };
    methods.xWrite = [](sqlite3_file* file, const void* from, int count, sqlite3_int64 at) {
        const auto* const bytes = static_cast<const char*>(from);
        return Fails("write", file, {bytes, bytes + count}, at)
                   ? SQLITE_IOERR_WRITE
                   : Own(file).xWrite(file, from, count, at);
    };
    methods.xTruncate = [](sqlite3_file* file, sqlite3_int64 size) {
        return Fails("truncate", file, {}, size) ? SQLITE_IOERR_TRUNCATE
                                                 : Own(file).xTruncate(file, size);
    };
    // Only seen: no power is cut, and waiting for the disk would be most of a test's time.
    methods.xSync = [](sqlite3_file* file, int) {
        return Fails("sync", file) ? SQLITE_IOERR_FSYNC : SQLITE_OK;
    };
    methods.xFileSize = [](sqlite3_file* file, sqlite3_int64* size) {
        return Fails("size", file) ? SQLITE_IOERR_FSTAT : Own(file).xFileSize(file, size);
    };
    methods.xLock = [](sqlite3_file* file, int level) {
        return Fails("lock", file) ? SQLITE_IOERR_LOCK : Own(file).xLock(file, level);
    };
    methods.xCheckReservedLock = [](sqlite3_file* file, int* is) {
        return Fails("look for a lock", file) ? SQLITE_IOERR_CHECKRESERVEDLOCK
                                              : Own(file).xCheckReservedLock(file, is);
    };
    methods.xShmMap = [](sqlite3_file* file, int page, int size, int extend, void volatile** map) {
        return Fails("map", file) ? SQLITE_IOERR_SHMMAP
                                  : Own(file).xShmMap(file, page, size, extend, map);
    };
    methods.xShmLock = [](sqlite3_file* file, int offset, int count, int flags) {
        return (flags & SQLITE_SHM_LOCK) != 0 && Fails("lock the map", file)
                   ? SQLITE_IOERR_SHMLOCK
                   : Own(file).xShmLock(file, offset, count, flags);
    };
    return methods;
}

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags)
{
    file->pMethods = nullptr;
    if (Fails("open", name)) {
        return SQLITE_CANTOPEN;
    }
    const int result = below->xOpen(below, name, file, flags, outFlags);
    if (file->pMethods != nullptr) {
        File& opened = files[file];
        opened = {name, file->pMethods, Watched(*file->pMethods)};
        file->pMethods = &opened.watched;
    }
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

sqlite3_mem_methods memory;

/// Before SQLite is used for the first time.
const bool kIsMemoryWatched = [] {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &memory);
    sqlite3_mem_methods watched = memory;
    watched.xMalloc = [](int size) { return Fails("memory", "") ? nullptr : memory.xMalloc(size); };
    watched.xRealloc = [](void* block, int size) {
        return Fails("memory", "") ? nullptr : memory.xRealloc(block, size);
    };
    return sqlite3_config(SQLITE_CONFIG_MALLOC, &watched) == SQLITE_OK;
}();

} // namespace

SqliteFileLayer::SqliteFileLayer(FileWatcher watcher)
{
    EXPECT_TRUE(kIsMemoryWatched);
    watch = std::move(watcher);
    below = sqlite3_vfs_find(nullptr);
    layer = *below;
    layer.zName = "watched";
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
