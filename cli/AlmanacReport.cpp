#include "cli/AlmanacReport.h"

#include "cli/Wording.h"

#include "core/planning/AlmanacTime.h"
#include "core/planning/Degrees.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>

namespace fieldcore::cli {

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;
using namespace std::chrono_literals;

constexpr sys_days kGpsEpoch{1980y / 1 / 6};
constexpr double kDayS = 86400.0;
constexpr int kSecondsPerWeek = 604800;

CGPSTime FromGpsSeconds(std::int64_t seconds)
{
    return {CGPSTime::m_OriginalTime + CTimeSpan(seconds)};
}

Value AgeValue(const CGPSTime& time, const CGPSTime& date)
{
    return Value::Real(static_cast<double>(GpsSeconds(date) - GpsSeconds(time)) / kDayS, 1,
                       Worded(text::kUnitDays));
}

/// The reference time of a satellite; nothing if the record has none.
std::optional<CGPSTime> TimeOf(const KeplerElements& elements)
{
    if (elements.week < 0 || elements.toaS > kSecondsPerWeek) {
        return std::nullopt;
    }
    CGPSTime time;
    time.SetGpsTime(elements.week, elements.toaS);
    return time;
}

} // namespace

CGPSTime GpsNow(const World& world)
{
    const auto since = world.clock->Utc() - kGpsEpoch;
    return FromGpsSeconds(std::chrono::duration_cast<std::chrono::seconds>(since).count());
}

CGPSTime GpsMidnight(std::chrono::sys_days day)
{
    return FromGpsSeconds(std::chrono::seconds(day - kGpsEpoch).count());
}

std::int64_t GpsSeconds(const CGPSTime& time)
{
    return time.GetUtcTime().GetTime() - CGPSTime::m_OriginalTime.GetTime();
}

Value SourceValue(const AlmanacSource& source)
{
    constexpr std::array kCodes{"unknown", "receiver", "file", "nominal"};
    constexpr std::array kTexts{text::kSourceUnknown, text::kSourceReceiver, text::kSourceFile};
    const char* const code = kCodes[static_cast<std::size_t>(source.origin)];
    return source.origin == AlmanacOrigin::Nominal
               ? Term(code, {text::kSayMadeUp, {ToUtf8(SourceText(source))}})
               : Term(code, kTexts[static_cast<std::size_t>(source.origin)]);
}

Value DateValue(std::int64_t gpsSeconds, bool hasSeconds)
{
    const auto instant = kGpsEpoch + std::chrono::seconds(gpsSeconds);
    const auto day = std::chrono::floor<std::chrono::days>(instant);
    const year_month_day date(day);
    const std::chrono::hh_mm_ss clock(instant - day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    constexpr std::size_t kUntilSeconds = 16;
    std::string words =
        std::string(text.data()).substr(0, hasSeconds ? text.size() : kUntilSeconds);
    words[words.find('T')] = ' ';
    return Value::Word(text.data(), std::move(words));
}

void AddAlmanacSummary(Report& report, const CSurveyPlanCalc& almanac, const CGPSTime& date)
{
    std::int64_t loaded = 0;
    std::int64_t healthy = 0;
    bool anyTime = false;
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        if (almanac.IsValid(index) != 0) {
            ++loaded;
            healthy += almanac.GetSatellite(index).IsHealthy();
            anyTime = anyTime || TimeOf(almanac.GetSatellite(index).GetOrbit().Elements());
        }
    }
    const CGPSTime time = AlmanacTime(almanac);
    report.Add("source", text::kLabelSource, SourceValue(almanac.Source()));
    const std::wstring& name = almanac.Source().name;
    report.Add("sourceName", text::kLabelSourceName,
               name.empty() ? Value::Unknown() : Value::Text(std::wstring_view(name)));
    report.Add("satelliteCount", text::kLabelSatellites, Value::Integer(loaded));
    report.Add("healthyCount", text::kLabelHealthy, Value::Integer(healthy));
    report.Add("gpsTime", text::kLabelAlmanacTime,
               anyTime ? DateValue(GpsSeconds(time)) : Value::Unknown());
    report.Add("ageDays", text::kLabelAge, anyTime ? AgeValue(time, date) : Value::Unknown());
    report.Add("old", text::kLabelTooOld, Value::YesNo(IsAlmanacOld(time, date)));
}

void AddAlmanacTable(Report& report, const CSurveyPlanCalc& almanac, const CGPSTime& date)
{
    Report::Table table{"satellites",
                        {{"prn", "PRN"},
                         {"healthy", text::kHeadHealthy},
                         {"health", text::kHeadHealth},
                         {"week", text::kHeadWeek},
                         {"gpsTime", text::kHeadReferenceTimeGps},
                         {"eccentricity", text::kHeadEccentricity},
                         {"inclinationDeg", text::kHeadInclination},
                         {"ageDays", text::kHeadAge}}};
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        if (almanac.IsValid(index) == 0) {
            continue;
        }
        const CAlmanacSatellite& satellite = almanac.GetSatellite(index);
        const KeplerElements& elements = satellite.GetOrbit().Elements();
        const AlmanacRecord record = DecodeAlmanac(satellite.GetRecord());
        const std::optional<CGPSTime> time = TimeOf(elements);
        table.rows.push_back(
            {Value::Integer(satellite.GetPrn()), Value::YesNo(satellite.IsHealthy() != 0),
             Value::Integer(record.health),
             time ? Value::Integer(GpsSeconds(*time) / kSecondsPerWeek) : Value::Unknown(),
             time ? DateValue(GpsSeconds(*time)) : Value::Unknown(),
             Value::Real(elements.eccentricity, 6), Value::Real(DegreesOf(elements.i0), 3, "deg"),
             time ? AgeValue(*time, date) : Value::Unknown()});
    }
    report.AddTable(std::move(table));
}

} // namespace fieldcore::cli
