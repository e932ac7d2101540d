#include "cli/Navigation.h"

#include "cli/AlmanacReport.h"
#include "cli/Wording.h"

#include "core/orbits/NavigationFile.h"
#include "core/orbits/NavigationText.h"
#include "core/orbits/SystemTime.h"
#include "core/platform/WholeFile.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace fieldcore::cli {

namespace {

constexpr double kDayS = 86400.0;

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

Value DaysValue(double seconds)
{
    return Value::Real(seconds / kDayS, 1, Worded(text::kUnitDays));
}

std::string LettersOf(std::span<const NavigationRecord> records)
{
    SystemSet systems;
    for (const NavigationRecord& record : records) {
        systems.set(static_cast<std::size_t>(record.satellite.system));
    }
    return TextOf(systems);
}

double NowS(const Context& context)
{
    return static_cast<double>(GpsSeconds(GpsNow(context.world)));
}

/// Adds @p records to what is kept, unless this is a dry run.
std::optional<Failure> Keep(const Context& context, std::span<const NavigationRecord> records)
{
    const std::filesystem::path folder = Folders(context.world.folders).Program();
    if (LoadConstellations(folder).error) {
        context.output.Warn(text::kSayMessagesLost);
    }
    if (context.dryRun) {
        return std::nullopt;
    }
    if (const std::error_code error = KeepMessages(folder, records, NowS(context))) {
        return FileFailure(
            {text::kSayMessagesNotKept, {NavigationPath(folder).string(), Reason(error)}},
            "fieldcore-cli doctor");
    }
    return std::nullopt;
}

/// Adds @p records to what is kept and tells of them.
Ending Take(const Context& context, std::span<const NavigationRecord> records)
{
    if (const std::optional<Failure> failure = Keep(context, records)) {
        return *failure;
    }
    Report report;
    report.Add("file", text::kLabelFile,
               Value::Text(NavigationPath(Folders(context.world.folders).Program()).string()));
    AddSystemTable(report, records, NowS(context));
    context.output.Note({text::kSayForSystems, {LettersOf(records)}});
    return Kept(context, report);
}

std::vector<NavigationRecord> MessagesOf(const Context& context,
                                         std::span<const AlmanacRecord> records)
{
    std::vector<NavigationRecord> messages;
    for (const AlmanacRecord& record : records) {
        if (const auto message = MessageOf(record, NowS(context))) {
            messages.push_back(*message);
        }
    }
    return messages;
}

void ForEachSystem(SystemSet systems, const auto& use)
{
    for (std::size_t i = 0; i < kGnssSystems; ++i) {
        if (systems[i]) {
            use(static_cast<GnssSystem>(i));
        }
    }
}

} // namespace

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
    Report::Table table{"systems",
                        {{"system", text::kHeadSystem},
                         {"satellites", text::kHeadSatellites},
                         {"healthy", text::kHeadHealthy},
                         {"messages", text::kHeadMessages},
                         {"oldestGpsTime", text::kHeadOldestGps},
                         {"newestGpsTime", text::kHeadNewestGps},
                         {"ageDays", text::kHeadAge},
                         {"tooOld", text::kHeadTooOld}}};
    for (const auto& [system, tally] : tallies) {
        const auto healthy =
            std::count_if(tally.newest.begin(), tally.newest.end(),
                          [](const auto& satellite) { return satellite.second->IsHealthy(); });
        const double ageS = gpsS - tally.lastS;
        table.rows.push_back(
            {SystemValue(system), Value::Integer(static_cast<std::int64_t>(tally.newest.size())),
             Value::Integer(healthy), Value::Integer(tally.messages),
             DateValue(std::llround(tally.firstS)), DateValue(std::llround(tally.lastS)),
             DaysValue(ageS), Value::YesNo(std::abs(ageS) > StaleAfterS(system))});
    }
    report.AddTable(std::move(table));
}

bool IsNavigationFile(const std::string& file)
{
    constexpr std::size_t kFirstLine = 256;
    const auto start = ReadWholeFile(file, kFirstLine);
    return start &&
           LooksLikeNavigation({reinterpret_cast<const char*>(start->data()), start->size()});
}

Ending ImportNavigation(const Context& context, const std::string& file)
{
    const NavigationText text = LoadNavigation(file);
    if (text.error) {
        return TextFailure(file, *text.error, text::kSayWholeNavigation);
    }
    if (const int other = text.otherSystems + text.otherMessages; other > 0) {
        context.output.Note({text::kSayMessagesOther, {std::to_string(other)}});
    }
    if (text.firstOdd) {
        context.output.Note({text::kSayMessagesOdd,
                             {std::to_string(text.odd), std::to_string(text.firstOdd->line),
                              text.firstOdd->field}});
    }
    return Take(context, text.records);
}

Ending ImportOthers(const Context& context, std::span<const AlmanacRecord> records)
{
    return Take(context, MessagesOf(context, records));
}

std::optional<Failure> KeepOthers(const Context& context, std::span<const AlmanacRecord> records)
{
    if (records.empty()) {
        return std::nullopt;
    }
    context.output.Note({text::kSayQzssTaken, {std::to_string(records.size())}});
    return Keep(context, MessagesOf(context, records));
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
    report.Add("systems", text::kLabelSystems, Value::Text(TextOf(plan.Systems())));
    report.Add("clockPerSystem", text::kLabelClockPerSystem,
               Value::YesNo(plan.HasClockPerSystem()));
    Report::Table table{"orbits",
                        {{"system", text::kHeadSystem},
                         {"satellites", text::kHeadSatellites},
                         {"healthy", text::kHeadHealthy},
                         {"newestGpsTime", text::kHeadNewestGps},
                         {"ageDays", text::kHeadAge},
                         {"tooOld", text::kHeadTooOld}}};
    ForEachSystem(plan.Systems(), [&](GnssSystem system) {
        const SystemState state = plan.StateOf(system);
        const bool isKnown = state.satellites > 0;
        table.rows.push_back(
            {SystemValue(system), Value::Integer(state.satellites), Value::Integer(state.healthy),
             isKnown ? DateValue(std::llround(state.lastS)) : Value::Unknown(),
             isKnown ? DaysValue(state.ageS) : Value::Unknown(), Value::YesNo(state.isStale)});
    });
    report.AddTable(std::move(table));
}

} // namespace fieldcore::cli
