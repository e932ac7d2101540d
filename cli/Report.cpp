#include "cli/Report.h"

#include "core/platform/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace fieldcore::cli {

namespace {

bool IsWide(char32_t code)
{
    return (code >= 0x1100 && code < 0x1160) || (code >= 0x2E80 && code < 0xA4D0) ||
           (code >= 0xAC00 && code < 0xD7A4) || (code >= 0xF900 && code < 0xFB00) ||
           (code >= 0xFF01 && code < 0xFF61) || (code >= 0xFFE0 && code < 0xFFE7);
}

/// What a person reads, in the language of the run.
std::string WordsOf(const Value& value)
{
    const auto* const yes = std::get_if<bool>(&value.GetData());
    return yes != nullptr ? Worded(*yes ? text::kSayYes : text::kSayNo) : value.Words();
}

/// Breaks a long text behind commas; further lines begin @p indent columns in.
std::string Wrapped(const std::string& text, std::size_t indent)
{
    constexpr std::size_t kWidth = 80;
    constexpr std::string_view kComma = ", ";
    std::string wrapped;
    std::size_t column = indent;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t comma = text.find(kComma, at);
        const std::size_t end = comma == std::string::npos ? text.size() : comma + kComma.size();
        const std::string piece = text.substr(at, end - at);
        const std::size_t width = DisplayWidth(piece);
        if (column > indent && column + width > kWidth) {
            wrapped.pop_back(); // the blank behind the comma
            wrapped += "\n" + std::string(indent, ' ');
            column = indent;
        }
        wrapped += piece;
        column += width;
        at = end;
    }
    return wrapped;
}

std::string WithoutTrailingBlanks(std::string line)
{
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

std::string TableWords(const Report::Table& table)
{
    if (table.rows.empty()) {
        return table.whenEmpty + "\n";
    }
    std::vector<std::pair<std::string, std::size_t>> cells;
    for (std::size_t at = 0; at < table.rows.front().size(); ++at) {
        const std::string head = HeadOf(table.rows.front()[at]);
        std::size_t width = DisplayWidth(head);
        for (const auto& row : table.rows) {
            width = std::max(width, DisplayWidth(WordsOf(row[at].value)));
        }
        cells.emplace_back(head, width + 2);
    }
    std::string text = TableLine(cells);
    for (const auto& row : table.rows) {
        for (std::size_t at = 0; at < cells.size(); ++at) {
            cells[at].first = WordsOf(row[at].value);
        }
        text += TableLine(cells);
    }
    return text;
}

std::string Indented(const std::string& text)
{
    std::string indented;
    bool startsLine = true;
    for (const char c : text) {
        indented += startsLine ? "  " : "";
        indented += c;
        startsLine = c == '\n';
    }
    return indented;
}

} // namespace

void Report::Add(std::string key, Wording label, Value value)
{
    m_items.emplace_back(Field{std::move(key), std::move(label), std::move(value)});
}

Report& Report::AddSection(std::string key, Wording title)
{
    m_items.emplace_back(Section{std::move(key), std::move(title), std::make_unique<Report>()});
    return *std::get<Section>(m_items.back()).content;
}

void Report::AddEntry(const std::string& key, Report entry)
{
    const auto* const last = m_items.empty() ? nullptr : std::get_if<List>(&m_items.back());
    const bool goesOn = last != nullptr && last->key == key;
    Item& item = goesOn ? m_items.back() : m_items.emplace_back(List{key, {}});
    std::get<List>(item).entries.push_back(std::make_unique<Report>(std::move(entry)));
}

std::string Report::Words() const
{
    std::size_t width = 0;
    for (const Item& item : m_items) {
        if (const auto* field = std::get_if<Field>(&item)) {
            width = std::max(width, DisplayWidth(field->label));
        }
    }
    std::string text;
    for (const Item& item : m_items) {
        if (const auto* field = std::get_if<Field>(&item)) {
            text +=
                Padded(field->label, width + 2) + Wrapped(WordsOf(field->value), width + 2) + "\n";
        } else if (const auto* section = std::get_if<Section>(&item)) {
            text += section->title + "\n" + Indented(section->content->Words());
        } else if (const auto* table = std::get_if<Table>(&item)) {
            text += TableWords(*table);
        } else {
            for (const auto& entry : std::get<List>(item).entries) {
                text += entry->Words() + "\n";
            }
        }
    }
    return text;
}

std::string HeadOf(const Report::Cell& cell)
{
    const auto* const id = std::get_if<int>(&cell.head);
    return id != nullptr ? Worded(*id) : std::get<const char*>(cell.head);
}

std::size_t DisplayWidth(std::string_view utf8)
{
    std::size_t width = 0;
    while (!utf8.empty()) {
        const std::optional<char32_t> code = TakeUtf8Character(utf8);
        width += code && IsWide(*code) ? 2U : 1U;
    }
    return width;
}

std::string TableLine(const std::vector<std::pair<std::string, std::size_t>>& textsAndWidths)
{
    std::string line;
    for (const auto& [text, width] : textsAndWidths) {
        line += Padded(text, width);
    }
    return WithoutTrailingBlanks(line) + "\n";
}

std::string Padded(std::string_view text, std::size_t width)
{
    const std::size_t used = DisplayWidth(text);
    return std::string(text) + std::string(used < width ? width - used : 0, ' ');
}

} // namespace fieldcore::cli
