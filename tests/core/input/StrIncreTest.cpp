#include "core/input/StrIncre.h"

#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(PointNameIncre, CountsLikeAnOdometer)
{
    const std::wstring nines(255, L'9');
    const std::tuple<const char*, std::wstring, std::uint8_t, std::wstring> rows[] = {
        {"carry within the digits", L"P09", 20, L"P10"},
        {"carry into a letter", L"P9", 20, L"Q0"},
        {"carry out of a letter", L"9Z", 20, L"10A"},
        {"small letters", L"az", 20, L"ba"},
        {"longer by a digit", L"999", 4, L"1000"},
        {"longer by a capital", L"Z", 20, L"AA"},
        {"longer by a small letter", L"zz", 20, L"aaa"},
        {"the leftmost wrap decides what is added", L"Z9", 20, L"AA0"},
        {"separator gets the carry behind it", L"A-9", 20, L"A-10"},
        {"just enough room behind a separator", L"A-Z9", 5, L"A-AA0"},
        {"no room behind a separator", L"A-Z9", 4, L"A-Z9"},
        {"no room in front", L"999", 3, L"999"},
        {"longer than allowed, but need not grow", L"P15", 2, L"P16"},
        {"full-width digits are separators", L"\uFF119", 20, L"\uFF1110"},
        {"separator at the end", L"A-", 20, L"A-"},
        {"no name", L"", 20, L""},
        {"as many nines as a name can have", nines, 255, nines},
        {"one carry less than that", L"8" + nines, 255, L"9" + std::wstring(255, L'0')},
        {"more carries than are followed", L"8" + nines + L"9", 255, L"8" + nines + L"9"},
    };
    for (const auto& [fault, given, maxLength, next] : rows) {
        SCOPED_TRACE(fault);
        std::wstring name = given;
        PointNameIncre(name, maxLength);
        EXPECT_EQ(name, next);
    }
}

TEST(StrIncre, CountsOneCharacterAtATime)
{
    CStrIncre counter(L"A9");
    counter.SetMaxLength(2);
    EXPECT_EQ(counter.Increment(), 1);
    EXPECT_EQ(counter.GetString(), L"A0");
    EXPECT_EQ(counter.GetIncreFlag(), 1);
    const CStrIncre copy = counter;
    counter.SetPosition(1);
    EXPECT_EQ(counter.Increment(), 0);
    EXPECT_EQ(counter.GetString(), L"B0");
    EXPECT_EQ(copy.GetString(), L"A0");
    EXPECT_EQ(copy.GetMaxLength(), 2);
    counter.SetPosition(-1); // right of the name
    EXPECT_EQ(counter.Increment(), 0);
    EXPECT_EQ(counter.GetString(), L"B0");
    counter.SetPosition(2); // left of it, and no room
    EXPECT_EQ(counter.Increment(), 0);
    EXPECT_EQ(counter.GetString(), L"A9");
}

} // namespace
} // namespace fieldcore
