#include "core/orbits/NavigationText.h"

#include "core/orbits/SystemTime.h"
#include "core/platform/Calendar.h"
#include "core/platform/TextLines.h"
#include "core/platform/WholeFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

namespace fieldcore {

namespace {

constexpr std::size_t kLabelColumn = 60;       // of a header line
constexpr std::size_t kFieldWidth = 19;        // of a number
constexpr std::size_t kFieldsPerLine = 4;      // behind the first line
constexpr std::size_t kIndent = 4;             // of the lines behind the first
constexpr double kMoscowAheadS = 3.0 * 3600.0; // GLONASS time before UTC, which its records have
constexpr double kKm = 1000.0;

constexpr FieldRange kAny{std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max(),
                          false, "finite"};
constexpr FieldRange kAngle{-7.0, 7.0, false, "-7 to 7 rad"};
constexpr FieldRange kRate{-1e-6, 1e-6, false, "-1e-6 to 1e-6 rad/s"};
constexpr FieldRange kTurn{-1e-3, 1e-3, false, "-0.001 to 0.001 rad"};
constexpr FieldRange kLength{-1e5, 1e5, false, "-100000 to 100000 m"};
constexpr FieldRange kSqrtA{4500, 8000, false, "4500 to 8000 m^0.5"};
constexpr FieldRange kEccentricity{0, 0.9, false, "0 to 0.9"};
constexpr FieldRange kToe{0, 604800, false, "0 to 604800 s"};
constexpr FieldRange kHealth{0, 65535, true, "0 to 65535"};
constexpr FieldRange kPlace{-60000, 60000, false, "-60000 to 60000 km"};
constexpr FieldRange kSpeed{-10, 10, false, "-10 to 10 km/s"};
constexpr FieldRange kPull{-1e-4, 1e-4, false, "-1e-4 to 1e-4 km/s^2"};

using namespace std::chrono_literals;
constexpr std::chrono::sys_days kEnd{2200y / 1 / 1}; // of the times that are read

double SinceEpoch(std::chrono::sys_days day)
{
    return static_cast<double>(std::chrono::seconds(day - kGpsEpoch).count());
}

/// A field that is needed: the line of its record, counted from 0, and its place in that, from 0.
struct Field
{
    std::size_t line;
    std::size_t column;
    std::string_view name;
    FieldRange range;
};
template <typename Orbit, typename Part>
struct OrbitField : Field
{
    Part Orbit::*part;
};
using ElementField = OrbitField<KeplerOrbit, double>;

constexpr ElementField kElements[] = {
    {{1, 1, "Crs", kLength}, &KeplerOrbit::crs},
    {{1, 2, "Delta n", kRate}, &KeplerOrbit::deltaN},
    {{1, 3, "M0", kAngle}, &KeplerOrbit::m0},
    {{2, 0, "Cuc", kTurn}, &KeplerOrbit::cuc},
    {{2, 1, "e", kEccentricity}, &KeplerOrbit::eccentricity},
    {{2, 2, "Cus", kTurn}, &KeplerOrbit::cus},
    {{2, 3, "sqrt(A)", kSqrtA}, &KeplerOrbit::a}, // its root at first
    {{3, 0, "Toe", kToe}, &KeplerOrbit::toeS},
    {{3, 1, "Cic", kTurn}, &KeplerOrbit::cic},
    {{3, 2, "OMEGA0", kAngle}, &KeplerOrbit::omega0},
    {{3, 3, "Cis", kTurn}, &KeplerOrbit::cis},
    {{4, 0, "i0", kAngle}, &KeplerOrbit::i0},
    {{4, 1, "Crc", kLength}, &KeplerOrbit::crc},
    {{4, 2, "omega", kAngle}, &KeplerOrbit::omega},
    {{4, 3, "OMEGA DOT", kRate}, &KeplerOrbit::omegaDot},
    {{5, 0, "IDOT", kRate}, &KeplerOrbit::iDot},
};
constexpr Field kElementHealth{6, 1, "health", kHealth};
constexpr std::size_t kElementLines = 8;

constexpr Field kStateHealth{1, 3, "health", kHealth};
constexpr std::size_t kStateLines = 4;
constexpr double Ecef::*kAxes[] = {&Ecef::x, &Ecef::y, &Ecef::z};
constexpr std::string_view kPlaceNames[] = {"X", "Y", "Z"};
constexpr std::string_view kSpeedNames[] = {"X velocity", "Y velocity", "Z velocity"};
constexpr std::string_view kPullNames[] = {"X acceleration", "Y acceleration", "Z acceleration"};

bool HasStates(GnssSystem system)
{
    return system == GnssSystem::Glonass || system == GnssSystem::Sbas;
}

/// BeiDou's geostationary satellites, BDS-SIS-ICD: C01 to C05 and C59 to C63.
bool IsGeostationary(SatelliteId satellite)
{
    return satellite.system == GnssSystem::BeiDou &&
           (satellite.number <= 5 || satellite.number >= 59);
}

bool IsCapital(char c)
{
    return c >= 'A' && c <= 'Z';
}

class NavigationReader
{
public:
    NavigationReader(std::string_view text, NavigationText& result)
        : m_lines(text), m_endsWithLine(!text.empty() && text.back() == '\n'), m_result(result)
    {}

    void Read();

private:
    struct Line
    {
        std::string_view text; // without blanks at its end
        int number = 0;
    };

    void Fail(int line, std::string_view field, std::string message);
    [[nodiscard]] bool Good() const { return !m_result.error; }
    bool Next();
    bool ReadHeader();
    bool ReadVersion();
    void ReadMessageKind();
    void GatherRecord();
    void ReadRecord();
    void ReadElements(SatelliteId satellite, NavigationRecord& record);
    void ReadState(NavigationRecord& record);
    [[nodiscard]] double ReadEpoch();
    [[nodiscard]] std::string_view FieldText(std::size_t line, std::size_t column) const;
    /// Leaves the record out.
    void Drop(std::size_t line, std::string_view field, std::string message);
    /// 0 where the record is refused, or odd: then m_isOdd.
    [[nodiscard]] double Number(const Field& field);
    [[nodiscard]] bool IsCut() const;

    TextLines m_lines;
    const bool m_endsWithLine;
    NavigationText& m_result;
    Line m_line;                // the one that is to be looked at
    bool m_hasLine = false;     // there is one
    bool m_hasMessages = false; // version 4: each record has a line that says what it is
    bool m_isRead = true;       // records of the present kind are read
    std::array<Line, kElementLines> m_record; // its first lines
    std::size_t m_recordLines = 0;
    bool m_isOdd = false;
};

void NavigationReader::Fail(int line, std::string_view field, std::string message)
{
    if (Good()) {
        m_result.error = TextError{line, std::string(field), std::move(message)};
    }
}

bool NavigationReader::Next()
{
    const std::optional<std::string_view> line = m_lines.NextWhole();
    m_hasLine = line.has_value();
    m_line = {line.value_or(std::string_view()), m_lines.Number()};
    return m_hasLine;
}

bool NavigationReader::ReadVersion()
{
    const auto fail = [&](std::string_view field, std::string message) {
        Fail(m_line.number, field, std::move(message));
        return false;
    };
    const std::string_view text = m_line.text;
    if (text.find("RINEX VERSION / TYPE", kLabelColumn) == std::string_view::npos) {
        return fail("", "is no RINEX text: its first line ends with \"RINEX VERSION / TYPE\"");
    }
    double version = 0.0;
    if (const auto wrong = ReadNumber(Trimmed(text.substr(0, 9)), kAny, version)) {
        return fail("version", *wrong);
    }
    if (!(version >= 3.0 && version < 5.0)) {
        return fail("version", "is " + Shown(Trimmed(text.substr(0, 9))) +
                                   ": take a file of version 3 or 4, or convert it");
    }
    if (text[20] != 'N') {
        return fail("type", "is " + Shown(Trimmed(text.substr(20, 20))) +
                                ": only navigation messages tell orbits, take the file of these");
    }
    m_hasMessages = version >= 4.0;
    m_isRead = !m_hasMessages;
    return true;
}

bool NavigationReader::ReadHeader()
{
    if (!Next() || !ReadVersion()) {
        Fail(0, "", "empty: fetch the file again");
        return false;
    }
    while (Next()) {
        if (m_line.text.find("END OF HEADER", std::min(kLabelColumn, m_line.text.size())) !=
            std::string_view::npos) {
            return true;
        }
    }
    Fail(m_line.number, "", "has no end of its header: fetch the file again");
    return false;
}

void NavigationReader::Read()
{
    if (!ReadHeader()) {
        return;
    }
    Next();
    while (m_hasLine && Good()) {
        if (m_line.text.empty()) {
            Next();
        } else if (m_line.text.front() == '>' && m_hasMessages) {
            ReadMessageKind();
        } else {
            GatherRecord();
            if (m_isRead) {
                ReadRecord();
            }
        }
    }
    if (Good() && m_result.records.empty()) {
        if (m_result.firstOdd) {
            m_result.error = m_result.firstOdd;
        } else {
            Fail(0, "", "has no record of a satellite that is known here: fetch the file again");
        }
    }
}

void NavigationReader::ReadMessageKind()
{
    // "> EPH G01 LNAV"; other records than EPH are of clocks, the ionosphere and the earth.
    constexpr std::array kKinds{"LNAV", "FDMA", "FNAV", "INAV", "D1", "D2", "D1D2", "SBAS"};
    const std::vector<std::string_view> words = Words(m_line.text.substr(1));
    if (words.size() < 2) {
        return Fail(m_line.number, "", "does not say which record follows: fetch the file again");
    }
    m_isRead = words[0] == "EPH" && words.size() > 2 &&
               std::find(kKinds.begin(), kKinds.end(), words[2]) != kKinds.end();
    m_result.otherMessages += m_isRead ? 0 : 1;
    Next();
}

/// Takes the line that is to be looked at and the indented ones behind it.
void NavigationReader::GatherRecord()
{
    m_recordLines = 0;
    do {
        if (m_recordLines < m_record.size()) {
            m_record[m_recordLines] = m_line;
        }
        ++m_recordLines;
        Next();
    } while (m_hasLine && !m_line.text.empty() && m_line.text.front() == ' ');
}

bool NavigationReader::IsCut() const
{
    const std::size_t last = std::min(m_recordLines, m_record.size()) - 1;
    const std::size_t length = m_record[last].text.size();
    return !m_hasLine && !m_endsWithLine &&
           (length < kIndent || (length - kIndent) % kFieldWidth != 0);
}

void NavigationReader::ReadRecord()
{
    const Line& first = m_record[0];
    if (!IsCapital(first.text.front())) {
        return Fail(first.number, "",
                    m_hasMessages || m_result.records.empty()
                        ? "\"" + Shown(first.text) + "\" is no record: fetch the file again"
                        : "\"" + Shown(first.text) +
                              "\" is neither a record nor part of the one before it");
    }
    const std::string_view name = Trimmed(first.text.substr(0, 3));
    const std::optional<SatelliteId> satellite = SatelliteId::Parse(name);
    if (!satellite) {
        ++m_result.otherSystems;
        return;
    }
    const std::size_t lines = HasStates(satellite->system) ? kStateLines : kElementLines;
    if (m_recordLines < lines || IsCut()) {
        return Fail(first.number, name,
                    "has " + std::to_string(m_recordLines) + " of " + std::to_string(lines) +
                        " lines" + (m_recordLines < lines ? "" : ", the last one not whole") +
                        ": the file may have been cut off, fetch it again");
    }
    m_isOdd = false;
    NavigationRecord record;
    record.satellite = *satellite;
    record.systemS = ReadEpoch();
    if (!Good()) {
        return;
    }
    if (HasStates(satellite->system)) {
        ReadState(record);
    } else {
        ReadElements(*satellite, record);
    }
    // Toe may be half a week beside the date.
    if (record.systemS < 0.0 || record.systemS >= SinceEpoch(kEnd)) {
        Drop(0, "year", "the orbit's time is not within 1980 to 2199");
    }
    if (Good() && !m_isOdd) {
        m_result.records.push_back(record);
    }
}

/// The date and time of day in the first line, seconds since 1980-01-06 as they stand there.
double NavigationReader::ReadEpoch()
{
    struct Part
    {
        std::string_view name;
        FieldRange range;
    };
    constexpr Part kParts[] = {
        {"year", {1980, 2199, true, "1980 to 2199"}},
        {"month", {1, 12, true, "1 to 12"}},
        {"day", {1, 31, true, "1 to 31"}},
        {"hour", {0, 23, true, "0 to 23"}},
        {"minute", {0, 59, true, "0 to 59"}},
        {"second", {0, 60, false, "0 to 60"}},
    };
    const Line& line = m_record[0];
    const std::vector<std::string_view> words =
        Words(line.text.substr(std::min<std::size_t>(kIndent, line.text.size()), kFieldWidth));
    std::array<double, std::size(kParts)> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (const auto wrong = ReadNumber(i < words.size() ? words[i] : std::string_view(),
                                          kParts[i].range, values[i])) {
            Fail(line.number, kParts[i].name, *wrong);
            return 0.0;
        }
    }
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(values[0])),
                                           std::chrono::month(static_cast<unsigned>(values[1])),
                                           std::chrono::day(static_cast<unsigned>(values[2])));
    if (!date.ok()) {
        Fail(line.number, "day",
             "that month has no day " + std::to_string(static_cast<int>(values[2])));
        return 0.0;
    }
    return SinceEpoch(date) + values[3] * 3600.0 + values[4] * 60.0 + values[5];
}

std::string_view NavigationReader::FieldText(std::size_t line, std::size_t column) const
{
    const std::string_view text = m_record[line].text;
    return Trimmed(text.substr(std::min(kIndent + column * kFieldWidth, text.size()), kFieldWidth));
}

void NavigationReader::Drop(std::size_t line, std::string_view field, std::string message)
{
    if (m_isOdd || !Good()) {
        return;
    }
    m_isOdd = true;
    ++m_result.odd;
    if (!m_result.firstOdd) {
        m_result.firstOdd =
            TextError{m_record[line].number, std::string(field), std::move(message)};
    }
}

double NavigationReader::Number(const Field& field)
{
    double value = 0.0;
    if (!Good() || m_isOdd) {
        return value;
    }
    const std::string_view text = FieldText(field.line, field.column);
    const int line = m_record[field.line].number;
    if (!text.empty()) {
        if (const auto wrong = ReadNumber(text, kAny, value)) {
            Fail(line, field.name, *wrong);
            return 0.0;
        }
    }
    if (auto odd = ReadNumber(text, field.range, value)) {
        Drop(field.line, field.name, *std::move(odd));
        return 0.0;
    }
    return value;
}

void NavigationReader::ReadElements(SatelliteId satellite, NavigationRecord& record)
{
    KeplerOrbit orbit;
    SetEarthOf(satellite.system, orbit);
    orbit.isGeostationary = IsGeostationary(satellite);
    for (const ElementField& field : kElements) {
        orbit.*field.part = Number(field);
    }
    orbit.a *= orbit.a;
    record.health = static_cast<int>(Number(kElementHealth));
    // The week beside toe is counted from another day by each system, and by some writers from the
    // wrong one: the toe that is nearest to the clock's time is meant.
    const double weeks = std::round((record.systemS - orbit.toeS) / kWeekS);
    record.systemS = weeks * kWeekS + orbit.toeS;
    orbit.referenceS = GpsSeconds(satellite.system, record.systemS);
    record.orbit = orbit;
}

void NavigationReader::ReadState(NavigationRecord& record)
{
    StateVector state;
    for (std::size_t axis = 0; axis < std::size(kAxes); ++axis) {
        state.position.*kAxes[axis] = kKm * Number({axis + 1, 0, kPlaceNames[axis], kPlace});
        state.velocity.*kAxes[axis] = kKm * Number({axis + 1, 1, kSpeedNames[axis], kSpeed});
        state.acceleration.*kAxes[axis] = kKm * Number({axis + 1, 2, kPullNames[axis], kPull});
    }
    record.health = static_cast<int>(Number(kStateHealth));
    if (record.satellite.system == GnssSystem::Glonass) {
        record.systemS += kMoscowAheadS;
    }
    state.referenceS = GpsSeconds(record.satellite.system, record.systemS);
    const Ecef& p = state.position;
    constexpr double kLowestM = 1e7;
    if (p.x * p.x + p.y * p.y + p.z * p.z < kLowestM * kLowestM) {
        Drop(1, kPlaceNames[0], "no satellite is that low");
    }
    record.orbit = state;
}

/// Compressed by gzip, compress or zip.
bool IsCompressed(std::string_view start)
{
    using namespace std::string_view_literals;
    return start.substr(0, 2) == "\x1F\x8B"sv || start.substr(0, 2) == "\x1F\x9D"sv ||
           start.substr(0, 4) == "PK\x03\x04"sv;
}

NavigationText Refused(std::string message)
{
    NavigationText result;
    result.error = TextError{0, "", std::move(message)};
    return result;
}

/// "%19.12E", in every language of the session; with a digit less where the exponent has three.
std::string Written(double value)
{
    std::array<char, 40> digits{};
    std::string text;
    for (int decimals = 12; text.empty() || text.size() > kFieldWidth; --decimals) {
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                       std::chars_format::scientific, decimals)
                             .ptr;
        text.assign(digits.data(), end);
    }
    return std::string(kFieldWidth - text.size(), ' ') + text;
}

std::string WrittenEpoch(const NavigationRecord& record)
{
    const double shown =
        record.systemS - (record.satellite.system == GnssSystem::Glonass ? kMoscowAheadS : 0.0);
    return record.satellite.Text() +
           FormatDate(kGpsEpoch + std::chrono::seconds(std::llround(shown)), " %Y %m %d %H %M %S");
}

using Rows = std::array<std::array<double, kFieldsPerLine>, kElementLines>;

Rows RowsOf(const NavigationRecord& record)
{
    Rows rows{};
    const auto put = [&](const Field& field, double value) {
        rows[field.line][field.column] = value;
    };
    if (const auto* orbit = std::get_if<KeplerOrbit>(&record.orbit)) {
        for (const ElementField& field : kElements) {
            const double value = orbit->*field.part;
            put(field, field.part == &KeplerOrbit::a ? std::sqrt(value) : value);
        }
        put(kElementHealth, record.health);
        return rows;
    }
    const auto& state = std::get<StateVector>(record.orbit);
    for (std::size_t axis = 0; axis < std::size(kAxes); ++axis) {
        rows[axis + 1] = {state.position.*kAxes[axis] / kKm, state.velocity.*kAxes[axis] / kKm,
                          state.acceleration.*kAxes[axis] / kKm, 0.0};
    }
    put(kStateHealth, record.health);
    return rows;
}

std::string HeaderLine(std::string content, std::string_view label)
{
    content.resize(kLabelColumn, ' ');
    return content.append(label).append("\n");
}

} // namespace

bool LooksLikeNavigation(std::string_view start)
{
    return IsCompressed(start) ||
           start.substr(0, start.find('\n')).find("RINEX VERSION / TYPE") != std::string_view::npos;
}

NavigationText ReadNavigation(std::string_view text)
{
    if (IsCompressed(text)) {
        return Refused("is compressed: unpack it first, for example with gunzip");
    }
    if (text.size() > kMostNavigation) {
        return Refused("longer than 32 megabytes: take the file of one day");
    }
    NavigationText result;
    NavigationReader(text, result).Read();
    if (result.error) {
        result.records.clear();
    }
    return result;
}

NavigationText LoadNavigation(const std::filesystem::path& file)
{
    // One more than may be: longer texts are to be noticed.
    const auto content = ReadWholeFile(file, kMostNavigation + 1);
    if (!content) {
        return Refused("is no file that can be read");
    }
    return ReadNavigation({reinterpret_cast<const char*>(content->data()), content->size()});
}

std::string WriteNavigation(std::span<const NavigationRecord> records)
{
    std::string text =
        HeaderLine("     3.05           NAVIGATION DATA     MIXED", "RINEX VERSION / TYPE") +
        HeaderLine("", "END OF HEADER");
    for (const NavigationRecord& record : records) {
        const Rows rows = RowsOf(record);
        text += WrittenEpoch(record) + Written(0.0) + Written(0.0) + Written(0.0) + "\n";
        // Version 3.05 has one line more of GLONASS.
        const std::size_t lines = record.satellite.system == GnssSystem::Glonass ? kStateLines + 1
                                  : HasStates(record.satellite.system)           ? kStateLines
                                                                                 : kElementLines;
        for (std::size_t line = 1; line < lines; ++line) {
            text.append(kIndent, ' ');
            for (const double value : rows[line]) {
                text += Written(value);
            }
            text += "\n";
        }
    }
    return text;
}

} // namespace fieldcore
