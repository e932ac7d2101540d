#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include <sqlite3.h>

namespace fieldcore {

struct SqliteCloser
{
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using SqliteHandle = std::unique_ptr<sqlite3, SqliteCloser>;

/// A prepared statement. Parameters are numbered from 1, columns from 0. What is bound is not
/// copied and must stay until the statement is reset.
class SqliteStatement
{
public:
    SqliteStatement() = default;

    /// @return SQLite's result code
    int Prepare(sqlite3* database, std::string_view sql);

    SqliteStatement& Bind(int parameter, std::string_view text);
    SqliteStatement& Bind(int parameter, std::int64_t number);
    SqliteStatement& Bind(int parameter, std::span<const std::uint8_t> bytes);

    /// @return SQLITE_ROW, SQLITE_DONE or an error
    int Step();

    /// Step(), and ready for the next use.
    /// @return whether the statement ran to its end
    bool Run();

    void Reset();

    [[nodiscard]] int Type(int column) const;
    [[nodiscard]] std::int64_t Number(int column) const;
    /// Valid until the next Step() or Reset().
    [[nodiscard]] std::string_view Text(int column) const;
    /// Valid until the next Step() or Reset().
    [[nodiscard]] std::span<const std::uint8_t> Bytes(int column) const;

private:
    std::unique_ptr<sqlite3_stmt, SqliteCloser> m_statement;
};

/// Resets a statement at the end of its use: one that is left in the middle keeps the read
/// transaction open, and with it old content.
class StatementUse
{
public:
    explicit StatementUse(SqliteStatement& statement) : m_statement(statement) {}
    ~StatementUse() { m_statement.Reset(); }
    StatementUse(const StatementUse&) = delete;
    StatementUse& operator=(const StatementUse&) = delete;

private:
    SqliteStatement& m_statement;
};

} // namespace fieldcore
