#include "core/input/Check.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using Told = std::vector<std::wstring>;

class Control final : public FocusTarget
{
public:
    Control(Told& told, int id) : m_told(told), m_id(id) {}
    void TakeFocus() override { m_told.push_back(L"focus " + std::to_wstring(m_id)); }

private:
    Told& m_told;
    const int m_id;
};

/// Writes down what is shown and where the focus goes, in order.
class Screen final : public Host
{
public:
    BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                          BoxStyle style) override
    {
        EXPECT_EQ(style.buttons, BoxButtons::Ok);
        EXPECT_EQ(style.icon, BoxIcon::Exclamation);
        told.push_back(std::wstring(caption) + L": " + std::wstring(text));
        return BoxAnswer::Ok;
    }
    std::unique_ptr<FocusTarget> FindControl(int id) override
    {
        return std::make_unique<Control>(told, id);
    }

    Told told;
};

struct Row
{
    const char* fault;
    std::wstring text;
    int valid;
};

TEST(Check, TellsNumbersFromWhatOnlyLooksLikeOne)
{
    const Row rows[] = {
        {"nothing typed", L"", 1},
        {"lone sign", L"-", 1},
        {"plus", L"+3", 1},
        {"decimals", L"-3.25", 1},
        {"no digit before the point", L".5", 1},
        {"two points", L"1.2.3", 0},
        {"sign behind", L"3-", 0},
        {"two signs", L"-+3", 0},
        {"blank in front", L" 3", 0},
        {"exponent", L"1e2", 0},
        {"full-width digits", L"１２", 0},
        {"NUL behind the number", std::wstring(L"5\0", 2), 0},
        {"lowest", L"-20", 1},
        {"below it", L"-20.001", 0},
        {"highest", L"20.0", 1},
        {"above it", L"20.001", 0},
        {"more digits than a number holds", std::wstring(400, L'9'), 0},
    };
    CCheck check(-20.0, 20.0);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(check.CheckNum(row.text, 0, 0, 0), row.valid);
    }
    EXPECT_EQ(check.CheckNum(L"12", 0, 1, 0), 1);
    for (const wchar_t* noWhole : {L"-5", L"+5", L"5.", L"5.0", L"\uFF15"}) {
        EXPECT_EQ(check.CheckNum(noWhole, 0, 1, 0), 0);
    }
    EXPECT_EQ(CCheck().CheckNum(L"1000000000000000000000000", 0, 0, 0), 1); // 1.0e24
    EXPECT_EQ(CCheck().CheckNum(L"-1000000000000000200000000", 0, 0, 0), 0);
}

TEST(Check, TakesTheListedCharactersInANameAndNoOthers)
{
    const Row rows[] = {
        {"all that are allowed", L"A-1+bzZ09a", 1}, {"no name at all", L"", 1},
        {"just before the digits", L"/", 0},        {"just behind the digits", L":", 0},
        {"just before the capitals", L"@", 0},      {"just behind the capitals", L"[", 0},
        {"just before the small letters", L"`", 0}, {"just behind the small letters", L"{", 0},
        {"accented letter", L"\u00C4", 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(CCheck().CheckPointName(row.text, 0, 0), row.valid);
    }
}

TEST(Check, TellsAnglesFromWhatOnlyLooksLikeOne)
{
    const Row rows[] = {
        {"no seconds", L"135-07", 1},
        {"seconds", L"135-07-04", 1},
        {"decimals", L"135-07-04.5", 1},
        {"minus in front", L"-10-30-00", 1},
        {"plus in front", L"+10-30-00", 1},
        {"blanks do not count", L"10 - 30 - 00", 1},
        {"nothing typed", L"", 1},
        {"two separators together", L"135--07", 0},
        {"decimals of degrees", L"135.5", 0},
        {"decimals of minutes", L"135-07.5", 0},
        {"two points", L"1-2-3.4.5", 0},
        {"four fields", L"1-2-3-4", 0},
        {"plus inside", L"10-+5", 0},
        {"letter", L"10-5N", 0},
        {"ideographic space", L"10\u3000-30", 0},
        {"highest", L"359-59-59.9999999999", 1},
        {"full turn", L"360-00-00", 0},
        {"below the lowest is not known by the sign", L"-359", 1},
        {"59 minutes", L"10-59-00", 1},
        {"60 minutes", L"10-60-00", 0},
        {"60 seconds", L"10-00-60", 0},
        {"degrees beyond any number", std::wstring(400, L'9'), 0},
    };
    CCheck check;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(check.CheckDeg(row.text, 0, 0), row.valid);
    }
    check.SetRadMinMax(0, 90);
    EXPECT_EQ(check.CheckDeg(L"91", 0, 0), 0);
    EXPECT_EQ(check.CheckDeg(L"90-59-59", 0, 0), 1) << "the limit is of whole degrees";
}

TEST(Check, GivesRadians)
{
    constexpr double kPi = 3.141592653589793;
    CCheck check;
    EXPECT_EQ(check.GetRad(L"180"), kPi);
    EXPECT_NEAR(check.GetRad(L"90-30"), 90.5 / 180.0 * kPi, 1e-15);
    EXPECT_NEAR(check.GetRad(L"-10-30-00"), 10.5 / 180.0 * kPi, 1e-16) << "the sign is lost";
    EXPECT_NEAR(check.GetRad(L"0-00-01.5-7"), 1.5 / 3600.0 / 180.0 * kPi, 1e-20)
        << "a fourth field does not count";
    EXPECT_EQ(check.CheckDeg(L"10-60-00", 0, 0), 0);
    EXPECT_NEAR(check.GetRad(L"10-60-00"), 11.0 / 180.0 * kPi, 1e-15) << "out of range, but read";
}

TEST(Check, SaysWhatIsWrongAndGoesBackToTheControl)
{
    Screen screen;
    CCheck check(1.0, 10.0, screen);
    EXPECT_EQ(check.CheckNum(L"", 7, 0, 1), 0);
    EXPECT_EQ(check.CheckNum(L"１", 7, 0, 1), 0);
    EXPECT_EQ(check.CheckPointName(L"A_1", 8, 1), 0);
    EXPECT_EQ(check.CheckDeg(L"135.5", 9, 1), 0);
    EXPECT_EQ(check.CheckDeg(L"360", 9, 1), 0);
    check.SetNumMinMax(-1.0e24, 4294967.0);
    EXPECT_EQ(check.CheckNum(L"5000000", 7, 0, 1), 0);
    // NOLINTBEGIN(bugprone-suspicious-missing-comma): messages of several lines
    const Told expected{
        L"制限値オーバー: 入力値は[ 1.000 ]～[ 10.000 ]までです。",
        L"focus 7",
        L"数値入力警告: 入力値に不正な値が含まれています。再度確認してください。",
        L"focus 7",
        L"観測点名入力警告: 「観測点名」に不正な文字が含まれています。再度確認してください。\n"
        L"「観測点名」で利用できる文字は、「半角英数カナ文字」と「一部の記号」です。\n"
        L"「漢字・大文字のかな・カタカナ」は利用できません。",
        L"focus 8",
        L"角度入力警告: 角度データの入力は \nDD.MMSSsssss 形式です。\n"
        L"DD:度 MM:分 SS:秒(整数部) sssss:(小数部)\n"
        L"度分（データ区切りは小数点記号'.'です）\n"
        L"秒入力は始めの2桁が整数部分残りの桁が小数点部分です。",
        L"focus 9",
        L"制限値オーバー: 入力値は[ -359-59-59.99999 ]～[ 359-59-59.99999 ]までです。",
        L"focus 9",
        L"制限値オーバー: 入力値は[ -1e+24 ]～[ 4294967.000 ]までです。",
        L"focus 7",
    };
    // NOLINTEND(bugprone-suspicious-missing-comma)
    EXPECT_EQ(screen.told, expected);

    screen.told.clear();
    Control control(screen.told, 3);
    EXPECT_EQ(check.CheckNum(L"x", &control, 0, 0), 0);
    EXPECT_EQ(check.CheckNum(L"5", &control, 0, 1), 1);
    EXPECT_TRUE(screen.told.empty()) << "only after a message";
    EXPECT_EQ(check.CheckNum(L"x", &control, 0, 1), 0);
    EXPECT_EQ(screen.told.back(), L"focus 3");
}

} // namespace
} // namespace fieldcore
