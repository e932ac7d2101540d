#include "core/orbits/NavigationText.h"

#include "tests/core/orbits/Messages.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Described;
using testing::Messages;
using testing::Replaced;
using testing::With;

void ExpectSame(const NavigationRecord& a, const NavigationRecord& b)
{
    SCOPED_TRACE(a.satellite.Text());
    EXPECT_EQ(a.satellite, b.satellite);
    EXPECT_EQ(a.systemS, b.systemS);
    EXPECT_EQ(a.health, b.health);
    const Ecef placeA = OrbitMotion(a).At(a.ReferenceS() + 3600.0).value();
    const Ecef placeB = OrbitMotion(b).At(a.ReferenceS() + 3600.0).value();
    EXPECT_LT(std::hypot(placeA.x - placeB.x, placeA.y - placeB.y, placeA.z - placeB.z),
              2e-3); // m; twice the last digit that is written
}

void ExpectAll(const std::vector<NavigationRecord>& found)
{
    const std::vector<NavigationRecord> expected = ReadNavigation(Messages()).records;
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        ExpectSame(found[i], expected[i]);
    }
}

/// A text that is not as it should be, and where that is told: the line and the field.
using Fault = std::tuple<std::string_view, std::string, int, std::string_view>;

TEST(NavigationText, KeepsEachSystemsTime)
{
    const NavigationText text = ReadNavigation(Messages());
    ASSERT_FALSE(text.error) << Described(text.error);
    ASSERT_EQ(text.records.size(), 13U);
    const double midnight = testing::GpsAt(0, 0);
    const auto record = [](std::string_view name) { return testing::RecordsOf(name).front(); };
    // As they stand in the text; by GPS time there are 18 leap seconds, and 14 that BeiDou had not.
    EXPECT_EQ(record("G05").systemS - midnight, 10 * 3600.0);
    EXPECT_EQ(record("G05").ReferenceS() - midnight, 10 * 3600.0);
    EXPECT_EQ(record("R09").systemS - midnight, 13.25 * 3600.0); // Moscow
    EXPECT_EQ(record("R09").ReferenceS() - midnight, 10.25 * 3600.0 + 18.0);
    EXPECT_EQ(record("C12").systemS - midnight, 10 * 3600.0);
    EXPECT_EQ(record("C12").ReferenceS() - midnight, 10 * 3600.0 + 14.0);
    EXPECT_EQ(record("J01").ReferenceS() - midnight, 11 * 3600.0);
    EXPECT_FALSE(record("S23").IsHealthy());
}

TEST(NavigationText, TakesWhatFilesReallyHave)
{
    const std::string good = Messages();
    std::string dExponents = good;
    std::replace(dExponents.begin(), dExponents.end(), 'e', 'D');
    const std::string other = "I02" + good.substr(good.find("G05") + 3);
    const std::pair<std::string_view, std::string> rows[] = {
        {"exponents with D", dExponents},
        {"CR LF", Replaced(good, "\n", "\r\n")},
        {"blanks at the ends of lines", Replaced(good, "\n", "   \n")},
        {"no end of the last line", good.substr(0, good.size() - 1)},
        {"an empty line between records", With(good, "\nR09", "\n\nR09")},
        {"the week of another system, which is not needed",
         With(good, "2.111000000000e+03", "                  ")},
        {"a satellite of another system", good + other.substr(0, other.find("R09"))},
    };
    for (const auto& [what, variant] : rows) {
        SCOPED_TRACE(what);
        const NavigationText text = ReadNavigation(variant);
        EXPECT_FALSE(text.error) << Described(text.error);
        ExpectAll(text.records);
    }
}

TEST(NavigationText, ReadsVersion4ByTheKindsOfItsMessages)
{
    // The records are the same, each behind a line that says what it is.
    std::string text = With(Messages(), "3.05", "4.00");
    const auto mark = [&](std::string_view name, std::string_view kind) {
        const std::string line = "\n" + std::string(name) + " 2020";
        for (std::size_t at = 0; (at = text.find(line, at)) != std::string::npos; at += 30) {
            text.insert(at + 1, "> EPH " + std::string(name) + " " + std::string(kind) + "\n");
        }
    };
    mark("G05", "LNAV");
    mark("J01", "LNAV");
    mark("R09", "FDMA");
    mark("E11", "INAV");
    mark("C05", "D2");
    mark("C08", "D1");
    mark("C12", "CNV1"); // another layout, which is not read
    mark("S23", "SBAS");
    text += "> STO G05 LNAV\n    2020 06 25 00 00 00 GPUT\n"
            "     1.000000000000e+00 2.000000000000e+00 3.000000000000e+00\n";
    const NavigationText read = ReadNavigation(text);
    EXPECT_FALSE(read.error) << Described(read.error);
    EXPECT_EQ(read.records.size(), 11U);
    EXPECT_EQ(read.otherMessages, 3);
}

TEST(NavigationText, RefusesWithLineAndField)
{
    const std::string good = Messages();
    const Fault rows[] = {
        {"empty", "", 0, ""},
        {"another text", "30 CURRENT.ALM\n", 1, ""},
        {"RINEX 2", With(good, "     3.05", "     2.11"), 1, "version"},
        {"no version", With(good, "     3.05", "     x.yz"), 1, "version"},
        {"observations", With(good, "NAVIGATION", "OBSERVATION"), 1, "type"},
        {"no end of the header", With(good, "END OF HEADER", "COMMENT"), 97, ""},
        {"month 13", With(good, "R09 2020 06", "R09 2020 13"), 12, "month"},
        {"February 30", With(good, "R09 2020 06 25", "R09 2020 02 30"), 12, "day"},
        {"hour 24", With(good, "R09 2020 06 25 10", "R09 2020 06 25 24"), 12, "hour"},
        {"year 1900", With(good, "R09 2020", "R09 1900"), 12, "year"},
        {"no number", With(good, "5.153", "5.x53"), 6, "sqrt(A)"},
        {"not a number by name", With(good, "5.153692615509e+03", "               nan"), 6,
         "sqrt(A)"},
        {"a line is missing",
         With(good,
              "\n     3.816000000000e+05-7.078051567078e-08-2.702882276227e+00 1.341104507446e-07",
              ""),
         4, "G05"},
        {"something else between the records", With(good, "\nR09", "\n?\nR09"), 12, ""},
        {"compressed", std::string("\x1F\x8B\x08", 3) + good, 0, ""},
        {"too long", good + std::string(kMostNavigation, '\n'), 0, ""},
    };
    for (const auto& [what, spoilt, line, field] : rows) {
        SCOPED_TRACE(what);
        const NavigationText text = ReadNavigation(spoilt);
        EXPECT_TRUE(text.records.empty());
        ASSERT_TRUE(text.error);
        EXPECT_EQ(std::tie(text.error->line, text.error->field), std::tie(line, field));
        EXPECT_FALSE(text.error->message.empty());
    }
}

TEST(NavigationText, LeavesOutWhatIsNoOrbit)
{
    const std::string good = Messages();
    const Fault rows[] = {
        {"an orbit within the earth", With(good, "5.153692615509e+03", "2.500000000000e+03"), 6,
         "sqrt(A)"},
        {"a needed field is blank", With(good, "5.153692615509e+03", "                  "), 6,
         "sqrt(A)"},
        {"a state without a place", testing::WithoutPlace(good), 13, "X"},
    };
    for (const auto& [what, spoilt, line, field] : rows) {
        SCOPED_TRACE(what);
        const NavigationText text = ReadNavigation(spoilt);
        EXPECT_FALSE(text.error) << Described(text.error);
        EXPECT_EQ(text.records.size(), 12U);
        EXPECT_EQ(text.odd, 1);
        ASSERT_TRUE(text.firstOdd);
        EXPECT_EQ(std::tie(text.firstOdd->line, text.firstOdd->field), std::tie(line, field));
    }
}

TEST(NavigationText, CutAnywhereHasOnlyWholeRecords)
{
    const std::string good = Messages();
    const std::vector<NavigationRecord> whole = ReadNavigation(good).records;
    for (std::size_t length = 0; length < good.size(); ++length) {
        const NavigationText text = ReadNavigation(std::string_view(good).substr(0, length));
        ASSERT_NE(text.error.has_value(), !text.records.empty()) << length;
        ASSERT_LE(text.records.size(), whole.size());
        if (!text.records.empty()) {
            const std::size_t last = text.records.size() - 1;
            ExpectSame(text.records[last], whole[last]);
        }
    }
}

TEST(NavigationText, ReadsWhatItWrites)
{
    const NavigationText again =
        ReadNavigation(WriteNavigation(ReadNavigation(Messages()).records));
    ASSERT_FALSE(again.error) << Described(again.error);
    ExpectAll(again.records);
}

} // namespace
} // namespace fieldcore
