#include "core/platform/SqliteSettingsStore.h"

#include "core/platform/SettingsDatabase.h"
#include "core/platform/SqliteStatement.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <span>
#include <utility>

namespace fieldcore {

namespace {

/// How the type of a value is written in its row.
enum class RowType : std::int64_t
{
    Text = 1,
    Number = 2,
    Binary = 3,
};

enum class Query : std::size_t
{
    FindKey,
    MakeKey,
    DeleteKeys,
    DeleteValues,
    DeleteValue,
    ListKeys,
    Get,
    Set,
    ListValues,
    Begin,
    Commit,
    Rollback,
    Count
};

constexpr std::size_t kQueryCount = static_cast<std::size_t>(Query::Count);

// ?2 and ?3 of the key queries enclose what stands below a key, see KeysBelow.
constexpr std::array<std::string_view, kQueryCount> kQueries = {
    "SELECT 1 FROM key WHERE folded = ?1",
    "INSERT OR IGNORE INTO key VALUES (?1, ?2)",
    "DELETE FROM key WHERE folded = ?1 OR (folded > ?2 AND folded < ?3)",
    "DELETE FROM value WHERE folded_key = ?1 OR (folded_key > ?2 AND folded_key < ?3)",
    "DELETE FROM value WHERE folded_key = ?1 AND folded_name = ?2",
    "SELECT path FROM key WHERE folded > ?2 AND folded < ?3 ORDER BY folded",
    "SELECT type, data FROM value WHERE folded_key = ?1 AND folded_name = ?2",
    // In one statement, so that no other process can remove the key in between.
    "INSERT INTO value SELECT ?1, ?2, ?3, ?4, ?5 WHERE EXISTS "
    "(SELECT 1 FROM key WHERE folded = ?1) "
    "ON CONFLICT DO UPDATE SET type = excluded.type, data = excluded.data",
    "SELECT type, data, name FROM value WHERE folded_key = ?1 ORDER BY folded_name",
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
};

constexpr wchar_t kSeparator = L'\\';

/// A key's path without empty names.
/// @return nothing if a name is too long or holds a NUL
std::optional<std::wstring> CleanPath(std::wstring_view key)
{
    std::wstring path;
    path.reserve(key.size());
    while (!key.empty()) {
        const std::wstring_view name = key.substr(0, key.find(kSeparator));
        key.remove_prefix(std::min(name.size() + 1, key.size()));
        if (name.size() > SettingsStore::kMaxNameLength ||
            name.find(L'\0') != std::wstring_view::npos) {
            return std::nullopt;
        }
        if (!name.empty()) {
            path += path.empty() ? L"" : L"\\";
            path += name;
        }
    }
    return path;
}

std::string Folded(std::wstring_view name)
{
    return ToUtf8(FoldCase(name));
}

/// Where the paths below a key start and end among all folded paths, both excluded.
struct KeysBelow
{
    explicit KeysBelow(const std::string& folded)
        : first(folded.empty() ? "" : folded + '\\'),
          last(folded.empty() ? "\xFF" : folded + ']') // the character behind the backslash
    {}

    std::string first;
    std::string last;
};

/// The value of a row that starts with type and data.
std::optional<SettingsValue> ValueOf(const SqliteStatement& row)
{
    const auto type = static_cast<RowType>(row.Number(0));
    const int stored = row.Type(1);
    if (type == RowType::Text && stored == SQLITE_TEXT) {
        return FromUtf8(row.Text(1));
    }
    if (type == RowType::Binary && stored == SQLITE_BLOB) {
        const auto bytes = row.Bytes(1);
        return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
    }
    if (type == RowType::Number && stored == SQLITE_INTEGER && row.Number(1) >= 0 &&
        row.Number(1) <= std::numeric_limits<std::uint32_t>::max()) {
        return static_cast<std::uint32_t>(row.Number(1));
    }
    return std::nullopt;
}

/// Binds type and data of a value to parameters 4 and 5.
/// @param utf8  keeps the text while the statement runs
void BindValue(SqliteStatement& statement, const SettingsValue& value, std::string& utf8)
{
    const auto bindType = [&statement](RowType type) {
        statement.Bind(4, static_cast<std::int64_t>(type));
    };
    if (const auto* text = std::get_if<std::wstring>(&value)) {
        utf8 = ToUtf8(std::wstring_view(*text).substr(0, text->find(L'\0')));
        bindType(RowType::Text);
        statement.Bind(5, utf8);
    } else if (const auto* number = std::get_if<std::uint32_t>(&value)) {
        bindType(RowType::Number);
        statement.Bind(5, std::int64_t{*number});
    } else {
        bindType(RowType::Binary);
        statement.Bind(5, std::span(std::get<std::vector<std::uint8_t>>(value)));
    }
}

StoringFault FaultOf(int code)
{
    switch (code) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return StoringFault::InUse;
    case SQLITE_FULL:
        return StoringFault::Full;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_CANTOPEN:
        return StoringFault::ReadOnly;
    default:
        return StoringFault::Unknown;
    }
}

} // namespace

struct SqliteSettingsStore::Database
{
    Database(const std::filesystem::path& file, SettingsSharing sharing)
    {
        SettingsDatabase opened = OpenSettingsDatabase(file, sharing);
        notice = std::move(opened.notice);
        handle = std::move(opened.handle);
        for (std::size_t query = 0; query < kQueryCount; ++query) {
            if (statements[query].Prepare(handle.get(), kQueries[query]) == SQLITE_NOMEM) {
                throw std::bad_alloc();
            }
        }
    }

    ~Database()
    {
        // Closing copies the log into the file, which costs syncs. Who has only read leaves that
        // to those who write.
        if (sqlite3_total_changes(handle.get()) == 0) {
            sqlite3_db_config(handle.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        }
    }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    SqliteStatement& operator[](Query query) { return statements[static_cast<std::size_t>(query)]; }

    /// Runs a statement that stores, and keeps why it could not.
    bool Store(SqliteStatement& statement)
    {
        const bool done = statement.Run();
        fault = done ? fault : FaultOf(sqlite3_errcode(handle.get()));
        return done;
    }

    [[nodiscard]] bool InTransaction() const { return sqlite3_get_autocommit(handle.get()) == 0; }

    /// Runs @p work, in a transaction of its own if no batch is open. Half of the work is never
    /// stored.
    template <typename Work>
    bool Together(Work work)
    {
        if (InTransaction()) {
            return work();
        }
        if (!Store((*this)[Query::Begin])) {
            return false;
        }
        if (work() && Store((*this)[Query::Commit])) {
            return true;
        }
        // SQLite has already rolled back after some errors, such as a full disk.
        if (InTransaction()) {
            (*this)[Query::Rollback].Run();
        }
        return false;
    }

    bool HasKey(const std::string& folded)
    {
        SqliteStatement& find = (*this)[Query::FindKey];
        const StatementUse use(find);
        return find.Bind(1, folded).Step() == SQLITE_ROW;
    }

    /// A key as it was asked for, cleaned, and folded.
    struct KnownKey
    {
        std::wstring asked;
        std::wstring path;
        std::string folded;
    };

    /// Keeps the last one: settings are read and written in rows, most of all on import.
    /// @return nullptr if it is no key
    const KnownKey* Know(std::wstring_view key)
    {
        if (!lastKey || lastKey->asked != key) {
            std::optional<std::wstring> path = CleanPath(key);
            if (!path) {
                return nullptr;
            }
            std::string folded = Folded(*path);
            lastKey = KnownKey{std::wstring(key), std::move(*path), std::move(folded)};
        }
        return &*lastKey;
    }

    bool MakeKey(const std::wstring& path)
    {
        SqliteStatement& make = (*this)[Query::MakeKey];
        for (std::size_t end = 0; end != std::wstring::npos;) {
            end = path.find(kSeparator, end + 1);
            const std::wstring part = path.substr(0, end);
            const std::string folded = Folded(part);
            const std::string shown = ToUtf8(part);
            if (!Store(make.Bind(1, folded).Bind(2, shown))) {
                return false;
            }
        }
        return true;
    }

    /// The rows that a delete query of a key and all below it took away; less than 0: it failed.
    int DeleteBelow(Query query, const std::string& folded)
    {
        const KeysBelow below(folded);
        SqliteStatement& statement = (*this)[query];
        if (!statement.Bind(1, folded).Bind(2, below.first).Bind(3, below.last).Run()) {
            return -1;
        }
        return sqlite3_changes(handle.get());
    }

    SqliteHandle handle;
    SettingsNotice notice;
    StoringFault fault = StoringFault::Unknown; // of the last write that failed
    std::optional<KnownKey> lastKey;
    std::array<SqliteStatement, kQueryCount> statements; // last, so that they go before the handle
};

SqliteSettingsStore::SqliteSettingsStore(const std::filesystem::path& file, SettingsSharing sharing)
    : m_database(std::make_unique<Database>(file, sharing))
{}

SqliteSettingsStore::~SqliteSettingsStore() = default;

bool SqliteSettingsStore::OpenKey(std::wstring_view key, KeyOpening opening)
{
    const std::optional<std::wstring> path = CleanPath(key);
    if (!path) {
        return false;
    }
    if (m_database->HasKey(Folded(*path))) {
        return true;
    }
    return opening == KeyOpening::Create &&
           m_database->Together([&] { return m_database->MakeKey(*path); });
}

SettingsRead SqliteSettingsStore::Get(std::wstring_view key, std::wstring_view name)
{
    const Database::KnownKey* const known = m_database->Know(key);
    if (known == nullptr) {
        return {SettingsReadState::Failed, {}};
    }
    const std::string& foldedKey = known->folded;
    const std::string foldedName = Folded(name);
    SqliteStatement& get = (*m_database)[Query::Get];
    const StatementUse use(get);
    const int result = get.Bind(1, foldedKey).Bind(2, foldedName).Step();
    if (result == SQLITE_DONE) {
        return {SettingsReadState::Missing, {}};
    }
    std::optional<SettingsValue> value;
    if (result == SQLITE_ROW) {
        value = ValueOf(get);
    }
    return value ? SettingsRead{SettingsReadState::Found, std::move(*value)}
                 : SettingsRead{SettingsReadState::Failed, {}};
}

bool SqliteSettingsStore::Set(std::wstring_view key, std::wstring_view name,
                              const SettingsValue& value, KeyOpening opening)
{
    const Database::KnownKey* const known = m_database->Know(key);
    if (known == nullptr || name.size() > kMaxNameLength ||
        name.find(L'\0') != std::wstring_view::npos) {
        return false;
    }
    const std::string& foldedKey = known->folded;
    const std::string foldedName = Folded(name);
    const std::string shownName = ToUtf8(name);
    std::string utf8;
    const auto store = [&] {
        SqliteStatement& set = (*m_database)[Query::Set];
        set.Bind(1, foldedKey).Bind(2, foldedName).Bind(3, shownName);
        BindValue(set, value, utf8);
        return m_database->Store(set);
    };
    if (!store()) {
        return false;
    }
    if (sqlite3_changes(m_database->handle.get()) > 0) {
        return true;
    }
    return opening == KeyOpening::Create &&
           m_database->Together([&] { return m_database->MakeKey(known->path) && store(); });
}

bool SqliteSettingsStore::DeleteKey(std::wstring_view key)
{
    const std::optional<std::wstring> path = CleanPath(key);
    if (!path || path->empty()) {
        return false;
    }
    const std::string folded = Folded(*path);
    return m_database->Together([&] {
        return m_database->DeleteBelow(Query::DeleteValues, folded) >= 0 &&
               m_database->DeleteBelow(Query::DeleteKeys, folded) > 0;
    });
}

bool SqliteSettingsStore::DeleteValue(std::wstring_view key, std::wstring_view name)
{
    const std::optional<std::wstring> path = CleanPath(key);
    if (!path) {
        return false;
    }
    const std::string foldedKey = Folded(*path);
    const std::string foldedName = Folded(name);
    SqliteStatement& remove = (*m_database)[Query::DeleteValue];
    return remove.Bind(1, foldedKey).Bind(2, foldedName).Run() &&
           sqlite3_changes(m_database->handle.get()) > 0;
}

std::optional<std::vector<std::wstring>> SqliteSettingsStore::Keys(std::wstring_view key)
{
    std::vector<std::wstring> names;
    const std::optional<std::wstring> path = CleanPath(key);
    if (!path) {
        return names;
    }
    const KeysBelow below(Folded(*path));
    SqliteStatement& list = (*m_database)[Query::ListKeys];
    const StatementUse use(list);
    list.Bind(2, below.first).Bind(3, below.last);
    const std::size_t prefix = path->empty() ? 0 : path->size() + 1;
    int result = list.Step();
    for (; result == SQLITE_ROW; result = list.Step()) {
        const std::wstring found = FromUtf8(list.Text(0));
        if (found.size() > prefix && found.find(kSeparator, prefix) == std::wstring::npos) {
            names.push_back(found.substr(prefix));
        }
    }
    return result == SQLITE_DONE ? std::optional(std::move(names)) : std::nullopt;
}

std::optional<std::vector<NamedSetting>> SqliteSettingsStore::Values(std::wstring_view key)
{
    std::vector<NamedSetting> values;
    const std::optional<std::wstring> path = CleanPath(key);
    if (!path) {
        return values;
    }
    const std::string folded = Folded(*path);
    SqliteStatement& list = (*m_database)[Query::ListValues];
    const StatementUse use(list);
    list.Bind(1, folded);
    int result = list.Step();
    for (; result == SQLITE_ROW; result = list.Step()) {
        if (std::optional<SettingsValue> value = ValueOf(list)) {
            values.push_back({FromUtf8(list.Text(2)), std::move(*value)});
        }
    }
    return result == SQLITE_DONE ? std::optional(std::move(values)) : std::nullopt;
}

bool SqliteSettingsStore::IsKept() const
{
    const char* const file = sqlite3_db_filename(m_database->handle.get(), "main");
    return file != nullptr && *file != '\0'; // memory has no name
}

StoringFault SqliteSettingsStore::LastFault() const
{
    return m_database->fault;
}

SettingsNotice SqliteSettingsStore::TakeNotice()
{
    return std::exchange(m_database->notice, {});
}

bool SqliteSettingsStore::Begin()
{
    return !m_database->InTransaction() && m_database->Store((*m_database)[Query::Begin]);
}

bool SqliteSettingsStore::Commit()
{
    if (m_database->Store((*m_database)[Query::Commit])) {
        return true;
    }
    Rollback();
    return false;
}

void SqliteSettingsStore::Rollback()
{
    if (m_database->InTransaction()) {
        (*m_database)[Query::Rollback].Run();
    }
}

} // namespace fieldcore
