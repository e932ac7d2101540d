#include "core/platform/SqliteStatement.h"

#include <cstddef>

namespace fieldcore {

int SqliteStatement::Prepare(sqlite3* database, std::string_view sql)
{
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v3(database, sql.data(), static_cast<int>(sql.size()),
                                          SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    m_statement.reset(statement);
    return result;
}

// A binding only fails for a parameter that the statement does not have, or a text that is too
// long; the statement then stores or finds nothing, because NULL is no key, name or data.

SqliteStatement& SqliteStatement::Bind(int parameter, std::string_view text)
{
    sqlite3_bind_text64(m_statement.get(), parameter, text.data() != nullptr ? text.data() : "",
                        text.size(), SQLITE_STATIC, SQLITE_UTF8);
    return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::int64_t number)
{
    sqlite3_bind_int64(m_statement.get(), parameter, number);
    return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::span<const std::uint8_t> bytes)
{
    // A null pointer would bind NULL instead of no bytes.
    static constexpr std::uint8_t kNothing = 0;
    sqlite3_bind_blob64(m_statement.get(), parameter, bytes.empty() ? &kNothing : bytes.data(),
                        bytes.size(), SQLITE_STATIC);
    return *this;
}

int SqliteStatement::Step()
{
    return sqlite3_step(m_statement.get());
}

bool SqliteStatement::Run()
{
    const bool done = Step() == SQLITE_DONE;
    Reset();
    return done;
}

void SqliteStatement::Reset()
{
    sqlite3_reset(m_statement.get());
}

int SqliteStatement::Type(int column) const
{
    return sqlite3_column_type(m_statement.get(), column);
}

std::int64_t SqliteStatement::Number(int column) const
{
    return sqlite3_column_int64(m_statement.get(), column);
}

std::string_view SqliteStatement::Text(int column) const
{
    const auto bytes = Bytes(column);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::span<const std::uint8_t> SqliteStatement::Bytes(int column) const
{
    const auto* data = static_cast<const std::uint8_t*>(
        sqlite3_column_blob(m_statement.get(), column)); // a text's own bytes, if it is one
    return {data, data != nullptr
                      ? static_cast<std::size_t>(sqlite3_column_bytes(m_statement.get(), column))
                      : 0};
}

} // namespace fieldcore
