// The layouts in docs/protocol.md are printed from the layouts that the library reads by. The words
// around them are written by hand.

#include "core/link/FrameLayouts.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr const char* kHead = "```layout\n";

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

std::string Line(const std::string& place, const std::string& type, std::string content)
{
    constexpr std::size_t kWidth = 85; // of the content
    std::ostringstream line;
    line << std::setw(3) << place << "  " << std::left << std::setw(10) << type;
    while (content.size() > kWidth) {
        const std::size_t end = content.rfind(' ', kWidth);
        line << content.substr(0, end) << '\n' << std::string(15, ' ');
        content.erase(0, end + 1);
    }
    line << content << '\n';
    return line.str();
}

/// Spare bytes at the start that tell frames of one type apart.
std::string PrefixLine(const FrameLayout& layout)
{
    const std::string_view prefix = layout.prefix;
    std::string values;
    for (const char c : prefix) {
        values += (values.empty() ? "" : ", ") +
                  (std::isgraph(c) != 0 ? "'" + std::string(1, c) + "'" : std::to_string(c));
    }
    return Line("0", TypeOf({prefix.size(), FieldKind::Spare, ""}), values);
}

/// Spare bytes have a line at the end only, where it tells how many there are.
std::string LinesOf(std::span<const FieldLayout> fields, std::size_t skip)
{
    std::string lines;
    std::size_t offset = 0;
    for (std::size_t i = 0; i < fields.size(); offset += fields[i].width, ++i) {
        FieldLayout field = fields[i];
        const std::size_t hidden = std::min(skip > offset ? skip - offset : 0, field.width);
        field.width -= hidden;
        if (field.kind != FieldKind::Spare || (i + 1 == fields.size() && field.width > 0)) {
            lines += Line(std::to_string(offset + hidden), TypeOf(field), ContentOf(field));
        }
    }
    return lines;
}

/// Of a record whose fields are not all there: their order in place of their offsets.
std::string OrderedBlock(std::span<const FieldLayout> fields)
{
    std::string block = kHead;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        block += Line(std::to_string(i + 1) + ".", TypeOf(fields[i]), ContentOf(fields[i]));
    }
    return block + "```\n";
}

std::string BlocksOf(const FrameLayout& layout)
{
    std::array<char, 8> type{};
    std::snprintf(type.data(), type.size(), "0x%02X", layout.type);
    std::string blocks = std::string(type.data()) + ":\n\n" + kHead;
    const bool tellsApart =
        !layout.prefix.empty() && layout.fields.front().kind == FieldKind::Spare;
    blocks += tellsApart ? PrefixLine(layout) : "";
    blocks += LinesOf(layout.fields, tellsApart ? layout.prefix.size() : 0) + "```\n";
    if (!layout.record.empty()) {
        blocks += "\nEach record:\n\n" + (kHead + LinesOf(layout.record, 0)) + "```\n";
    }
    return blocks;
}

TEST(FrameLayouts, AreThoseOfTheProtocol)
{
    std::ifstream file(FIELDCORE_SOURCE_DIR "/docs/protocol.md");
    std::ostringstream content;
    content << file.rdbuf();
    std::string page = content.str() + "\n";
    std::set<std::string> blocks{OrderedBlock(TextSatelliteLayout()),
                                 OrderedBlock(BinarySatelliteLayout())};
    for (const FrameLayout& layout : FrameLayouts()) {
        // One field is told in the words around it.
        if (std::ranges::count_if(layout.fields, [](const FieldLayout& field) {
                return field.kind != FieldKind::Spare;
            }) > 1) {
            blocks.insert(BlocksOf(layout));
        }
    }
    for (const std::string& block : blocks) {
        const std::size_t at = page.find("\n" + block + "\n");
        EXPECT_NE(at, std::string::npos) << "missing:\n\n" << block;
        page.erase(std::min(at, page.size()), block.size());
    }
    EXPECT_EQ(page.find(kHead), std::string::npos) << "a layout that stands for no frame";
}

} // namespace
} // namespace fieldcore
