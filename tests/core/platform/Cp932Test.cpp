#include "core/platform/Cp932.h"

#include <cstddef>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::string_literals;

TEST(Cp932, ReadsBytes)
{
    const std::tuple<const char*, std::string, std::wstring> rows[] = {
        {"ASCII with backslash and tilde", "A\\~", L"A\\~"},
        {"NUL ends the text", "A\0B"s, L"A\0B"s},
        {"half-width kana", "\xA1\xDF", L"\uFF61\uFF9F"},
        {"trail byte 5C taken for a separator", "\x95\x5C", L"\u8868"},
        {"wave dash", "\x81\x60", L"\uFF5E"},
        {"full-width backslash", "\x81\x5F", L"\uFF3C"},
        {"maker's character in a circle", "\x87\x40", L"\u2460"},
        {"duplicate that both makers have", "\xEE\xEF\xFA\x40\x87\x54", L"\u2170\u2170\u2160"},
        {"user-defined character", "\xF0\x40\xF9\xFC", L"\uE000\uE757"},
        {"pair cut at the end", "A\x93", L"A?"},
        {"pair without a character", "\x85\xA0Z", L"?Z"},
        {"lead byte swallows a separator", "\x85\\x\x93/", L"?\\x?/"},
        {"lead byte swallows a line end", "\x93\n", L"?\n"},
        {"bytes that mean nothing", "\x80\xA0\xFD\xFE\xFF", L"?????"},
        {"lead byte before such a byte", "\x93\xFF\x93\x8C", L"??\u6771"},
    };
    for (const auto& [fault, bytes, text] : rows) {
        EXPECT_EQ(FromCp932(bytes), text) << fault;
    }
}

TEST(Cp932, WritesText)
{
    const std::tuple<const char*, std::wstring, std::string> rows[] = {
        {"NUL ends the text", L"A\0B"s, "A\0B"s},
        {"half-width kana", L"\uFF9F", "\xDF"},
        {"wave dash", L"\u301C\uFF5E", "\x81\x60\x81\x60"},
        {"double vertical line", L"\u2016\u2225", "\x81\x61\x81\x61"},
        {"minus", L"\u2212\uFF0D", "\x81\x7C\x81\x7C"},
        {"cent, pound, not", L"\u00A2\u00A3\u00AC", "\x81\x91\x81\x92\x81\xCA"},
        {"dashes", L"\u2014\u2015", "\x81\x5C\x81\x5C"},
        {"yen sign becomes a backslash", L"\u00A5", "?"},
        {"overline becomes a tilde", L"\u203E", "?"},
        {"broken bar", L"\u00A6\uFFE4", "?\xFA\x55"},
        {"degree, plus-minus, times", L"\u00B0\u00B1\u00D7", "\x81\x8B\x81\x7D\x81\x7E"},
        {"duplicate: the code that others write", L"\u2252\u2160\u2170",
         "\x81\xE0\x87\x54\xFA\x40"},
        {"control characters above ASCII", L"\u0080\u00A0", "??"},
        {"Latin letters with accents", L"caf\u00E9", "caf?"},
        {"one mark for a character beyond 16 bits", L"a\U0001F600b", "a?b"},
        {"beyond Unicode", std::wstring(1, static_cast<wchar_t>(0x7FFFFFFF)), "?"},
    };
    for (const auto& [fault, text, bytes] : rows) {
        EXPECT_EQ(ToCp932(text), bytes) << fault;
    }
}

TEST(Cp932, FillsAField)
{
    const std::tuple<const char*, std::wstring, std::size_t, std::string> rows[] = {
        {"not filled", L"A1", 4, "A1  "},
        {"exact fit", L"A\u6771B", 4,
         "A\x93\x8C"
         "B"},
        {"pair cut in the middle", L"A\u6771\u4EAC", 4, "A\x93\x8C "},
        {"character behind the cut one slips in", L"A\u6771B", 2, "A "},
        {"cut on the border", L"\u6771\u4EAC", 2, "\x93\x8C"},
        {"no room", L"A", 0, ""},
    };
    for (const auto& [fault, text, width, field] : rows) {
        EXPECT_EQ(ToCp932Field(text, width), field) << fault;
    }
}

// The figures are those of the code page's publication: 63 kana, 7,724 standard and makers'
// pairs, 1,880 places for user-defined characters; 398 pairs are second codes of a character.
TEST(Cp932, KnowsTheWholeTable)
{
    int kana = 0;
    int pairs = 0;
    int secondCodes = 0;
    for (int first = 0x80; first <= 0xFF; ++first) {
        kana += FromCp932(std::string(1, static_cast<char>(first))) != L"?" ? 1 : 0;
        for (int second = 0x40; second <= 0xFF; ++second) {
            const std::string bytes{static_cast<char>(first), static_cast<char>(second)};
            const std::wstring text = FromCp932(bytes);
            if (text.size() != 1 || text == L"?") {
                continue;
            }
            ++pairs;
            const std::string back = ToCp932(text);
            secondCodes += back != bytes ? 1 : 0;
            EXPECT_EQ(FromCp932(back), text) << std::hex << first << second;
        }
    }
    EXPECT_EQ(kana, 63);
    EXPECT_EQ(pairs, 7724 + 1880);
    EXPECT_EQ(secondCodes, 398);
}

} // namespace
} // namespace fieldcore
