#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace fieldcore::cli {

/// One value of a report, for a person and for a program alike. What is not known is "--" to the
/// one and null to the other, never 0.
class Value
{
public:
    using Data = std::variant<std::monostate, bool, std::int64_t, double, std::string,
                              std::vector<std::string>>;

    static Value Unknown();
    /// @param none  what a person reads in place of an empty text
    static Value Text(std::string utf8, std::string none = "--");
    static Value Text(std::wstring_view text);
    static Value Integer(std::int64_t number, std::string unit = {});
    /// Both read the number rounded to @p decimals. One that is not finite is unknown.
    static Value Real(double number, int decimals, std::string unit = {});
    /// The number with as many digits as it takes to tell it from any other.
    static Value Exact(double number, std::string unit = {});
    static Value YesNo(bool yes);
    static Value List(std::vector<std::string> texts);
    /// @param code   what a program reads
    /// @param words  what a person reads
    static Value Word(std::string code, std::string words);

    [[nodiscard]] const Data& GetData() const { return m_data; }
    [[nodiscard]] const std::string& Unit() const { return m_unit; }
    [[nodiscard]] bool IsUnknown() const { return m_data.index() == 0; }
    /// What a person reads: printable, with the unit.
    [[nodiscard]] std::string Words() const;

private:
    Value() = default;

    Data m_data;
    std::string m_unit;
    std::string m_words; // empty: made from the data
    int m_decimals = -1; // less than 0: exact
};

/// What a command has to say: named values, sections and
/// lists of them, and tables, in order. Text and
/// JSON are both made from it, so that neither can know what the other does not.
class Report
{
public:
    struct Field
    {
        std::string key;
        std::string label;
        Value value;
    };
    struct Section
    {
        std::string key;
        std::string title;
        std::unique_ptr<Report> content;
    };
    struct Column
    {
        std::string key;
        std::string label;
    };
    struct Table
    {
        std::string key;
        std::string whenEmpty; ///< a person reads this in place of a table without rows
        std::vector<Column> columns;
        std::vector<std::vector<Value>> rows; ///< each as long as the columns
    };
    struct List
    {
        std::string key;
        std::vector<std::unique_ptr<Report>> entries;
    };
    using Item = std::variant<Field, Section, Table, List>;

    void Add(std::string key, std::string label, Value value);
    /// @return the section, to be filled; it lives as long as the report
    Report& AddSection(std::string key, std::string title);
    /// Adds an entry to the list of that key, which begins with its first entry.
    void AddEntry(const std::string& key, Report entry);
    void AddTable(Table table) { m_items.emplace_back(std::move(table)); }

    [[nodiscard]] const std::vector<Item>& Items() const { return m_items; }
    /// The lines that a person reads.
    [[nodiscard]] std::string Words() const;

private:
    std::vector<Item> m_items;
};

/// @p text with blanks behind it, @p width columns wide.
[[nodiscard]] std::string Padded(std::string_view text, std::size_t width);

} // namespace fieldcore::cli
