#pragma once

#include "cli/Wording.h"

#include "core/platform/Value.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace fieldcore::cli {

/// What a command has to say: named values, sections and lists of them, and tables, in order. Text
/// and JSON are both made from it, so that neither can know what the other does not.
class Report
{
public:
    struct Field
    {
        std::string key;
        Wording label;
        Value value;
    };
    struct Section
    {
        std::string key;
        Wording title;
        std::unique_ptr<Report> content;
    };
    /// What stands in a row, and in which column: the first row tells what the columns are.
    struct Cell
    {
        const char* key;
        std::variant<int, const char*> head; ///< the number of a text, or words
        Value value;
    };
    struct Table
    {
        std::string key;
        Wording whenEmpty{}; ///< a person reads this in place of a table without rows
        std::vector<std::vector<Cell>> rows{};
    };
    struct List
    {
        std::string key;
        std::vector<std::unique_ptr<Report>> entries;
    };
    using Item = std::variant<Field, Section, Table, List>;

    Report() = default;
    /// One that has only a table.
    explicit Report(Table table) { AddTable(std::move(table)); }

    void Add(std::string key, Wording label, Value value);
    /// A value that only programs read.
    void Add(std::string key, Value value) { Add(std::move(key), "", std::move(value)); }
    /// @return the section, to be filled; it lives as long as the report
    Report& AddSection(std::string key, Wording title = {});
    /// Adds an entry to the list of that key; nothing else may be added between two of them.
    void AddEntry(const std::string& key, Report entry);
    void AddTable(Table table) { m_items.emplace_back(std::move(table)); }

    [[nodiscard]] const std::vector<Item>& Items() const { return m_items; }
    /// The lines that a person reads.
    [[nodiscard]] std::string Words() const;

private:
    std::vector<Item> m_items;
};

/// One of a few things that a value may be.
/// @param code  what a program reads
[[nodiscard]] inline Value Term(std::string code, Wording words)
{
    return Value::Word(std::move(code), std::move(words));
}

/// The head of the column that a cell stands in.
[[nodiscard]] std::string HeadOf(const Report::Cell& cell);

/// How many columns of a terminal @p utf8 takes; characters of Japanese text take two.
[[nodiscard]] std::size_t DisplayWidth(std::string_view utf8);

/// A line of a table whose lines come one by one: texts, each as wide as its column.
[[nodiscard]] std::string
TableLine(const std::vector<std::pair<std::string, std::size_t>>& textsAndWidths);

/// @p text with blanks behind it, @p width columns wide.
[[nodiscard]] std::string Padded(std::string_view text, std::size_t width);

} // namespace fieldcore::cli
