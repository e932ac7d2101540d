#include "core/planning/AlmanacText.h"

#include "core/planning/AlmanacRanges.h"
#include "core/platform/TextLines.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace fieldcore {

namespace {

constexpr double kInclinationOffset = 0.30; // semicircles: the text counts from here

struct Field
{
    std::string_view name;
    FieldRange range;
};

constexpr FieldRange kAngle{-4, 4, false, "-4 to 4 semicircles"};
constexpr FieldRange kOffset{-0.3, 0.7, false, "-0.3 to 0.7 semicircles"};
constexpr FieldRange kNote{0, 1e9, true, "0 or more"}; // no record has it

constexpr Field kTime[] = {{"week", ranges::kWeek}, {"toa", ranges::kToa}};
constexpr Field kPrn[] = {{"PRN", ranges::kPrn}};
constexpr Field kSvn[] = {{"SVN", kNote}};
constexpr Field kUra[] = {{"URA", kNote}};
constexpr Field kShape[] = {{"eccentricity", ranges::kEccentricity},
                            {"inclination offset", kOffset},
                            {"rate of right ascension", ranges::kRate}};
constexpr Field kPlane[] = {{"square root of semi-major axis", ranges::kSqrtA},
                            {"longitude of ascending node", kAngle},
                            {"argument of perigee", kAngle}};
constexpr Field kPlace[] = {{"mean anomaly", kAngle}, {"af0", ranges::kAny}, {"af1", ranges::kAny}};
constexpr Field kHealth[] = {{"health", ranges::kHealth}};
constexpr Field kConfiguration[] = {{"configuration", kNote}};

/// Takes the lines that are not empty, one after the other. After the first error no line is read.
class SemReader
{
public:
    SemReader(std::string_view text, AlmanacText& result) : m_lines(text), m_result(result) {}

    void Read();

private:
    using Values = std::array<double, 3>;

    void Fail(std::string_view field, std::string message);
    [[nodiscard]] bool Good() const { return !m_result.error; }
    /// @return the next line that is not empty; behind the last an empty one
    std::string_view NextLine();
    /// The numbers of the next line, one for each of @p fields, of which there are 3 at most.
    Values ReadLine(std::span<const Field> fields);
    void ReadSatellite(int week, std::uint32_t toaS);

    TextLines m_lines;
    AlmanacText& m_result;
    std::array<int, ranges::kPrns> m_seen{}; // line of each PRN
};

void SemReader::Fail(std::string_view field, std::string message)
{
    if (Good()) {
        m_result.error = TextError{m_lines.Number(), std::string(field), std::move(message)};
    }
}

std::string_view SemReader::NextLine()
{
    while (const auto line = m_lines.Next()) {
        if (!line->empty()) {
            return *line;
        }
    }
    return {};
}

SemReader::Values SemReader::ReadLine(std::span<const Field> fields)
{
    Values values{};
    if (!Good()) {
        return values;
    }
    const std::vector<std::string_view> words = Words(NextLine());
    // Before the numbers themselves: they are those of other fields if one or a line is missing.
    if (words.empty()) {
        Fail(fields.front().name, "is missing: the text ends here; fetch the almanac again");
    } else if (words.size() < fields.size()) {
        Fail(fields[words.size()].name, "is missing in this line, which has " +
                                            std::to_string(words.size()) + " of " +
                                            std::to_string(fields.size()) + " numbers");
    } else if (words.size() > fields.size()) {
        Fail(fields.back().name, "ends its line, but \"" + Shown(words[fields.size()]) +
                                     "\" follows: a line before this one may be missing");
    }
    for (std::size_t i = 0; i < fields.size() && Good(); ++i) {
        if (const auto wrong = ReadNumber(words[i], fields[i].range, values[i])) {
            Fail(fields[i].name, *wrong);
        }
    }
    return values;
}

void SemReader::Read()
{
    // Behind the number stands a title, which may be anything.
    const std::vector<std::string_view> header = Words(NextLine());
    double count = 0.0;
    constexpr FieldRange kCount{1, 999, true, "1 to 999"};
    if (const auto wrong =
            ReadNumber(header.empty() ? std::string_view() : header.front(), kCount, count)) {
        return Fail("number of records", *wrong);
    }
    const auto [week, toaS, unused] = ReadLine(kTime);
    for (int i = 0; i < static_cast<int>(count) && Good(); ++i) {
        ReadSatellite(static_cast<int>(week), static_cast<std::uint32_t>(toaS));
    }
    if (Good() && !NextLine().empty()) {
        Fail("number of records", "is " + std::to_string(static_cast<int>(count)) +
                                      " in the first line, but more follows here");
    }
}

void SemReader::ReadSatellite(int week, std::uint32_t toaS)
{
    const double prn = ReadLine(kPrn)[0];
    const int prnLine = m_lines.Number();
    if (Good() && prn < ranges::kPrns) {
        int& seen = m_seen[static_cast<std::size_t>(prn)];
        if (seen != 0) {
            return Fail("PRN", "satellite " + std::to_string(static_cast<int>(prn)) +
                                   " stands in line " + std::to_string(seen) + " already");
        }
        seen = prnLine;
    }
    ReadLine(kSvn);
    ReadLine(kUra);
    const Values shape = ReadLine(kShape);
    const Values plane = ReadLine(kPlane);
    const Values place = ReadLine(kPlace);
    const double health = ReadLine(kHealth)[0];
    ReadLine(kConfiguration);
    if (!Good()) {
        return;
    }
    std::vector<AlmanacRecord>* const records = ranges::PlaceOf(prn, m_result);
    if (records == nullptr) {
        return;
    }
    AlmanacRecord record;
    record.prn = static_cast<std::uint8_t>(prn);
    record.week = static_cast<std::int16_t>(week);
    record.toaS = toaS;
    record.eccentricity = shape[0];
    record.inclination = kInclinationOffset + shape[1];
    record.omegaDot = shape[2];
    record.sqrtA = plane[0];
    record.omega0 = plane[1];
    record.omega = plane[2];
    record.m0 = place[0];
    record.health = static_cast<std::uint8_t>(health);
    records->push_back(record);
}

} // namespace

AlmanacText ParseSem(std::string_view text)
{
    AlmanacText result;
    SemReader(text, result).Read();
    return result;
}

} // namespace fieldcore
