#include "core/planning/AlmanacText.h"

#include "tests/core/planning/AlmanacSamples.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::kSampleSem;
using testing::kSampleYuma;
using testing::Replaced;

constexpr AlmanacWeek kToday{1700, {}};

std::string Described(const AlmanacText& text)
{
    return text.error ? std::to_string(text.error->line) + " " + text.error->field + ": " +
                            text.error->message
                      : "no error";
}

void ExpectSameOrbit(const AlmanacRecord& a, const AlmanacRecord& b)
{
    EXPECT_EQ(a.prn, b.prn);
    EXPECT_EQ(a.timeStamp, b.timeStamp);
    EXPECT_EQ(a.week, b.week);
    EXPECT_EQ(a.toaS, b.toaS);
    EXPECT_EQ(a.health, b.health);
    EXPECT_EQ(a.sqrtA, b.sqrtA);
    EXPECT_EQ(a.eccentricity, b.eccentricity);
    // Ten digits are written.
    EXPECT_NEAR(a.inclination, b.inclination, 1e-9);
    EXPECT_NEAR(a.omegaDot, b.omegaDot, 1e-17);
    EXPECT_NEAR(a.omega0, b.omega0, 1e-9);
    EXPECT_NEAR(a.omega, b.omega, 1e-9);
    EXPECT_NEAR(a.m0, b.m0, 1e-9);
}

TEST(AlmanacText, GivesTheSameSatelliteFromBothKinds)
{
    // Angles turned by hand: 60, 45, -90 and 22.5 degrees.
    AlmanacRecord expected;
    expected.prn = 7;
    expected.week = 1668; // 644, a cycle later
    expected.toaS = 405504;
    expected.sqrtA = 5153.625;
    expected.eccentricity = 0.0115;
    expected.inclination = 1.0 / 3.0;
    expected.omegaDot = -2.5e-9;
    expected.omega0 = 0.25;
    expected.omega = -0.5;
    expected.m0 = 0.125;
    expected.health = 63;
    for (const std::string_view text : {kSampleYuma, kSampleSem}) {
        const AlmanacText read = ParseAlmanacText(text, kToday);
        ASSERT_FALSE(read.error) << Described(read);
        ASSERT_EQ(read.records.size(), 2U);
        ExpectSameOrbit(read.records[0], expected);
        EXPECT_EQ(read.records[1].prn, 3);
        EXPECT_EQ(read.records[1].health, 0);
        EXPECT_EQ(read.skipped, 1);
    }
}

TEST(AlmanacText, ToleratesHowAYumaTextIsWritten)
{
    const std::string good(kSampleYuma);
    std::string lower = good;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::string bare; // neither empty lines nor lines of asterisks
    for (std::size_t at = 0; at < good.size(); at = good.find('\n', at) + 1) {
        if (good[at] != '*' && good[at] != '\n') {
            bare += good.substr(at, good.find('\n', at) + 1 - at);
        }
    }
    struct Row
    {
        std::string_view what;
        std::string text;
    };
    const Row rows[] = {
        {"CR LF", Replaced(good, "\n", "\r\n")},
        {"lower case", lower},
        {"D exponents", Replaced(good, "E-00", "D-00")},
        {"satellites follow each other at once", bare},
        {"no spaces", Replaced(good, " ", "")},
        {"tabs", Replaced(good, ":", "\t:\t")},
        {"the other name of the node", Replaced(good, "at Week(rad)", "at TOA(rad)")},
        {"no units", Replaced(good, "(rad)", "")},
        {"a byte order mark", "\xEF\xBB\xBF" + good},
        {"no line end after the last week", good.substr(0, good.size() - 1)},
    };
    const AlmanacText expected = ParseAlmanacText(good, kToday);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const AlmanacText read = ParseAlmanacText(row.text, kToday);
        EXPECT_FALSE(read.error) << Described(read);
        ASSERT_EQ(read.records.size(), 2U);
        ExpectSameOrbit(read.records[0], expected.records[0]);
        EXPECT_EQ(read.skipped, 1);
    }
}

TEST(AlmanacText, NamesTheLineAndTheFieldThatAreWrong)
{
    struct Row
    {
        std::string_view text;
        std::string_view from; ///< its first occurrence is replaced
        std::string_view to;
        int line;
        std::string_view field;
        std::string_view message; ///< part of it
    };
    constexpr std::string_view kY = kSampleYuma;
    constexpr std::string_view kS = kSampleSem;
    const Row rows[] = {
        {kY, "Health:                     063\n", "", 2, "Health", "missing"},
        {kY, "week:                       644\n", "", 2, "week", "missing"},
        {kY, "Health:  ", "Health: 1\nHealth:", 4, "Health", "twice"},
        {kY, "ID:   ", "ID:  7\n ID:", 3, "ID", "twice"},
        {kY, "ID:                         03", "ID: 7", 18, "ID", "in line 2 already"},
        {kY, "07\n", "0\n", 2, "ID", "must be"},
        {kY, "07\n", "7.5\n", 2, "ID", "whole number"},
        {kY, "063", "256", 3, "Health", "0 to 255"},
        {kY, "1.150000000E-002", "1.0", 4, "Eccentricity", "below 1"},
        {kY, "1.150000000E-002", "-1E-9", 4, "Eccentricity", "0 or more"},
        {kY, "405504.0000", "604801", 5, "Time of Applicability(s)", "604800"},
        {kY, "405504.0000", "405504.5", 5, "Time of Applicability(s)", "whole"},
        {kY, "1.047197551E", "3.2E", 6, "Orbital Inclination(rad)", "0 to 3.14"},
        {kY, "(rad)", "(deg)", 6, "Orbital Inclination(deg)", "unit"},
        {kY, "-7.853981634E-009", "1e-5", 7, "Rate of Right Ascen(r/s)", "1e-6"},
        {kY, "5153.625000", "1999", 8, "SQRT(A)  (m 1/2)", "2000 to 8000"},
        {kY, "5153.625000", "8001", 8, "SQRT(A)  (m 1/2)", "2000 to 8000"},
        {kY, "5153.625000", "", 8, "SQRT(A)  (m 1/2)", "no number"},
        {kY, "7.853981634E-001", "7,85", 9, "Right Ascen at Week(rad)", "not a number"},
        {kY, "7.853981634E-001", "1e400", 9, "Right Ascen at Week(rad)", "must be"},
        {kY, "7.853981634E-001", "nan", 9, "Right Ascen at Week(rad)", "\"nan\" is not a number"},
        {kY, "7.853981634E-001", "0x1", 9, "Right Ascen at Week(rad)", "not a number"},
        {kY, "644\n", "40000\n", 14, "week", "32767"},
        {kY, "Af0", "Af9", 12, "Af9(s)", "no field"},
        {kY, "Af0(s):", "Af0(s)", 12, "", "colon"},
        {kS, "3 INVENTED", "4 INVENTED", 30, "PRN", "missing"},
        {kS, "3 INVENTED", "2 INVENTED", 23, "number of records", "more follows"},
        {kS, "3 INVENTED", "0 INVENTED", 1, "number of records", "1 to 999"},
        {kS, " 644 405504", " 644", 2, "toa", "missing in this line"},
        {kS, " 644 405504", " 644 604801", 2, "toa", "604800"},
        {kS, "\n3\n", "\n7\n", 14, "PRN", "in line 5 already"},
        {kS, " 1.15000000000000E-02", " 1.15E", 8, "eccentricity", "not a number"},
        {kS, " 3.33333333333333E-02", " 0.71", 8, "inclination offset", "0.7"},
        {kS, " 5.15362500000000E+03", " 5.1E+04", 9, "square root of semi-major axis", "8000"},
        {kS, " 5.15362500000000E+03", "", 9, "argument of perigee", "missing in this line"},
        {kS, "\n63\n11", "\n11", 16, "URA", "a line before this one"},
        {"\n\n", "x", "", 0, "", "empty"},
        {"\nalmanac\n", "x", "", 2, "", "neither a YUMA nor a SEM"},
        {"*****\n", "x", "", 0, "", "no satellite"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.from) + " -> " + std::string(row.to));
        std::string text(row.text);
        if (const std::size_t at = text.find(row.from); at != std::string::npos) {
            text.replace(at, row.from.size(), row.to);
        }
        const AlmanacText read = ParseAlmanacText(text, kToday);
        ASSERT_TRUE(read.error);
        EXPECT_EQ(read.error->line, row.line) << Described(read);
        EXPECT_EQ(read.error->field, row.field) << Described(read);
        EXPECT_NE(read.error->message.find(row.message), std::string::npos) << Described(read);
        EXPECT_TRUE(read.records.empty() && read.skipped == 0);
    }
}

TEST(AlmanacText, FindsTheFullWeek)
{
    struct Row
    {
        std::string_view what;
        std::string_view inText;
        AlmanacWeek rule;
        int week; ///< -1: an error
    };
    const Row rows[] = {
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
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const AlmanacText read = ParseAlmanacText(
            Replaced(kSampleSem, " 644 ", " " + std::string(row.inText) + " "), row.rule);
        ASSERT_EQ(read.error.has_value(), row.week < 0) << Described(read);
        if (row.week >= 0) {
            EXPECT_EQ(read.records.at(0).week, row.week);
        } else {
            EXPECT_EQ(read.error->field, "week");
        }
    }
}

TEST(AlmanacText, GivesNothingThatACutHasChanged)
{
    const AlmanacText yuma = ParseAlmanacText(kSampleYuma, kToday);
    for (std::size_t length = 0; length < kSampleYuma.size(); ++length) {
        const AlmanacText cut = ParseAlmanacText(kSampleYuma.substr(0, length), kToday);
        ASSERT_LE(cut.records.size(), yuma.records.size());
        for (std::size_t i = 0; i < cut.records.size(); ++i) {
            EXPECT_EQ(EncodeAlmanac(cut.records[i]), EncodeAlmanac(yuma.records[i])) << length;
        }
    }
    // Up to the digits of the last satellite's configuration, which nobody needs.
    const std::size_t last = kSampleSem.rfind("11");
    for (std::size_t length = 0; length <= last; ++length) {
        EXPECT_TRUE(ParseAlmanacText(kSampleSem.substr(0, length), kToday).error) << length;
    }
}

TEST(AlmanacText, TakesNoImpossibleOrbitFromAFlippedBit)
{
    for (const std::string_view good : {kSampleYuma, kSampleSem}) {
        std::string text(good);
        const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
        for (std::size_t bit = 0; bit < 8 * text.size(); ++bit) {
            text[bit / 8] ^= static_cast<char>(1U << bit % 8);
            const AlmanacText read = ParseAlmanacText(text, kToday);
            text[bit / 8] = good[bit / 8];
            EXPECT_NE(read.error.has_value(), !read.records.empty()) << bit;
            EXPECT_TRUE(!read.error || read.error->line <= lines + 1) << bit;
            for (const AlmanacRecord& r : read.records) {
                EXPECT_TRUE(r.prn >= 1 && r.prn <= 32 && r.toaS <= 604800) << bit;
                EXPECT_TRUE(r.eccentricity >= 0.0 && r.eccentricity < 1.0) << bit;
                EXPECT_TRUE(r.sqrtA >= 2000.0 && r.sqrtA <= 8000.0) << bit;
                EXPECT_TRUE(std::abs(r.omega0) < 5 && std::abs(r.omega) < 5) << bit;
            }
        }
    }
}

TEST(AlmanacText, RefusesMoreThanAMegabyte)
{
    std::string text(kSampleYuma);
    text.resize(std::size_t{1} << 20, '\n');
    EXPECT_FALSE(ParseAlmanacText(text, kToday).error);
    text += '\n';
    EXPECT_TRUE(ParseAlmanacText(text, kToday).error);
}

TEST(AlmanacText, ReadsRealAlmanacs)
{
    // They lie beside the project, where they are at all.
    const std::filesystem::path folder =
        std::filesystem::path(FIELDCORE_SOURCE_DIR).parent_path() / "shared" / "data" / "almanac";
    struct Row
    {
        const char* name;
        int today;
        std::size_t satellites;
        int week;
        std::uint32_t toaS;
    };
    const Row rows[] = {
        {"yuma_week0644_589824.txt", 1670, 31, 1668, 589824},
        {"yuma_week0019_503808.txt", 1044, 28, 1043, 503808},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        if (!std::filesystem::exists(folder / row.name)) {
            GTEST_SKIP() << "not there";
        }
        const AlmanacText read = LoadAlmanacText(folder / row.name, {row.today, {}});
        ASSERT_FALSE(read.error) << Described(read);
        EXPECT_EQ(read.records.size(), row.satellites);
        for (const AlmanacRecord& record : read.records) {
            EXPECT_EQ(record.week, row.week);
            EXPECT_EQ(record.toaS, row.toaS);
            // Planned are 55 degrees, from which one has drifted by four.
            EXPECT_NEAR(record.inclination * 180.0, 55.0, 5.0);
        }
    }
}

} // namespace
} // namespace fieldcore
