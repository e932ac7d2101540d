#include "cli/Report.h"

#include "core/platform/Utf8.h"

#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

TEST(Printable, LetsNothingThroughThatCommandsATerminal)
{
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"受信機 VX1", "受信機 VX1"},
        {"ﾃｽﾄ 𠮷", "ﾃｽﾄ 𠮷"}, // half-width kana, and beyond the basic
                              // plane
        {"\x1b[2J", "?[2J"},
        {"bad\rgood", "bad?good"},
        {"a\x7f", "a?"},
        {"\xC2\x9B[2J", "?[2J"},      // control character of two bytes
        {"a\xFF/b", "a?/b"},          // no UTF-8
        {"a\xE5\x8F", "a??"},         // cut at the end
        {"\xC0\xAF", "??"},           // overlong slash
        {"\xE0\x80\xAF", "???"},      // the same of three bytes
        {"\xED\xA0\x80", "???"},      // surrogate
        {"\xF4\x90\x80\x80", "????"}, // beyond Unicode
    };
    for (const auto& [text, shown] : rows) {
        EXPECT_EQ(Printable(text), shown);
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
        Value value;
        std::string words;
        Value::Data data;
    };
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const Row rows[] = {
        {Value::Unknown(), "--", std::monostate{}},
        {Value::Real(kNan, 1), "--", std::monostate{}},
        {Value::Real(-kInfinity, 1, "m"), "--", std::monostate{}},
        {Value::Real(1.79999995, 1), "1.8", 1.8},
        {Value::Real(4.5, 2), "4.50", 4.5},
        {Value::Integer(85, "%"), "85 %", std::int64_t{85}},
        {Value::Exact(0.1, "rad"), "0.1 rad", 0.1},
        {Value::Text(std::string()), "--", std::monostate{}},
        {Value::List({}), "none", std::vector<std::string>{}},
        {Value::Word("fixed", "RTK fixed"), "RTK fixed", std::string("fixed")},
    };
    for (const auto& [value, words, data] : rows) {
        EXPECT_EQ(value.Words(), words);
        EXPECT_EQ(value.GetData(), data) << words;
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
