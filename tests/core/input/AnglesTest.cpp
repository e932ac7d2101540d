#include "core/input/Angles.h"

#include <array>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Dms
{
    std::int32_t degrees;
    int minutes;
    int seconds;
    std::uint32_t fraction;

    friend bool operator==(const Dms&, const Dms&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Dms& dms)
    {
        return out << dms.degrees << ' ' << dms.minutes << ' ' << dms.seconds << ' '
                   << dms.fraction;
    }
};

Dms Split(double angleRad, std::uint8_t decimals)
{
    // Filled, so that an output that stays untouched shows.
    std::int32_t degrees = 77;
    std::uint8_t minutes = 77;
    std::uint8_t seconds = 77;
    std::uint32_t fraction = 77;
    RADtoDEGInt(angleRad, degrees, minutes, seconds, fraction, decimals);
    return {degrees, minutes, seconds, fraction};
}

// The angles are the doubles nearest to the degrees, minutes and seconds named beside them, worked
// out with exact fractions.
TEST(Angles, SplitIntoDegreesMinutesSeconds)
{
    const std::tuple<const char*, double, std::uint8_t, Dms> rows[] = {
        {"zero", 0.0, 5, {0, 0, 0, 0}},
        {"135 7 4.5", 2.358252524268655, 5, {135, 7, 4, 50000}},
        {"45 0 0 without decimals", 0.7853981633974483, 0, {45, 0, 0, 0}},
        {"35 40 12.3456 with three, rounded up", 0.6225606197024592, 3, {35, 40, 12, 346}},
        {"35 40 12.34567891 with nine", 0.6225606200850258, 9, {35, 40, 12, 345678910}},
        {"half a second without decimals", 2.42406840554768e-06, 0, {0, 0, 1, 0}},
        {"seconds carry", 0.0002908882081809079, 5, {0, 1, 0, 0}},
        {"minutes carry", 0.017453292519458482, 5, {1, 0, 0, 0}},
        {"carry to a full turn", 6.283185307174738, 5, {360, 0, 0, 0}},
        {"negative", -2.358252524268655, 5, {-135, 7, 4, 50000}},
        {"negative, below a degree: no sign", -0.008726646259971648, 5, {0, 30, 0, 0}},
        {"negative, carries towards zero", -0.19198621771452812, 5, {-9, 0, 0, 0}},
        // 277 50 9.05001: the product by 0.1 leaves 0.0999... of a second, which is cut.
        {"fraction a hair below", 4.849150453926849, 1, {277, 50, 9, 0}},
        // Times 180 / pi before 3600 gives 34629.
        {"order of the factors", 4.537804404565872, 5, {259, 59, 49, 34630}},
        // Times 180 before 3600 gives 41788.
        {"order of the products", 5.354080698342819, 5, {306, 45, 58, 41787}},
        // Times the quotient of 180 and pi gives 663349267.
        {"division last", 3.92436634284363, 9, {224, 50, 58, 663349268}},
        // Dividing by 1000 in place of multiplying by 0.1 cubed gives 905.
        {"power of 0.1", 3.2237390273928743, 3, {184, 42, 23, 906}},
        {"not a number", std::numeric_limits<double>::quiet_NaN(), 5, {0, 0, 0, 0}},
        {"infinity", kInfinity, 5, {2147483647, 0, 0, 0}},
        {"more degrees than fit", -1e300, 5, {-2147483647, 0, 0, 0}},
    };
    for (const auto& [fault, angleRad, decimals, dms] : rows) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(Split(angleRad, decimals), dms);
    }
}

// From 10 decimals on the fraction can outgrow its type; it must stay defined.
TEST(Angles, FractionStopsAtTheEndOfItsType)
{
    EXPECT_EQ(Split(0.6225606200850258, 12).fraction, std::numeric_limits<std::uint32_t>::max())
        << "0.34567891 s in units of 1e-12 s";
    EXPECT_LT(Split(1.0, 255).seconds, 60);
}

TEST(Angles, BecomeText)
{
    const std::tuple<const char*, Dms, int, std::uint8_t, std::wstring> rows[] = {
        {"dashes", {135, 7, 4, 50000}, 0, 5, L"135-07-04.50000"},
        {"any other style", {135, 7, 4, 50000}, -3, 5, L"135\uFF9F07'04\".50000"},
        {"no decimals", {45, 0, 0, 0}, 0, 0, L"45-00-00.0"},
        {"fraction longer than its width", {45, 0, 0, 123}, 0, 2, L"45-00-00.123"},
    };
    for (const auto& [fault, dms, style, decimals, text] : rows) {
        SCOPED_TRACE(fault);
        const auto minutes = static_cast<std::uint8_t>(dms.minutes);
        const auto seconds = static_cast<std::uint8_t>(dms.seconds);
        EXPECT_EQ(GetDegFormat(dms.degrees, minutes, seconds, dms.fraction, style, decimals), text);
    }
}

TEST(Angles, FillTheCallersBuffer)
{
    std::array<wchar_t, 32> text;
    text.fill(L'#');
    RADtoDEGStr(-2.358252524268655, text.data(), 1, 5);
    EXPECT_STREQ(text.data(), L"-135\uFF9F07'04\".50000");
    EXPECT_EQ(text[18], L'#') << "wrote beyond the terminator";

    text.fill(L'#');
    GetDegFormat(text.data(), std::numeric_limits<std::int32_t>::min(), 59, 59, 4294967295U, 1, 9);
    EXPECT_STREQ(text.data(), L"-2147483648\uFF9F59'59\".4294967295") << "the longest one";

    EXPECT_EQ(RADtoDEGStr(0.0, 0, 5), L"0-00-00.00000");
}

} // namespace
} // namespace fieldcore
