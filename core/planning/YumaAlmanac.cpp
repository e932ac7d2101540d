#include "core/planning/AlmanacText.h"

#include "core/planning/AlmanacRanges.h"
#include "core/platform/TextLines.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace fieldcore {

namespace {

enum Field : std::size_t
{
    Prn,
    Health,
    Eccentricity,
    Toa,
    Inclination,
    OmegaDot,
    SqrtA,
    Omega0,
    Omega,
    M0,
    Af0,
    Af1,
    Week,
    kFields,
};

struct Label
{
    Field field;
    std::string_view text; ///< as it is written
    std::string_view key;  ///< its letters and digits without the unit
    std::string_view unit; ///< likewise; may be missing
    FieldRange range;
};

// Two turns either way: some write angles as -pi to pi, others as 0 to 2 pi.
constexpr FieldRange kAngle{-12.6, 12.6, false, "-12.6 to 12.6 rad"};
constexpr FieldRange kInclination{0, std::numbers::pi, false, "0 to 3.14159 rad"};

constexpr Label kLabels[] = {
    {Prn, "ID", "id", "", ranges::kPrn},
    {Health, "Health", "health", "", ranges::kHealth},
    {Eccentricity, "Eccentricity", "eccentricity", "", ranges::kEccentricity},
    {Toa, "Time of Applicability(s)", "timeofapplicability", "s", ranges::kToa},
    {Inclination, "Orbital Inclination(rad)", "orbitalinclination", "rad", kInclination},
    {OmegaDot, "Rate of Right Ascen(r/s)", "rateofrightascen", "rs", ranges::kRate},
    {SqrtA, "SQRT(A) (m 1/2)", "sqrta", "m12", ranges::kSqrtA},
    {Omega0, "Right Ascen at Week(rad)", "rightascenatweek", "rad", kAngle},
    {Omega, "Argument of Perigee(rad)", "argumentofperigee", "rad", kAngle},
    {M0, "Mean Anom(rad)", "meananom", "rad", kAngle},
    {Af0, "Af0(s)", "af0", "s", ranges::kAny},
    {Af1, "Af1(s/s)", "af1", "ss", ranges::kAny},
    {Week, "week", "week", "", ranges::kWeek},
    // Another name of the same value.
    {Omega0, "Right Ascen at TOA(rad)", "rightascenattoa", "rad", kAngle},
};

const Label* FindLabel(std::string_view text)
{
    std::string key;
    for (const char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            key += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    const auto* const found = std::find_if(std::begin(kLabels), std::end(kLabels), [&](auto& l) {
        return key == l.key || key == std::string(l.key).append(l.unit);
    });
    return found != std::end(kLabels) ? found : nullptr;
}

/// Takes the text line by line.
class YumaReader
{
public:
    explicit YumaReader(AlmanacText& result) : m_result(result) {}

    /// @return whether there is no error so far
    bool Take(std::string_view line, int number);
    bool Finish(bool lastLineEnded);

private:
    bool Fail(int line, std::string_view field, std::string message);
    bool TakeField(const Label& label, std::string_view value);
    bool EndSatellite();
    [[nodiscard]] const Label* FirstMissing() const;

    AlmanacText& m_result;
    std::array<std::optional<double>, kFields> m_values;
    int m_line = 0;           // the last one
    std::string_view m_shown; // label in it, as it stands there; empty if it is no field
    int m_start = 0;          // line of the satellite's first field; 0: it has none yet
    int m_prnLine = 0;        // and of its PRN
    std::array<int, ranges::kPrns> m_seen{}; // line of each PRN
    std::vector<int> m_weeks;                // of each satellite, skipped ones too
};

bool YumaReader::Fail(int line, std::string_view field, std::string message)
{
    m_result.error = TextError{line, Shown(field), std::move(message)};
    return false;
}

bool YumaReader::Take(std::string_view line, int number)
{
    m_line = number;
    m_shown = {};
    if (line.empty()) {
        return true;
    }
    if (line.front() == '*') {
        return EndSatellite();
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
        return Fail(number, "", "neither a field, which has a colon, nor a line of asterisks");
    }
    m_shown = Trimmed(line.substr(0, colon));
    const Label* label = FindLabel(m_shown);
    if (label == nullptr) {
        return Fail(number, m_shown, "is no field of a YUMA almanac, or not in its usual unit");
    }
    return TakeField(*label, Trimmed(line.substr(colon + 1)));
}

bool YumaReader::TakeField(const Label& label, std::string_view value)
{
    std::optional<double>& place = m_values[label.field];
    if (place && label.field == Prn && FirstMissing() == nullptr) {
        // Without a line of asterisks between them, the next satellite starts with its PRN.
        if (!EndSatellite()) {
            return false;
        }
    }
    if (place) {
        const Label* missing = FirstMissing();
        return Fail(m_line, m_shown,
                    "stands twice in the satellite that starts in line " + std::to_string(m_start) +
                        (missing != nullptr ? ", which has no " + std::string(missing->text) : ""));
    }
    double number = 0.0;
    if (const auto wrong = ReadNumber(value, label.range, number)) {
        return Fail(m_line, m_shown, *wrong);
    }
    place = number;
    if (m_start == 0) {
        m_start = m_line;
    }
    if (label.field == Prn) {
        m_prnLine = m_line;
    }
    return true;
}

const Label* YumaReader::FirstMissing() const
{
    for (const Label& label : kLabels) {
        if (!m_values[label.field]) {
            return &label;
        }
    }
    return nullptr;
}

bool YumaReader::EndSatellite()
{
    if (m_start == 0) {
        return true;
    }
    if (const Label* missing = FirstMissing()) {
        return Fail(m_start, missing->text,
                    "is missing in the satellite that starts here: fetch the almanac again");
    }
    const auto value = [this](Field field) { return *m_values[field]; };
    const auto semicircles = [&value](Field field) { return value(field) / std::numbers::pi; };
    m_weeks.push_back(static_cast<int>(value(Week)));
    if (std::vector<AlmanacRecord>* records = ranges::PlaceOf(value(Prn), m_result)) {
        AlmanacRecord record;
        record.prn = static_cast<std::uint8_t>(value(Prn));
        record.week = static_cast<std::int16_t>(m_weeks.back());
        record.toaS = static_cast<std::uint32_t>(value(Toa));
        record.sqrtA = value(SqrtA);
        record.eccentricity = value(Eccentricity);
        record.inclination = semicircles(Inclination);
        record.omegaDot = semicircles(OmegaDot);
        record.omega0 = semicircles(Omega0);
        record.omega = semicircles(Omega);
        record.m0 = semicircles(M0);
        record.health = static_cast<std::uint8_t>(value(Health));
        int& seen = m_seen[record.prn];
        if (seen != 0) {
            return Fail(m_prnLine, kLabels[Prn].text,
                        "satellite " + std::to_string(record.prn) + " stands in line " +
                            std::to_string(seen) + " already");
        }
        seen = m_prnLine;
        records->push_back(record);
    }
    m_values = {};
    m_start = 0;
    return true;
}

bool YumaReader::Finish(bool lastLineEnded)
{
    const std::string_view shown = m_shown;
    const Label* last = FindLabel(shown);
    if (!EndSatellite()) {
        return false;
    }
    if (m_result.records.empty() && m_result.qzss.empty() && m_result.skipped == 0) {
        return Fail(0, "", "has no satellite: fetch the almanac again");
    }
    // Half a number is a number, too.
    if (!lastLineEnded && !shown.empty() &&
        (last->field != Week || std::count(m_weeks.begin(), m_weeks.end(), m_weeks.back()) < 2)) {
        return Fail(m_line, shown,
                    "may have been cut off, since the line does not end: fetch the almanac again, "
                    "or put a line end behind it if it is whole");
    }
    return true;
}

} // namespace

AlmanacText ParseYuma(std::string_view text)
{
    AlmanacText result;
    YumaReader reader(result);
    TextLines lines(text);
    while (const auto line = lines.Next()) {
        if (!reader.Take(*line, lines.Number())) {
            return result;
        }
    }
    reader.Finish(!text.empty() && text.back() == '\n');
    return result;
}

} // namespace fieldcore
