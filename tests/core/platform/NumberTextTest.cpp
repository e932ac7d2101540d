#include "core/platform/NumberText.h"

#include "core/platform/SaturateCast.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(NumberText, ReadsTheNumberAtTheStart)
{
    const std::tuple<const char*, const wchar_t*, double> rows[] = {
        {"null pointer", nullptr, 0.0},
        {"empty", L"", 0.0},
        {"no number", L"abc", 0.0},
        {"point alone", L".", 0.0},
        {"white space in front", L" \t\n-1.5", -1.5},
        {"no digit before the point", L".25", 0.25},
        {"no digit behind the point", L"7.", 7.0},
        {"something behind", L"12m", 12.0},
        {"decimal comma", L"1,5", 1.0},
        {"exponent", L"1e-2", 0.01},
        {"full-width digits are no digits", L"\uFF11", 0.0},
        {"hexadecimal", L"0x10", 16.0},
        {"too large", L"1e999", kInfinity},
    };
    for (const auto& [fault, text, value] : rows) {
        EXPECT_EQ(ParseReal(text), value) << fault;
    }
    EXPECT_TRUE(std::isnan(ParseReal(L"nan")));
}

TEST(NumberText, WritesDecimals)
{
    const std::tuple<const char*, double, std::uint8_t, const wchar_t*> rows[] = {
        {"tie to even, down", 1.25, 1, L"1.2"},
        {"tie to even, up", 1.75, 1, L"1.8"},
        {"not a tie: the double is below 1.005", 1.005, 2, L"1.00"},
        {"sign of zero", -0.0, 1, L"-0.0"},
        {"exponent for a large value", 1e20, 1, L"100000000000000000000.0"},
        {"exact digits of a double", 0.1, 20, L"0.10000000000000000555"},
        {"infinity", -kInfinity, 2, L"-inf"},
    };
    for (const auto& [fault, value, decimals, text] : rows) {
        EXPECT_EQ(FormatFixed(value, decimals), text) << fault;
    }
    EXPECT_EQ(FormatFixed(-std::numeric_limits<double>::max(), 255).size(), 1U + 309U + 1U + 255U);
    EXPECT_EQ(FormatGeneral(1e30), L"1e+30");
    EXPECT_EQ(FormatGeneral(-4294967295.0), L"-4.29497e+09");
    EXPECT_EQ(FormatGeneral(0.5), L"0.5");
}

TEST(NumberText, KeepsThePointInALanguageWithDecimalComma)
{
    const TemporaryFolder folder;
    folder.Write("source", "LC_NUMERIC\n"
                           "decimal_point \"<U002C>\"\n"
                           "thousands_sep \"<U002E>\"\n"
                           "grouping 3;3\n"
                           "END LC_NUMERIC\n");
    const std::string command = "cd '" + folder.Path().string() +
                                "' && localedef --no-archive -c -i ./source ./comma 2>/dev/null";
    // It warns of the categories that the source leaves out; what counts is the folder.
    static_cast<void>(std::system(command.c_str()));
    setenv("LOCPATH", folder.Path().c_str(), 1);
    const bool isThere = std::setlocale(LC_NUMERIC, "comma") != nullptr;
    unsetenv("LOCPATH");
    if (!isThere) {
        GTEST_SKIP() << "localedef could not make a language with a decimal comma";
    }
    char plain[8];
    std::snprintf(plain, sizeof plain, "%.1f", 1.5);
    EXPECT_STREQ(plain, "1,5") << "the language is in force";
    EXPECT_EQ(ParseReal(L"1234.5"), 1234.5);
    EXPECT_EQ(FormatFixed(1234.5, 1), L"1234.5");
    EXPECT_EQ(FormatGeneral(0.5), L"0.5");
    std::setlocale(LC_NUMERIC, "C");
}

TEST(NumberText, CutsRealsThatDoNotFit)
{
    EXPECT_EQ(SaturateCast<std::uint32_t>(4294967294.9), 4294967294U);
    EXPECT_EQ(SaturateCast<std::uint32_t>(4294967296.0), 4294967295U);
    EXPECT_EQ(SaturateCast<std::uint32_t>(-1.0), 0U);
    EXPECT_EQ(SaturateCast<std::int32_t>(-2147483649.0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(SaturateCast<std::int32_t>(-1.9), -1);
    EXPECT_EQ(SaturateCast<std::int64_t>(0x1p63), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(SaturateCast<std::int32_t>(kInfinity), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(SaturateCast<std::int32_t>(kNan), 0);
}

} // namespace
} // namespace fieldcore
