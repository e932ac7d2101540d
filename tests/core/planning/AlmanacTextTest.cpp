#include "core/planning/AlmanacText.h"

#include "tests/core/orbits/Messages.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Described;
using testing::Replaced;
using testing::With;

// The same two satellites, made up, as YUMA and as SEM: PRN 7, and 40, which is none of the 32.

constexpr std::string_view kYuma =
    R"(******** Week 644 almanac for PRN-07 ********
ID:                         07
Health:                     063
Eccentricity:               1.150000000E-002
Time of Applicability(s):   405504.0000
Orbital Inclination(rad):   1.047197551E+000
Rate of Right Ascen(r/s):  -7.853981634E-009
SQRT(A)  (m 1/2):           5153.625000
Right Ascen at Week(rad):   7.853981634E-001
Argument of Perigee(rad):  -1.570796327E+000
Mean Anom(rad):             3.926990817E-001
Af0(s):                     1.500000000E-005
Af1(s/s):                   0.000000000E+000
week:                       644

******** Week 644 almanac for PRN-40 ********

ID:                         40
Health:                     000
Eccentricity:               0.000000000E+000
Time of Applicability(s):   405504.0000
Orbital Inclination(rad):   7.000000000E-001
Rate of Right Ascen(r/s):  -2.000000000E-009
SQRT(A)  (m 1/2):           6493.400000
Right Ascen at Week(rad):   1.000000000E+000
Argument of Perigee(rad):  -1.000000000E+000
Mean Anom(rad):             1.000000000E+000
Af0(s):                     0.000000000E+000
Af1(s/s):                   0.000000000E+000
week:                       644
)";

constexpr std::string_view kSem = R"(2 INVENTED ALMANAC
 644 405504


7
61
0
 1.15000000000000E-02 3.33333333333333E-02 -2.50000000000000E-09
 5.15362500000000E+03 2.50000000000000E-01 -5.00000000000000E-01
 1.25000000000000E-01 1.50000000000000E-05 0.00000000000000E+00
63
11

40
70
0
 0.00000000000000E+00 -7.00000000000000E-02 -6.00000000000000E-10
 6.49340000000000E+03 3.00000000000000E-01 -3.00000000000000E-01
 3.00000000000000E-01 0.00000000000000E+00 0.00000000000000E+00
0
11
)";

constexpr AlmanacWeek kToday{1700, {}};

/// All that a record holds, to eight digits: ten are written.
std::string Printed(const AlmanacRecord& r)
{
    std::array<char, 200> line{};
    std::snprintf(line.data(), line.size(), "%d %u %d %u %.8g %.8g %.8g %.8g %.8g %.8g %.8g %d",
                  r.prn, r.timeStamp, r.week, r.toaS, r.sqrtA, r.eccentricity, r.inclination,
                  r.omegaDot, r.omega0, r.omega, r.m0, r.health);
    return line.data();
}

TEST(AlmanacText, GivesTheSameSatelliteFromBothKinds)
{
    // Week 644 a cycle later; angles turned by hand: 60, 45, -90 and 22.5 degrees.
    constexpr std::string_view kExpected =
        "7 0 1668 405504 5153.625 0.0115 0.33333333 -2.5e-09 0.25 -0.5 0.125 63";
    for (const std::string_view text : {kYuma, kSem}) {
        const AlmanacText read = ParseAlmanacText(text, kToday);
        ASSERT_FALSE(read.error) << Described(read.error);
        ASSERT_EQ(read.records.size(), 1U);
        EXPECT_EQ(Printed(read.records[0]), kExpected);
        EXPECT_EQ(read.skipped, 1);
    }
}

TEST(AlmanacText, ToleratesHowAYumaTextIsWritten)
{
    const std::string good(kYuma);
    std::string lower = good;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const std::string without7 = With(good, "******** Week 644 almanac for PRN-07 ********\n", "");
    const std::pair<std::string_view, std::string> rows[] = {
        {"CR LF", Replaced(good, "\n", "\r\n")},
        {"lower case", lower},
        {"D exponents", Replaced(good, "E-00", "D-00")},
        {"satellites follow each other at once",
         With(without7, "\n******** Week 644 almanac for PRN-40 ********\n\n", "")},
        {"no spaces", Replaced(good, " ", "")},
        {"tabs", Replaced(good, ":", "\t:\t")},
        {"the other name of the node", Replaced(good, "at Week(rad)", "at TOA(rad)")},
        {"no units", Replaced(good, "(rad)", "")},
        {"a byte order mark", "\xEF\xBB\xBF" + good},
        {"no line end after the last week", good.substr(0, good.size() - 1)},
    };
    const AlmanacText expected = ParseAlmanacText(good, kToday);
    for (const auto& [what, text] : rows) {
        SCOPED_TRACE(what);
        const AlmanacText read = ParseAlmanacText(text, kToday);
        EXPECT_FALSE(read.error) << Described(read.error);
        ASSERT_EQ(read.records.size(), 1U);
        EXPECT_EQ(Printed(read.records[0]), Printed(expected.records[0]));
        EXPECT_EQ(read.skipped, 1);
    }
}

TEST(AlmanacText, NamesTheLineAndTheFieldThatAreWrong)
{
    // The first of what stands second is replaced; of the message a part is given.
    using Row = std::tuple<std::string_view, std::string_view, std::string_view, int,
                           std::string_view, std::string_view>;
    const Row rows[] = {
        {kYuma, "Health:                     063\n", "", 2, "Health", "missing"},
        {kYuma, "week:                       644\n", "", 2, "week", "missing"},
        {kYuma, "Health:  ", "Health: 1\nHealth:", 4, "Health", "twice"},
        {kYuma, "ID:   ", "ID:  7\n ID:", 3, "ID", "twice"},
        {kYuma, "ID:                         40", "ID: 7", 18, "ID", "in line 2 already"},
        {kYuma, "07\n", "0\n", 2, "ID", "must be"},
        {kYuma, "07\n", "7.5\n", 2, "ID", "whole number"},
        {kYuma, "063", "256", 3, "Health", "0 to 255"},
        {kYuma, "1.150000000E-002", "1.0", 4, "Eccentricity", "below 1"},
        {kYuma, "1.150000000E-002", "-1E-9", 4, "Eccentricity", "0 or more"},
        {kYuma, "405504.0000", "604801", 5, "Time of Applicability(s)", "604800"},
        {kYuma, "405504.0000", "405504.5", 5, "Time of Applicability(s)", "whole"},
        {kYuma, "1.047197551E", "3.2E", 6, "Orbital Inclination(rad)", "0 to 3.14"},
        {kYuma, "(rad)", "(deg)", 6, "Orbital Inclination(deg)", "unit"},
        {kYuma, "-7.853981634E-009", "1e-5", 7, "Rate of Right Ascen(r/s)", "1e-6"},
        {kYuma, "5153.625000", "1999", 8, "SQRT(A)  (m 1/2)", "2000 to 8000"},
        {kYuma, "5153.625000", "8001", 8, "SQRT(A)  (m 1/2)", "2000 to 8000"},
        {kYuma, "5153.625000", "", 8, "SQRT(A)  (m 1/2)", "no number"},
        {kYuma, "7.853981634E-001", "7,85", 9, "Right Ascen at Week(rad)", "not a number"},
        {kYuma, "7.853981634E-001", "1e400", 9, "Right Ascen at Week(rad)", "must be"},
        {kYuma, "7.853981634E-001", "nan", 9, "Right Ascen at Week(rad)",
         "\"nan\" is not a number"},
        {kYuma, "7.853981634E-001", "0x1", 9, "Right Ascen at Week(rad)", "not a number"},
        {kYuma, "644\n", "40000\n", 14, "week", "32767"},
        {kYuma, "Af0", "Af9", 12, "Af9(s)", "no field"},
        {kYuma, "Af0(s):", "Af0(s)", 12, "", "colon"},
        {kSem, "2 INVENTED", "3 INVENTED", 21, "PRN", "missing"},
        {kSem, "2 INVENTED", "1 INVENTED", 14, "number of records", "more follows"},
        {kSem, "2 INVENTED", "0 INVENTED", 1, "number of records", "1 to 999"},
        {kSem, " 644 405504", " 644", 2, "toa", "missing in this line"},
        {kSem, " 644 405504", " 644 604801", 2, "toa", "604800"},
        {kSem, "\n40\n", "\n7\n", 14, "PRN", "in line 5 already"},
        {kSem, " 1.15000000000000E-02", " 1.15E", 8, "eccentricity", "not a number"},
        {kSem, " 3.33333333333333E-02", " 0.71", 8, "inclination offset", "0.7"},
        {kSem, " 5.15362500000000E+03", " 5.1E+04", 9, "square root of semi-major axis", "8000"},
        {kSem, " 5.15362500000000E+03", "", 9, "argument of perigee", "missing in this line"},
        {kSem, "\n63\n11", "\n11", 16, "URA", "a line before this one"},
        {"\n\n", "", "", 0, "", "empty"},
        {"\nalmanac\n", "", "", 2, "", "neither a YUMA nor a SEM"},
        {"*****\n", "", "", 0, "", "no satellite"},
    };
    for (const auto& [text, from, to, line, field, message] : rows) {
        SCOPED_TRACE(std::string(from) + " -> " + std::string(to));
        const AlmanacText read = ParseAlmanacText(With(std::string(text), from, to), kToday);
        ASSERT_TRUE(read.error);
        EXPECT_EQ(std::tie(read.error->line, read.error->field), std::tie(line, field));
        EXPECT_NE(read.error->message.find(message), std::string::npos) << Described(read.error);
        EXPECT_TRUE(read.records.empty() && read.skipped == 0);
    }
}

TEST(AlmanacText, FindsTheFullWeek)
{
    // The last is the full week, or -1 for an error.
    const std::tuple<std::string_view, std::string_view, AlmanacWeek, int> rows[] = {
        {"first cycle", "644", {700, {}}, 644},
        {"December 2011", "644", {1668, {}}, 1668},
        {"the cycle began anew since", "1023", {2048, {}}, 2047},
        {"it begins before the almanac is old", "0", {2047, {}}, 2048},
        {"511 weeks back", "644", {1668 + 511, {}}, 1668},
        {"half a cycle: the later", "644", {1668 + 512, {}}, 2692},
        {"half a cycle ahead", "644", {1668 - 512, {}}, 1668},
        {"no week before the first", "1000", {3, {}}, 1000},
        {"full", "1024", {3000, {}}, 1024},
        {"given", "644", {1668, 2200}, 2200},
        {"given, against a full one", "1700", {1668, 100}, 100},
        {"a week that no record holds", "644", {1668, 32768}, -1},
        {"a week before all", "644", {1668, -1}, -1},
        {"a clock that is far off", "1023", {2'000'000'000, {}}, 32767},
        {"a clock before all", "644", {-2'000'000'000, {}}, 644},
    };
    for (const auto& [what, inText, rule, week] : rows) {
        SCOPED_TRACE(what);
        const AlmanacText read =
            ParseAlmanacText(Replaced(kSem, " 644 ", " " + std::string(inText) + " "), rule);
        ASSERT_EQ(read.error.has_value(), week < 0) << Described(read.error);
        if (week >= 0) {
            EXPECT_EQ(read.records.at(0).week, week);
        } else {
            EXPECT_EQ(read.error->field, "week");
        }
    }
}

TEST(AlmanacText, GivesNothingThatACutHasChanged)
{
    const AlmanacText yuma = ParseAlmanacText(kYuma, kToday);
    for (std::size_t length = 0; length < kYuma.size(); ++length) {
        const AlmanacText cut = ParseAlmanacText(kYuma.substr(0, length), kToday);
        ASSERT_LE(cut.records.size(), yuma.records.size());
        for (std::size_t i = 0; i < cut.records.size(); ++i) {
            EXPECT_EQ(EncodeAlmanac(cut.records[i]), EncodeAlmanac(yuma.records[i])) << length;
        }
    }
    // Up to the digits of the last satellite's configuration, which nobody needs.
    const std::size_t last = kSem.rfind("11");
    for (std::size_t length = 0; length <= last; ++length) {
        EXPECT_TRUE(ParseAlmanacText(kSem.substr(0, length), kToday).error) << length;
    }
}

TEST(AlmanacText, RefusesMoreThanAMegabyte)
{
    std::string text(kYuma);
    text.resize(std::size_t{1} << 20, '\n');
    EXPECT_FALSE(ParseAlmanacText(text, kToday).error);
    text += '\n';
    EXPECT_TRUE(ParseAlmanacText(text, kToday).error);
}

} // namespace
} // namespace fieldcore
