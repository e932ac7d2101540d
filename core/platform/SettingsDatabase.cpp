#include "core/platform/SettingsDatabase.h"

#include "core/platform/FileLock.h"
#include "core/platform/Folders.h"

#include <cerrno>
#include <chrono>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
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

enum class OpenResult
{
    Ready,
    Damaged, ///< something else than settings is in the file
    Unusable ///< it cannot be opened or written now
};

struct Attempt
{
    OpenResult result = OpenResult::Unusable;
    SqliteHandle handle;
    std::string reason; ///< why it is not ready
};

/// Not part of this includes: the locks that SQLite sets on the file itself, which do not cover
/// making the file, setting it aside and the change to a write-ahead log.
class OpeningLock
{
public:
    explicit OpeningLock(const fs::path& file)
        : m_descriptor(open((file.string() + ".lock").c_str(),
                            O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666))
    {
        m_error = m_descriptor < 0 ? std::error_code(errno, std::generic_category())
                                   : LockFile(m_descriptor, kBusyLimit);
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

Attempt Failed(SqliteHandle handle, int result)
{
    Attempt attempt{IsDamage(result) ? OpenResult::Damaged : OpenResult::Unusable, nullptr,
                    sqlite3_errmsg(handle.get())};
    return attempt; // which closes the database
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

/// How the connection behaves; nothing of it is kept in the file but the write-ahead log.
int Configure(sqlite3* database)
{
    sqlite3_extended_result_codes(database, 1);
    sqlite3_busy_timeout(database, static_cast<int>(kBusyLimit.count()));
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH, kMaxValueBytes);
    // The file is input: nothing in it may run, or change what the statements mean.
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    int keepLog = 1;
    sqlite3_file_control(database, "main", SQLITE_FCNTL_PERSIST_WAL, &keepLog);
    std::string mode;
    const int result = Ask(database, "PRAGMA journal_mode=WAL", mode);
    if (result != SQLITE_ROW) {
        return result;
    }
    return mode == "wal" ? SQLITE_OK : SQLITE_READONLY;
}

/// Whether the file holds what MakeTables() makes, unharmed.
bool IsSound(sqlite3* database)
{
    std::string id;
    std::string check;
    std::string root;
    return Ask(database, "PRAGMA application_id", id) == SQLITE_ROW &&
           id == std::to_string(kApplicationId) &&
           Ask(database, "PRAGMA quick_check(1)", check) == SQLITE_ROW && check == "ok" &&
           Ask(database, "SELECT path FROM key WHERE folded = ''", root) == SQLITE_ROW &&
           SqliteStatement().Prepare(
               database, "SELECT folded_key, folded_name, name, type, data FROM value") ==
               SQLITE_OK;
}

Attempt TryOpen(const fs::path& file)
{
    sqlite3* opened = nullptr;
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    int result = sqlite3_open_v2(file.c_str(), &opened, kFlags, nullptr);
    SqliteHandle handle(opened);
    if (result == SQLITE_OK) {
        result = Configure(opened);
    }
    std::string objects;
    if (result == SQLITE_OK) {
        result = Ask(opened, "SELECT count(*) FROM sqlite_schema", objects);
    }
    if (result != SQLITE_ROW) {
        return Failed(std::move(handle), result);
    }
    if (objects == "0") {
        result = MakeTables(opened);
        if (result != SQLITE_OK) {
            return Failed(std::move(handle), result);
        }
    } else if (!IsSound(opened)) {
        return Failed(std::move(handle), SQLITE_CORRUPT);
    }
    Execute(opened, "PRAGMA synchronous=FULL; PRAGMA wal_autocheckpoint=" +
                        std::to_string(kCheckpointPages));
    return {OpenResult::Ready, std::move(handle), ""};
}

/// Renames the file and what SQLite keeps beside it, so that it can still be looked at.
/// @return its new name, empty if that did not work
fs::path SetAside(const fs::path& file)
{
    std::error_code error;
    fs::path aside;
    int number = 0;
    do {
        aside = file.string() + ".damaged-" + std::to_string(++number);
    } while (fs::exists(aside, error));
    fs::rename(file, aside, error);
    if (error) {
        return {};
    }
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

/// A database in memory, with what can be read from @p file.
SqliteHandle OpenInMemory(const fs::path& file)
{
    sqlite3* opened = nullptr;
    sqlite3_open_v2(":memory:", &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    SqliteHandle memory(opened);
    std::error_code ignored;
    if (!fs::is_regular_file(file, ignored)) {
        Execute(opened, kTables);
        return memory;
    }
    // Where nothing can be written there is no log either, and nothing to lock.
    const std::string address = "file:" + UriPath(file.string()) + "?mode=ro&immutable=1";
    sqlite3* source = nullptr;
    const int found =
        sqlite3_open_v2(address.c_str(), &source, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
    const SqliteHandle sourceHandle(source);
    if (found == SQLITE_OK && IsSound(source)) {
        sqlite3_backup* backup = sqlite3_backup_init(opened, "main", source, "main");
        const bool copied = backup != nullptr && sqlite3_backup_step(backup, -1) == SQLITE_DONE;
        if (sqlite3_backup_finish(backup) == SQLITE_OK && copied) {
            return memory;
        }
    }
    Execute(opened, kTables);
    return memory;
}

SettingsDatabase InMemory(const fs::path& file, const std::string& reason)
{
    return {OpenInMemory(file), {SettingsNotice::Kind::NotKept, file.string(), reason}};
}

} // namespace

SettingsDatabase OpenSettingsDatabase(const fs::path& file)
{
    if (const std::error_code error = Folders::Create(file.parent_path())) {
        return InMemory(file, error.message());
    }
    std::error_code unknown;
    const fs::file_status status = fs::status(file, unknown);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return InMemory(file, "not a file"); // opening a pipe would wait for its other end
    }
    const OpeningLock lock(file);
    if (lock.Error()) {
        return InMemory(file, lock.Error().message());
    }
    Attempt attempt = TryOpen(file);
    SettingsNotice notice;
    if (attempt.result == OpenResult::Damaged) {
        const fs::path aside = SetAside(file);
        if (aside.empty()) {
            return InMemory(file, "damaged, and cannot be renamed");
        }
        notice = {SettingsNotice::Kind::SetAside, aside.string(), ""};
        attempt = TryOpen(file);
    }
    if (attempt.result != OpenResult::Ready) {
        return InMemory(file, attempt.reason);
    }
    return {std::move(attempt.handle), notice};
}

} // namespace fieldcore
