#include "cli/Report.h"

#include "core/platform/Utf8.h"

#include <limits>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

TEST(Printable, LetsNothingThroughThatCommandsATerminal)
{
    struct Row
    {
        std::string_view fault;
        std::string text;
        std::string shown;
    };
    const Row rows[] = {
        {"Japanese stays", "受信機 VX1", "受信機 VX1"},
        {"half-width kana and beyond the basic plane stay", "ﾃｽﾄ 𠮷", "ﾃｽﾄ 𠮷"},
        {"escape sequence", "\x1b[2J", "?[2J"},
        {"carriage return hides what stands before", "bad\rgood", "bad?good"},
        {"DEL", "a\x7f", "a?"},
        {"control character of two bytes (CSI)",
         "\xC2\x9B"
         "2J",
         "?2J"},
        {"byte that is no UTF-8",
         "a\xFF"
         "b",
         "a?b"},
        {"cut at the end", "a\xE5\x8F", "a??"},
        {"overlong slash", "\xC0\xAF", "??"},
        {"overlong slash of three bytes", "\xE0\x80\xAF", "???"},
        {"surrogate", "\xED\xA0\x80", "???"},
        {"beyond Unicode", "\xF4\x90\x80\x80", "????"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(Printable(row.text), row.shown);
    }
}

TEST(ToUtf8, WritesEveryLengthOfACharacter)
{
    EXPECT_EQ(ToUtf8(L"A\u00E9\u53D7\U00020BB7"), "A\xC3\xA9\xE5\x8F\x97\xF0\xA0\xAE\xB7");
    const wchar_t bad[] = {0xD800, static_cast<wchar_t>(0x110000), 0};
    EXPECT_EQ(ToUtf8(bad), "??");
}

TEST(Value, IsReadTheSameByPeopleAndPrograms)
{
    struct Row
    {
        std::string_view fault;
        Value value;
        std::string words;
        Value::Data data;
    };
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const Row rows[] = {
        {"unknown is 0", Value::Unknown(), "--", std::monostate{}},
        {"not a number", Value::Real(kNan, 1), "--", std::monostate{}},
        {"infinite", Value::Real(-kInfinity, 1, "m"), "--", std::monostate{}},
        {"JSON has more digits than the text", Value::Real(1.79999995, 1), "1.8", 1.8},
        {"zeros behind the point are lost", Value::Real(4.5, 2), "4.50", 4.5},
        {"unit", Value::Integer(85, "%"), "85 %", std::int64_t{85}},
        {"exact", Value::Exact(0.1, "rad"), "0.1 rad", 0.1},
        {"empty text", Value::Text(std::string()), "--", std::monostate{}},
        {"empty list", Value::List({}), "none", std::vector<std::string>{}},
        {"word", Value::Word("fixed", "RTK fixed"), "RTK fixed", std::string("fixed")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(row.value.Words(), row.words);
        EXPECT_EQ(row.value.GetData(), row.data);
    }
}

TEST(Report, AlignsByTheWidthThatIsSeen)
{
    Report report;
    report.Add("a", "局", Value::Integer(1));
    report.Add("b", "long label", Value::Integer(2));
    Report& section = report.AddSection("s", "title");
    section.Add("c", "x", Value::Unknown());
    report.AddTable({"t", "nothing"});
    report.AddTable(
        {"u",
         "nothing",
         {{{"k", "KEY", Value::Text(std::string("受信機"))}, {"v", "VALUE", Value::Integer(3)}}}});
    EXPECT_EQ(report.Words(), "局          1\n"
                              "long label  2\n"
                              "title\n"
                              "  x  --\n"
                              "nothing\n"
                              "KEY     VALUE\n"
                              "受信機  3\n");
}

TEST(Report, WrapsLongListsBehindCommas)
{
    Report report;
    report.Add("o", "options", Value::List({std::string(40, 'a'), std::string(40, 'b'), "c"}));
    EXPECT_EQ(report.Words(),
              "options  " + std::string(40, 'a') + ",\n         " + std::string(40, 'b') + ", c\n");
}

} // namespace
} // namespace fieldcore::cli::test
