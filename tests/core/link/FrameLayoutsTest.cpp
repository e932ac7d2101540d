// The tables of docs/protocol.md are printed from the layouts that the library reads by. The words
// around them are written by hand.

#include "core/link/FrameLayouts.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr const char* kHead = "| offset | type | content |\n|---|---|---|\n";

std::string TypeOf(const FieldLayout& field)
{
    const std::string width = field.width == 0 ? "n" : std::to_string(field.width);
    const std::string bits = std::to_string(8 * field.width);
    switch (field.kind) {
    case FieldKind::Unsigned:
    case FieldKind::Mask:
        return "u" + bits;
    case FieldKind::Real:
    case FieldKind::Angle:
        return "f" + bits;
    case FieldKind::Digit:
    case FieldKind::Digits:
    case FieldKind::Hundredths:
        return "dec[" + width + "]";
    case FieldKind::Text:
        return "ch[" + width + "]";
    case FieldKind::Pattern:
    case FieldKind::Spare:
        break;
    }
    return field.width == 1 ? "1 byte" : width + " bytes";
}

/// Which bits a meaning looks at; empty for all of them.
std::string BitsOf(std::uint32_t bits)
{
    if (bits == 0xFFFFFFFF) {
        return {};
    }
    const int first = std::countr_zero(bits);
    const int last = first + std::popcount(bits) - 1;
    return first == last ? "bit " + std::to_string(first) + " "
                         : "bits " + std::to_string(first) + " to " + std::to_string(last) + ": ";
}

std::string MeaningsOf(const FieldLayout& field)
{
    std::string words;
    std::uint32_t bits = 0;
    for (const Meaning& meaning : field.meanings) {
        words += words.empty() ? ": " : bits == meaning.bits ? ", " : "; ";
        words += bits == meaning.bits ? "" : BitsOf(meaning.bits);
        words += std::has_single_bit(meaning.bits) ? "" : std::to_string(meaning.value) + " ";
        words += meaning.words;
        bits = meaning.bits;
    }
    return words;
}

std::string ContentOf(const FieldLayout& field)
{
    if (field.kind == FieldKind::Spare) {
        return "spare";
    }
    std::string unit(field.kind == FieldKind::Hundredths ? "hundredths"
                     : field.kind == FieldKind::Angle    ? "rad"
                                                         : field.unit);
    unit.insert(0, unit.empty() ? "" : ", ");
    return std::string(field.name) + unit + MeaningsOf(field);
}

/// Bytes that tell frames of one type apart.
std::string ValuesOf(std::string_view prefix)
{
    std::string values;
    for (const char c : prefix) {
        values += (values.empty() ? "" : ", ") +
                  (std::isgraph(c) != 0 ? "`" + std::string(1, c) + "`" : std::to_string(c));
    }
    return values;
}

/// @param prefix     that spare bytes at the start stand for
/// @param isOrdered  not all fields may be there: their order in place of their offsets
std::string RowsOf(std::span<const FieldLayout> fields, std::string_view prefix = {},
                   bool isOrdered = false)
{
    std::string rows;
    std::size_t place = isOrdered ? 1 : 0;
    for (const FieldLayout& field : fields) {
        const bool tellsApart = rows.empty() && !prefix.empty() && field.kind == FieldKind::Spare;
        rows += "| " + std::to_string(place) + " | " + TypeOf(field) + " | " +
                (tellsApart ? ValuesOf(prefix) : ContentOf(field)) + " |\n";
        place += isOrdered ? 1 : field.width;
    }
    return rows;
}

std::string OrderedTable(std::span<const FieldLayout> fields)
{
    return "| order | type | content |\n|---|---|---|\n" + RowsOf(fields, {}, true);
}

std::string TableOf(const FrameLayout& layout)
{
    std::array<char, 8> type{};
    std::snprintf(type.data(), type.size(), "0x%02X", layout.type);
    const std::string table = "Data of " + std::string(type.data()) + ", " +
                              std::string(layout.name) + ":\n\n" + kHead +
                              RowsOf(layout.fields, layout.prefix);
    return table +
           (layout.record.empty() ? "" : "\nEach record:\n\n" + (kHead + RowsOf(layout.record)));
}

TEST(FrameLayouts, AreTheTablesOfTheProtocol)
{
    std::ifstream file(FIELDCORE_SOURCE_DIR "/docs/protocol.md");
    std::ostringstream content;
    content << file.rdbuf();
    std::string page = content.str() + "\n";
    std::set<std::string> tables{OrderedTable(TextSatelliteLayout()),
                                 OrderedTable(BinarySatelliteLayout())};
    for (const FrameLayout& layout : FrameLayouts()) {
        // One field is told in the words around it.
        if (std::ranges::count_if(layout.fields, [](const FieldLayout& field) {
                return field.kind != FieldKind::Spare;
            }) > 1) {
            tables.insert(TableOf(layout));
        }
    }
    for (const std::string& table : tables) {
        const std::size_t at = page.find("\n" + table + "\n");
        EXPECT_NE(at, std::string::npos) << "missing:\n\n" << table;
        page.erase(std::min(at, page.size()), table.size());
    }
    EXPECT_EQ(page.find(kHead), std::string::npos) << "a table that stands for no frame";
}

} // namespace
} // namespace fieldcore
