#include "cli/AlmanacReport.h"

#include "core/orbits/SystemTime.h"
#include "core/planning/AlmanacTime.h"
#include "core/platform/Calendar.h"
#include "core/platform/Degrees.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace fieldcore::cli {

namespace {

CGPSTime FromGpsSeconds(std::int64_t seconds)
{
    return {CGPSTime::m_OriginalTime + CTimeSpan(seconds)};
}

Value DaysValue(double seconds)
{
    return Value::Real(seconds / kDayS, 1, Worded(text::kUnitDays));
}

Value AgeValue(const CGPSTime& time, const CGPSTime& date)
{
    return DaysValue(static_cast<double>(GpsSeconds(date) - GpsSeconds(time)));
}

std::string NameOf(GnssSystem system)
{
    constexpr std::array<const char*, kGnssSystems> kNames{"GPS",    "GLONASS", "Galileo",
                                                           "BeiDou", "QZSS",    "SBAS"};
    return kNames[static_cast<std::size_t>(system)];
}

Value SystemValue(GnssSystem system)
{
    return Value::Word(std::string(1, LetterOf(system)), NameOf(system));
}

void ForEachSystem(SystemSet systems, const auto& use)
{
    for (std::size_t i = 0; i < kGnssSystems; ++i) {
        if (systems[i]) {
            use(static_cast<GnssSystem>(i));
        }
    }
}

/// The reference time of a satellite; nothing if the record has none.
std::optional<CGPSTime> TimeOf(const KeplerElements& elements)
{
    if (elements.week < 0 || elements.toaS > kWeekS) {
        return std::nullopt;
    }
    CGPSTime time;
    time.SetGpsTime(elements.week, elements.toaS);
    return time;
}

} // namespace

CGPSTime GpsNow(const World& world)
{
    const auto since = world.GetClock().Utc() - kGpsEpoch;
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
    return DateValue(kGpsEpoch + std::chrono::seconds(gpsSeconds), hasSeconds);
}

Value DateValue(std::chrono::sys_seconds gps, bool hasSeconds)
{
    return Value::Word(FormatDate(gps, "%FT%T"),
                       FormatDate(gps, hasSeconds ? "%F %T" : "%F %H:%M"));
}

Failure AlmanacFailure(AlmanacResult result, const AlmanacStore& store,
                       const std::filesystem::path& file)
{
    return result == AlmanacResult::Cancelled ? RequestFailure(CommandFault::Cancelled, "")
           : result == AlmanacResult::TooFew
               ? Failure{ExitCode::Failed, "almanac-too-few", text::kSayAlmanacTooFew,
                         text::kSayAlmanacTooFewHint}
               : FileFailure(
                     {text::kSayAlmanacNotWritten, {file.string(), Reason(store.LastError())}},
                     "fieldcore-cli doctor");
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
    Report::Table table{"satellites"};
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        if (almanac.IsValid(index) == 0) {
            continue;
        }
        const CAlmanacSatellite& satellite = almanac.GetSatellite(index);
        const KeplerElements& elements = satellite.GetOrbit().Elements();
        const AlmanacRecord record = DecodeAlmanac(satellite.GetRecord());
        const std::optional<CGPSTime> time = TimeOf(elements);
        table.rows.push_back(
            {{"prn", "PRN", Value::Integer(satellite.GetPrn())},
             {"healthy", text::kHeadHealthy, Value::YesNo(satellite.IsHealthy() != 0)},
             {"health", text::kHeadHealth, Value::Integer(record.health)},
             {"week", text::kHeadWeek,
              time ? Value::Integer(time->GetGpsWeek()) : Value::Unknown()},
             {"gpsTime", text::kHeadReferenceTimeGps,
              time ? DateValue(GpsSeconds(*time)) : Value::Unknown()},
             {"eccentricity", text::kHeadEccentricity, Value::Real(elements.eccentricity, 6)},
             {"inclinationDeg", text::kHeadInclination,
              Value::Real(DegreesOf(elements.i0), 3, "deg")},
             {"ageDays", text::kHeadAge, time ? AgeValue(*time, date) : Value::Unknown()}});
    }
    report.AddTable(std::move(table));
}

void AddSystemTable(Report& report, std::span<const NavigationRecord> records, double gpsS)
{
    struct Tally
    {
        int messages = 0;
        double firstS = 0.0;
        double lastS = 0.0;
        std::map<SatelliteId, const NavigationRecord*> newest;
    };
    std::map<GnssSystem, Tally> tallies;
    for (const NavigationRecord& record : records) {
        Tally& tally = tallies[record.satellite.system];
        const double timeS = record.ReferenceS();
        tally.firstS = tally.messages == 0 ? timeS : std::min(tally.firstS, timeS);
        tally.lastS = tally.messages == 0 ? timeS : std::max(tally.lastS, timeS);
        ++tally.messages;
        const NavigationRecord*& newest = tally.newest[record.satellite];
        if (newest == nullptr || newest->ReferenceS() <= timeS) {
            newest = &record;
        }
    }
    Report::Table table{"systems"};
    for (const auto& [system, tally] : tallies) {
        const auto healthy =
            std::count_if(tally.newest.begin(), tally.newest.end(),
                          [](const auto& satellite) { return satellite.second->IsHealthy(); });
        const double ageS = gpsS - tally.lastS;
        table.rows.push_back(
            {{"system", text::kHeadSystem, SystemValue(system)},
             {"satellites", text::kHeadSatellites,
              Value::Integer(static_cast<std::int64_t>(tally.newest.size()))},
             {"healthy", text::kHeadHealthy, Value::Integer(healthy)},
             {"messages", text::kHeadMessages, Value::Integer(tally.messages)},
             {"oldestGpsTime", text::kHeadOldestGps, DateValue(std::llround(tally.firstS))},
             {"newestGpsTime", text::kHeadNewestGps, DateValue(std::llround(tally.lastS))},
             {"ageDays", text::kHeadAge, DaysValue(ageS)},
             {"tooOld", text::kHeadTooOld, Value::YesNo(std::abs(ageS) > StaleAfterS(system))}});
    }
    report.AddTable(std::move(table));
}

void WarnOfSystems(Output& output, const ObservationPlan& plan)
{
    ForEachSystem(plan.Systems(), [&](GnssSystem system) {
        const SystemState state = plan.StateOf(system);
        const std::string days = Value::Real(state.ageS / kDayS, 1).Words();
        if (state.satellites == 0) {
            output.Warn({text::kSaySystemMissing, {NameOf(system)}});
        } else if (state.isStale) {
            output.Warn({text::kSaySystemStale, {NameOf(system), days}});
        }
    });
}

std::string SystemWords(const ObservationPlan& plan)
{
    std::string words =
        Worded(text::kSaySystems,
               {TextOf(plan.Systems()),
                Worded(plan.HasClockPerSystem() ? text::kSayClockEach : text::kSayClockOne)});
    ForEachSystem(plan.Systems(), [&](GnssSystem system) {
        const SystemState state = plan.StateOf(system);
        words += "  " + Padded(NameOf(system), 8) + " " +
                 (state.satellites == 0
                      ? Value::Unknown().Words()
                      : Worded(text::kSaySystemLine,
                               {std::to_string(state.satellites), std::to_string(state.healthy),
                                Value::Real(state.ageS / kDayS, 1).Words()})) +
                 "\n";
    });
    return words + "\n";
}

void AddSystems(Report& report, const ObservationPlan& plan)
{
    report.Add("systems", Value::Text(TextOf(plan.Systems())));
    report.Add("clockPerSystem", Value::YesNo(plan.HasClockPerSystem()));
    Report::Table table{"orbits"};
    ForEachSystem(plan.Systems(), [&](GnssSystem system) {
        const SystemState state = plan.StateOf(system);
        const bool isKnown = state.satellites > 0;
        table.rows.push_back({{"system", "", SystemValue(system)},
                              {"satellites", "", Value::Integer(state.satellites)},
                              {"healthy", "", Value::Integer(state.healthy)},
                              {"newestGpsTime", "",
                               isKnown ? DateValue(std::llround(state.lastS)) : Value::Unknown()},
                              {"ageDays", "", isKnown ? DaysValue(state.ageS) : Value::Unknown()},
                              {"tooOld", "", Value::YesNo(state.isStale)}});
    });
    report.AddTable(std::move(table));
}

} // namespace fieldcore::cli
