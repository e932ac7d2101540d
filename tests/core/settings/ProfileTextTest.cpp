#include "core/settings/ProfileText.h"

#include "core/platform/Cp932.h"

#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

/// Text as a UTF-16 file holds it; only characters below U+10000.
std::string Utf16(std::wstring_view text)
{
    std::string bytes = "\xFF\xFE";
    for (const wchar_t character : text) {
        bytes += static_cast<char>(character & 0xFF);
        bytes += static_cast<char>(character >> 8);
    }
    return bytes;
}

TEST(ProfileText, FindsTheEntry)
{
    const std::string fill(254, 'x');
    // The value is that of K in section S.
    const std::tuple<const char*, std::string, std::optional<std::wstring>> rows[] = {
        {"plain", "[S]\r\nK=v\r\n", L"v"},
        {"empty file", "", std::nullopt},
        {"empty value taken for none", "[S]\r\nK=\r\n", L""},
        {"the second entry", "[S]\r\nA=1\r\nK=v\r\nB=2\r\n", L"v"},
        {"the last of two equal keys", "[S]\r\nK=v\r\nK=w\r\n", L"v"},
        {"entry of another section", "[A]\r\nK=a\r\n[S]\r\nK=v\r\n", L"v"},
        {"read past the section", "[S]\r\nA=1\r\n[T]\r\nK=v\r\n", std::nullopt},
        {"section found again further down", "[S]\r\n[T]\r\n[S]\r\nK=v\r\n", std::nullopt},
        {"entry outside any section", "K=v\r\n", std::nullopt},
        {"section after an empty line ends", "[S]\r\n\r\nK=v\r\n", L"v"},
        {"blanks trimmed behind the bracket", "[S] \r\nK=v\r\n", std::nullopt},
        {"blanks trimmed in front of it", " [S]\r\nK=v\r\n", std::nullopt},
        {"bracket must be one", "[S)\r\nK=v\r\n", L"v"},
        {"half a section line", "[\r\nK=v\r\n", std::nullopt},
        {"longer section name", "[SS]\r\nK=v\r\n", std::nullopt},
        {"case of a section", "[s]\r\nK=v\r\n", std::nullopt},
        {"case of a key", "[S]\r\nk=v\r\n", std::nullopt},
        {"key with a blank", "[S]\r\nK =v\r\n", std::nullopt},
        {"longer key", "[S]\r\nKK=v\r\n", std::nullopt},
        {"line without =", "[S]\r\nK\r\nK=v\r\n", L"v"},
        {"blanks and quotes of a value", "[S]\r\nK= \"v\" \r\n", L" \"v\" "},
        {"cut at the second = and two more", "[S]\r\nK=value=x\r\n", L"val"},
        {"as much where little is left", "[S]\r\nK=v=x\r\n", L""},
        {"as much in a value that ends with =", "[S]\r\nK=abc=\r\n", L"a"},
        {"no line end at the end of the file", "[S]\r\nK=value", L"value"},
        {"section line at the end of the file", "[S]", std::nullopt},
        {"line feeds alone", "[S]\nK=value\n", L"value"},
        {"carriage return in a line", "[S]\r\nK=a\rb\r\n", L"a\rb"},
        {"a line of 256 characters", "[S]\r\nK=" + fill + "\r\n", std::wstring(254, L'x')},
        {"a longer line", "[S]\r\nK=" + fill + "yy\r\nB=1\r\n", std::wstring(254, L'x')},
        {"the rest taken for a line", "[S]\r\nA=" + fill + "K=w\r\nK=v\r\n", L"v"},
        {"NUL in a value", std::string("[S]\r\nK=a\0b\r\n", 12), std::wstring(L"a\0b", 3)},
        {"a comment", "[S]\r\n;K=w\r\nK=v\r\n", L"v"},
        {"UTF-8", "\xEF\xBB\xBF[S]\r\nK=\xE6\xB8\xAC\r\n", L"\u6E2C"},
        {"UTF-8 that is none", "\xEF\xBB\xBF[S]\r\nK=\xE6\xB8\r\n", L"??"},
        {"UTF-8 without a mark is CP932", "[S]\r\nK=\xE6\xB8\xAC\r\n", FromCp932("\xE6\xB8\xAC")},
        {"UTF-16", Utf16(L"[S]\r\nK=\u6E2C\r\n"), L"\u6E2C"},
        {"UTF-16 whose bytes look like line feeds", Utf16(L"[S]\r\nK=\u0A0D\u0D0A\u0A00\r\n"),
         L"\u0A0D\u0D0A\u0A00"},
        {"UTF-16 beyond 16 bits", Utf16(L"[S]\r\nK=\xD840\xDC0B\r\n"), L"\U0002000B"},
        {"UTF-16 with the last second half", Utf16(L"[S]\r\nK=\xD840\xDFFF\r\n"), L"\U000203FF"},
        {"UTF-16 with half a pair", Utf16(L"[S]\r\nK=\xDC0B\xD840\r\n"), L"??"},
        {"UTF-16 with half a character", Utf16(L"[S]\r\nK=v") + "x", L"v"},
        {"only a mark", "\xFF\xFE", std::nullopt},
    };
    for (const auto& [fault, content, value] : rows) {
        EXPECT_EQ(ProfileText(content).Value(L"S", L"K"), value) << fault;
    }
}

TEST(ProfileText, ReadsNamesWhoseSecondByteIsABracketOrBackslash)
{
    // U+2015 is 81 5C, U+FF0D is 81 7C, U+30FC is 81 5B: the bytes of "\", "|" and "[".
    const std::wstring section = L"\u2015\u30FC";
    const std::string content = "[\x81\x5C\x81\x5B]\r\n\x81\x5B=\x83\x5C\r\n";
    EXPECT_EQ(ProfileText(content).Value(section, L"\u30FC"), L"\u30BD");
    // Another system's form of the same sign.
    EXPECT_EQ(ProfileText("[S]\r\n\x81\x60=v\r\n").Value(L"S", L"\u301C"), L"v");
}

TEST(ProfileText, SetsAnEntry)
{
    const std::string far(300, 'y');
    // Before and after K=v is set in section S.
    const std::tuple<const char*, std::string, std::optional<std::string>> rows[] = {
        {"new file", "", "[S]\r\nK=v\r\n"},
        {"new section", "[A]\r\nK=a\r\n", "[A]\r\nK=a\r\n[S]\r\nK=v\r\n"},
        {"new section behind a line without end", "[A]", "[A]\r\n[S]\r\nK=v\r\n"},
        {"replaced", "[S]\r\nA=1\r\nK=old\r\nB=2\r\n", "[S]\r\nA=1\r\nK=v\r\nB=2\r\n"},
        {"replaced with a second = in it", "[S]\r\nK=o=l=d\r\n", "[S]\r\nK=v\r\n"},
        {"replaced at the end without line end", "[S]\r\nK=old", "[S]\r\nK=v\r\n"},
        {"added at the end", "[S]\r\nA=1\r\n", "[S]\r\nA=1\r\nK=v\r\n"},
        {"added behind a line without end", "[S]\r\nA=1", "[S]\r\nA=1\r\nK=v\r\n"},
        {"added before the next section", "[S]\r\nA=1\r\n[T]\r\n", "[S]\r\nA=1\r\nK=v\r\n[T]\r\n"},
        {"added before the first empty line", "[S]\r\nA=1\r\n\r\nB=2\r\n\r\n[T]\r\n",
         "[S]\r\nA=1\r\nK=v\r\n\r\nB=2\r\n\r\n[T]\r\n"},
        {"doubled before an empty line", "[S]\r\n\r\nK=old\r\n", "[S]\r\n\r\nK=v\r\n"},
        {"an empty line of another section", "[A]\r\n\r\n[S]\r\nB=1\r\n",
         "[A]\r\n\r\n[S]\r\nB=1\r\nK=v\r\n"},
        {"entry of another section", "[S]\r\n[T]\r\nK=t\r\n", "[S]\r\nK=v\r\n[T]\r\nK=t\r\n"},
        {"line feeds of other lines", "[S]\nA=1\n\nB=2\n", "[S]\nA=1\nK=v\r\n\nB=2\n"},
        {"a long line cut", "[S]\r\n" + far + "\r\n", "[S]\r\n" + far + "\r\nK=v\r\n"},
        {"bytes without a character", "[S]\r\nA=\x80\xFF\r\n", "[S]\r\nA=\x80\xFF\r\nK=v\r\n"},
        {"UTF-8", "\xEF\xBB\xBF", "\xEF\xBB\xBF[S]\r\nK=v\r\n"},
        {"UTF-16", Utf16(L"[S]\r\nK=old\r\n[T]"), Utf16(L"[S]\r\nK=v\r\n[T]")},
        {"UTF-16 without line end", Utf16(L"[S]\r\nA=1"), Utf16(L"[S]\r\nA=1\r\nK=v\r\n")},
        {"UTF-16 with half a character", Utf16(L"[S]\r\n") + "x", Utf16(L"[S]\r\nK=v\r\n")},
    };
    for (const auto& [fault, before, after] : rows) {
        EXPECT_EQ(ProfileText(before).WithEntry(L"S", L"K", L"v"), after) << fault;
    }
}

TEST(ProfileText, RefusesWhatItCouldNotFindAgain)
{
    const std::tuple<const char*, std::wstring, std::wstring, std::wstring, bool> rows[] = {
        {"the longest line", L"S", L"K", std::wstring(254, L'v'), true},
        {"line too long", L"S", L"K", std::wstring(255, L'v'), false},
        {"the longest section", std::wstring(254, L's'), L"K", L"v", true},
        {"section too long", std::wstring(255, L's'), L"K", L"v", false},
        {"= in a key", L"S", L"K=", L"v", false},
        {"= in a value", L"S", L"K", L"value=", true},
        {"key like a section", L"S", L"[K", L"v", false},
        {"line end in a value", L"S", L"K", L"v\nX=1", false},
        {"carriage return in a key", L"S", L"K\r", L"v", false},
        {"line end in a section", L"S]\n[T", L"K", L"v", false},
        {"NUL in a value", L"S", L"K", std::wstring(L"v\0", 2), false},
    };
    for (const auto& [fault, section, key, value, isWritten] : rows) {
        SCOPED_TRACE(fault);
        const auto written = ProfileText("").WithEntry(section, key, value);
        EXPECT_EQ(written.has_value(), isWritten);
        if (written) {
            EXPECT_TRUE(ProfileText(*written).Value(section, key));
        }
    }
}

TEST(ProfileText, SetsManySectionsAtOnce)
{
    const ProfileEntry both[] = {{L"K", L"1"}, {L"L", L"2"}};
    const ProfileEntry twice[] = {{L"K", L"0"}, {L"K", L"1"}};
    const ProfileSection known[] = {{L"S", both}, {L"T", both}};
    const ProfileSection again[] = {{L"T", twice}};
    const ProfileSection added[] = {{L"N", both}, {L"S", both}};
    using Row = std::tuple<std::string_view, std::span<const ProfileSection>, std::string_view,
                           std::string_view>;
    const Row rows[] = {
        {"one entry replaced, one put before the empty line", known,
         "[S]\r\nL=9\r\nx\r\n\r\ny\r\n[T]\r\nK=9",
         "[S]\r\nL=2\r\nx\r\nK=1\r\n\r\ny\r\n[T]\r\nK=1\r\nL=2\r\n"},
        {"only the first section of a name", known, "[T]\n[S]\nK=0\n[T]\nK=9\n",
         "[T]\nK=1\r\nL=2\r\n[S]\nK=1\r\nL=2\r\n[T]\nK=9\n"},
        {"only the first entry of a key, and the last value", again, "[T]\nK=8\nK=9\n",
         "[T]\nK=1\r\nK=9\n"},
        {"a new section behind a known one without a line end", added, "[S]",
         "[S]\r\nK=1\r\nL=2\r\n[N]\r\nK=1\r\nL=2\r\n"},
    };
    for (const auto& [what, sections, before, after] : rows) {
        EXPECT_EQ(ProfileText(std::string(before)).WithSections(sections), after) << what;
    }
    const ProfileSection newTwice[] = {{L"N", both}, {L"N", both}};
    EXPECT_EQ(ProfileText("").WithSections(newTwice), std::nullopt);
}

TEST(ProfileText, FindsInEveryEncodingWhatItWrote)
{
    for (const std::string mark : {"", "\xEF\xBB\xBF", "\xFF\xFE"}) {
        SCOPED_TRACE(mark);
        const std::wstring site = L"東京都千代田区～";
        const auto once = ProfileText(mark).WithEntry(site, L"緯度", L"ｱ表ソ");
        ASSERT_TRUE(once);
        EXPECT_EQ(ProfileText(*once).Value(site, L"緯度"), L"ｱ表ソ");
        const auto twice = ProfileText(*once).WithEntry(site, L"緯度", L"ｱ表ソ");
        EXPECT_EQ(twice, once); // replaced, not added
    }
}

} // namespace
} // namespace fieldcore
