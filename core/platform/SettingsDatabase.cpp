#include "core/platform/SettingsDatabase.h"

#include "core/platform/FileLock.h"
#include "core/platform/Folders.h"
#include "core/platform/WholeFile.h"

#include <cerrno>
#include <chrono>
#include <initializer_list>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds kBusyLimit{5000};
constexpr int kApplicationId = 0x46435354; // "FCST": tells a settings file from other databases
constexpr int kVersion = 1;                // of the tables
constexpr int kMaxValueBytes = 1 << 20;    // a longer value is no setting

// The log is written again from its start every kCheckpointPages pages. As long as it never gets
// longer than it was made, a write does not change the file's size, and syncing it costs half.
constexpr int kCheckpointPages = 200;
constexpr int kLogPages = 256;

// Case is folded before names get here. The root's own key has the empty path.
constexpr const char* kTables = R"sql(
    CREATE TABLE key (
        folded TEXT PRIMARY KEY NOT NULL,
        path TEXT NOT NULL
    ) WITHOUT ROWID;
    CREATE TABLE value (
        folded_key TEXT NOT NULL,
        folded_name TEXT NOT NULL,
        name TEXT NOT NULL,
        type INTEGER NOT NULL,
        data NOT NULL,
        PRIMARY KEY (folded_key, folded_name)
    ) WITHOUT ROWID;
    INSERT INTO key VALUES ('', '');
)sql";

/// What SQLite's codes do not say: the file is a sound database, and not ours.
constexpr int kForeign = SQLITE_MISMATCH;

/// A database that was opened, or why it was not.
struct Attempt
{
    int result = SQLITE_OK; ///< SQLite's code, or kForeign
    SqliteHandle handle;    ///< of meaning if that is SQLITE_OK
    std::string reason;     ///< else
};

/// Not part of this includes: the locks that SQLite sets on the file itself, which do not cover
/// making the file, setting it aside and the change to a write-ahead log.
///
/// Who may only read a file can lock it. So this one can only be written, by those who may.
class OpeningLock
{
public:
    OpeningLock(const fs::path& file, SettingsSharing sharing)
        : m_descriptor(open((file.string() + ".lock").c_str(),
                            O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                            sharing == SettingsSharing::Private ? S_IWUSR : kWriters))
    {
        if (m_descriptor < 0) {
            m_error = {errno, std::generic_category()};
            return;
        }
        struct stat status = {};
        if (fstat(m_descriptor, &status) == 0 && (status.st_mode & kReaders) != 0) {
            fchmod(m_descriptor, status.st_mode & kWriters); // as earlier versions made it
        }
        m_error = LockFile(m_descriptor, kBusyLimit);
    }
    ~OpeningLock()
    {
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
    }
    OpeningLock(const OpeningLock&) = delete;
    OpeningLock& operator=(const OpeningLock&) = delete;

    [[nodiscard]] const std::error_code& Error() const { return m_error; }

private:
    static constexpr mode_t kWriters = S_IWUSR | S_IWGRP | S_IWOTH;
    static constexpr mode_t kReaders = S_IRUSR | S_IRGRP | S_IROTH;

    int m_descriptor;
    std::error_code m_error;
};

int Execute(sqlite3* database, const std::string& sql)
{
    return sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr);
}

/// The first column of the first row.
/// @return SQLite's result code; SQLITE_ROW if @p answer was filled
int Ask(sqlite3* database, std::string_view sql, std::string& answer)
{
    SqliteStatement statement;
    const int prepared = statement.Prepare(database, sql);
    if (prepared != SQLITE_OK) {
        return prepared;
    }
    const int result = statement.Step();
    if (result == SQLITE_ROW) {
        answer = statement.Text(0);
    }
    return result;
}

bool IsDamage(int result)
{
    const int primary = result & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

std::string Reason(sqlite3* database, int result)
{
    if (result == kForeign) {
        return "no settings are in it; move it away, and a new one is begun";
    }
    std::string reason = sqlite3_extended_errcode(database) == result ? sqlite3_errmsg(database)
                                                                      : sqlite3_errstr(result);
    const int primary = result & 0xFF;
    if (const int cause = sqlite3_system_errno(database);
        cause != 0 && (primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN)) {
        reason += ", " + std::generic_category().message(cause);
    }
    return reason;
}

/// Closes the database as it is, without copying its log into the file.
Attempt Failed(SqliteHandle handle, int result)
{
    if (handle) { // else there was no memory for it
        sqlite3_db_config(handle.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    }
    return {result, nullptr, Reason(handle.get(), result)};
}

/// Makes the log as long as it is going to be, with as many commits of one page as that takes. They
/// change the path of the root's own key, which nobody looks at: a row that stays the same would
/// not be written.
int GrowLog(sqlite3* database)
{
    int result = Execute(database, "PRAGMA synchronous=OFF; PRAGMA wal_autocheckpoint=0;");
    for (int page = 0; page < kLogPages && result == SQLITE_OK; ++page) {
        result = Execute(database,
                         "UPDATE key SET path = " + std::to_string(page) + " WHERE folded = ''");
    }
    if (result == SQLITE_OK) {
        result = Execute(database, "PRAGMA synchronous=FULL; PRAGMA wal_checkpoint(RESTART);");
    }
    return result;
}

int MakeTables(sqlite3* database)
{
    const int result = Execute(
        database, "BEGIN IMMEDIATE; PRAGMA application_id=" + std::to_string(kApplicationId) +
                      "; PRAGMA user_version=" + std::to_string(kVersion) + ";" + kTables +
                      "COMMIT;");
    return result == SQLITE_OK ? GrowLog(database) : result;
}

/// How the connection behaves; nothing of it is kept in the file.
void Configure(sqlite3* database)
{
    sqlite3_extended_result_codes(database, 1);
    sqlite3_busy_timeout(database, static_cast<int>(kBusyLimit.count()));
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH, kMaxValueBytes);
    // The file is input: nothing in it may run, or change what the statements mean.
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

Attempt Open(const std::string& name, int flags)
{
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(name.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    SqliteHandle handle(opened);
    if (result != SQLITE_OK) {
        return Failed(std::move(handle), result);
    }
    Configure(opened);
    return {SQLITE_OK, std::move(handle), ""};
}

SqliteHandle OpenMemory()
{
    return Open(":memory:", SQLITE_OPEN_READWRITE).handle;
}

/// Whether the database is ours; writes nothing. One that has nothing in it yet is.
int Identify(sqlite3* database, bool& isEmpty)
{
    std::string id;
    std::string objects;
    int result = Ask(database, "PRAGMA application_id", id);
    if (result == SQLITE_ROW) {
        result = Ask(database, "SELECT count(*) FROM sqlite_schema", objects);
    }
    if (result != SQLITE_ROW) {
        return result;
    }
    isEmpty = id == "0" && objects == "0";
    return isEmpty || id == std::to_string(kApplicationId) ? SQLITE_OK : kForeign;
}

int UseLog(sqlite3* database)
{
    int keepLog = 1;
    sqlite3_file_control(database, "main", SQLITE_FCNTL_PERSIST_WAL, &keepLog);
    std::string mode;
    const int result = Ask(database, "PRAGMA journal_mode=WAL", mode);
    if (result != SQLITE_ROW) {
        return result;
    }
    // What may only be read opens without a word.
    const bool canWrite = mode == "wal" && sqlite3_db_readonly(database, "main") == 0;
    return canWrite ? SQLITE_OK : SQLITE_READONLY;
}

int CopyAll(sqlite3* from, sqlite3* to)
{
    if (to == nullptr) {
        return SQLITE_NOMEM;
    }
    sqlite3_backup* const backup = sqlite3_backup_init(to, "main", from, "main");
    if (backup == nullptr) {
        return sqlite3_errcode(to);
    }
    const int copied = sqlite3_backup_step(backup, -1);
    sqlite3_backup_finish(backup);
    return copied == SQLITE_DONE ? SQLITE_OK : copied;
}

int CheckPages(sqlite3* database)
{
    std::string answer;
    const int result = Ask(database, "PRAGMA quick_check(1)", answer);
    if (result != SQLITE_ROW) {
        return result;
    }
    return answer == "ok" ? SQLITE_OK : SQLITE_CORRUPT;
}

/// Whether the file holds what MakeTables() makes, unharmed.
int Check(sqlite3* database)
{
    int result = CheckPages(database);
    if (IsDamage(result)) {
        // A page that cannot be read now is called the same. In memory all of them can be read.
        const SqliteHandle memory = OpenMemory();
        result = CopyAll(database, memory.get());
        if (result == SQLITE_OK) {
            result =
                CheckPages(memory.get()) == SQLITE_CORRUPT ? SQLITE_CORRUPT : SQLITE_IOERR_READ;
        }
    }
    for (const char* const rows : {"SELECT folded, path FROM key",
                                   "SELECT folded_key, folded_name, name, type, data FROM value"}) {
        result = result == SQLITE_OK ? SqliteStatement().Prepare(database, rows) : result;
    }
    return result;
}

/// Whether the log can be written, too.
int ProveWritable(sqlite3* database)
{
    sqlite3_busy_timeout(database, 0);
    const int result = Execute(database, "BEGIN IMMEDIATE; ROLLBACK");
    sqlite3_busy_timeout(database, static_cast<int>(kBusyLimit.count()));
    return (result & 0xFF) == SQLITE_BUSY ? SQLITE_OK : result; // who may not is told so
}

Attempt OpenFile(const fs::path& file)
{
    Attempt attempt = Open(file.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (attempt.result != SQLITE_OK) {
        return attempt;
    }
    sqlite3* const database = attempt.handle.get();
    bool isEmpty = false;
    int result = Identify(database, isEmpty); // first: another program's file is left as it is
    result = result == SQLITE_OK ? UseLog(database) : result;
    if (result == SQLITE_OK) {
        result = isEmpty ? MakeTables(database) : Check(database);
    }
    result = result == SQLITE_OK ? ProveWritable(database) : result;
    if (result == SQLITE_OK) {
        result = Execute(database, "PRAGMA synchronous=FULL; PRAGMA wal_autocheckpoint=" +
                                       std::to_string(kCheckpointPages));
    }
    return result == SQLITE_OK ? std::move(attempt) : Failed(std::move(attempt.handle), result);
}

/// Renames the file and what SQLite keeps beside it, so that it can still be looked at.
/// @return its new name, empty if that did not work
fs::path SetAside(const fs::path& file)
{
    const fs::path aside = SetFileAside(file);
    if (aside.empty()) {
        return {};
    }
    std::error_code error;
    for (const std::string suffix : {"-wal", "-shm"}) {
        if (fs::exists(file.string() + suffix, error)) {
            fs::rename(file.string() + suffix, aside.string() + suffix, error);
        }
    }
    return error ? fs::path() : aside;
}

/// A path as it stands in an address: there "?" and "#" would end it and "%" begins a code.
std::string UriPath(std::string_view path)
{
    std::string escaped;
    for (const char c : path) {
        switch (c) {
        case '%':
            escaped += "%25";
            break;
        case '?':
            escaped += "%3f";
            break;
        case '#':
            escaped += "%23";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

bool HasLog(const fs::path& file)
{
    std::error_code error;
    const fs::path target = fs::canonical(file, error); // the log is beside the file, not its link
    const auto size = fs::file_size((error ? file : target).string() + "-wal", error);
    return error ? error != std::errc::no_such_file_or_directory : size > 0;
}

/// A copy in memory has the version of the file's format, of which SQLite writes none above its
/// own: puts one with a version that it writes in its place.
int MakeWritable(SqliteHandle& memory)
{
    constexpr sqlite3_int64 kHeader = 100; // bytes
    constexpr int kWriteVersion = 18;      // where it is, and behind it that for reading
    if (const int result = ProveWritable(memory.get()); (result & 0xFF) != SQLITE_READONLY) {
        return result;
    }
    sqlite3_int64 size = 0;
    unsigned char* const bytes = sqlite3_serialize(memory.get(), "main", &size, 0);
    SqliteHandle writable = OpenMemory();
    if (bytes == nullptr || size < kHeader || !writable) {
        sqlite3_free(bytes);
        return SQLITE_NOMEM;
    }
    bytes[kWriteVersion] = bytes[kWriteVersion + 1] = 1; // without a log, which memory has not
    const int result = sqlite3_deserialize(
        writable.get(), "main", bytes, size, size,
        SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE); // frees them in any case
    memory = std::move(writable);
    return result;
}

/// All that the file and its log hold, in memory.
Attempt ReadAll(const fs::path& file)
{
    // What has no log can be read as it is, even where no lock can be set. What has one is never
    // read without it: the newest settings are only there.
    const bool hasLog = HasLog(file);
    const std::string address =
        "file:" + UriPath(file.string()) + (hasLog ? "?mode=ro" : "?mode=ro&immutable=1");
    Attempt source = Open(address, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    if (source.result != SQLITE_OK) {
        return source;
    }
    bool isEmpty = false;
    int result = Identify(source.handle.get(), isEmpty);
    if (result == SQLITE_OK && !isEmpty) {
        result = Check(source.handle.get());
    }
    SqliteHandle memory = OpenMemory();
    if (result == SQLITE_OK) {
        result =
            isEmpty ? Execute(memory.get(), kTables) : CopyAll(source.handle.get(), memory.get());
    }
    result = result == SQLITE_OK ? MakeWritable(memory) : result;
    if (result == SQLITE_OK && HasLog(file) != hasLog) {
        result = SQLITE_BUSY; // somebody has begun to write meanwhile
    }
    return result == SQLITE_OK ? Attempt{SQLITE_OK, std::move(memory), ""}
                               : Failed(std::move(source.handle), result);
}

/// Settings in memory, with what can be read from the file.
SettingsDatabase InMemory(const fs::path& file, const std::string& reason)
{
    SettingsNotice notice{SettingsNotice::Kind::NotKept, file.string(), reason};
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::is_regular_file(status) || !fs::status_known(status)) {
        Attempt read = ReadAll(file);
        if (read.result == SQLITE_OK) {
            return {std::move(read.handle), std::move(notice)};
        }
        notice.kind = SettingsNotice::Kind::NotRead;
        notice.reason = read.reason == reason ? reason : reason + "; " + read.reason;
    }
    SqliteHandle memory = OpenMemory();
    if (!memory || Execute(memory.get(), kTables) != SQLITE_OK) {
        throw std::bad_alloc(); // nothing else is in the way of it
    }
    return {std::move(memory), std::move(notice)};
}

/// Makes the folder if it is not there; the user's own for the user alone.
std::error_code MakeFolder(const fs::path& folder, SettingsSharing sharing)
{
    std::error_code ignored;
    const bool isNew = !fs::exists(folder, ignored);
    const std::error_code error = Folders::Create(folder);
    if (!error && isNew && sharing == SettingsSharing::Private) {
        fs::permissions(folder, fs::perms::owner_all, ignored);
    }
    return error;
}

/// SQLite would make the file for all to read, and what belongs to it like the file.
void MakePrivate(const fs::path& file)
{
    const int made = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (made >= 0) {
        close(made);
    }
    for (const std::string suffix : {"", "-wal", "-shm"}) {
        std::error_code ignored; // they may not be there, or not be ours
        fs::permissions(file.string() + suffix, fs::perms::group_all | fs::perms::others_all,
                        fs::perm_options::remove, ignored);
    }
}

} // namespace

SettingsDatabase OpenSettingsDatabase(const fs::path& file, SettingsSharing sharing)
{
    if (const std::error_code error = MakeFolder(file.parent_path(), sharing)) {
        return InMemory(file, error.message());
    }
    std::error_code unknown;
    const fs::file_status status = fs::status(file, unknown);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return InMemory(file, "not a file"); // opening a pipe would wait for its other end
    }
    const OpeningLock lock(file, sharing);
    if (lock.Error()) {
        return InMemory(file, lock.Error() == std::errc::timed_out
                                  ? "another program keeps it locked"
                                  : lock.Error().message());
    }
    if (sharing == SettingsSharing::Private) {
        MakePrivate(file);
    }
    Attempt attempt = OpenFile(file);
    SettingsNotice notice;
    if (IsDamage(attempt.result)) {
        const fs::path aside = SetAside(file);
        if (aside.empty()) {
            return InMemory(file, "damaged, and cannot be renamed");
        }
        notice = {SettingsNotice::Kind::SetAside, aside.string(), ""};
        if (sharing == SettingsSharing::Private) {
            MakePrivate(file);
        }
        attempt = OpenFile(file);
        attempt.reason = "damaged and kept as " + aside.string() + "; " + attempt.reason;
    }
    if (attempt.result != SQLITE_OK) {
        return InMemory(file, attempt.reason);
    }
    return {std::move(attempt.handle), notice};
}

} // namespace fieldcore
