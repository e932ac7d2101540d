#include "cli/PlanReport.h"

#include "cli/AlmanacReport.h"
#include "cli/Navigation.h"
#include "cli/Wording.h"

#include "core/planning/AlmanacState.h"
#include "core/planning/Degrees.h"
#include "core/planning/PlanSeries.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace fieldcore::cli {

namespace {

constexpr int kDopDecimals = 2;

/// "2026-11-21T09:00+09:00" is for programs, "09:00" for a person.
std::string ClockOf(const std::string& jst)
{
    constexpr std::size_t kAt = 11;
    constexpr std::size_t kLength = 5;
    return jst.substr(kAt, kLength);
}

std::string DateOf(const std::string& jst)
{
    constexpr std::size_t kLength = 10;
    return jst.substr(0, kLength);
}

Value JstValue(const PlanPeriod& period, int epoch)
{
    return Value::Word(period.JstText(epoch), period.ClockText(epoch));
}

int CountOf(const ObservationPlan& plan, int epoch)
{
    return plan.View().count[static_cast<std::size_t>(epoch)];
}

/// @param value  nothing: there is none
/// @param scale  columns for each unit
std::string Bar(std::optional<double> value, int scale)
{
    constexpr double kHighest = 12.0; // as far as the graphs of the plan go
    const double shown = std::clamp(value.value_or(0.0), 0.0, kHighest);
    std::string text;
    for (auto columns = std::lround(shown * scale); columns > 0; --columns) {
        text += "█";
    }
    return text;
}

Report::Table OverviewTable(const ObservationPlan& plan)
{
    Report::Table table{"samples",
                        {{"time", "JST"},
                         {"satellites", text::kHeadSatellites},
                         {"pdop", "PDOP"},
                         {"gdop", "GDOP"},
                         {"tdop", "TDOP"}}};
    for (int k = 0; k < plan.Division(); ++k) {
        const int count = CountOf(plan, k);
        const DopValues& dop = plan.View().dop[static_cast<std::size_t>(k)];
        const auto solved = [&](double dilution) { // or unknown
            return Value::Real(count < kSatellitesForDop ? NAN : dilution, kDopDecimals);
        };
        table.rows.push_back({JstValue(plan.Computed(), k), Value::Integer(count), solved(dop.pdop),
                              solved(dop.gdop), solved(dop.tdop)});
    }
    return table;
}

Report::Table SeriesTable(const ObservationPlan& plan, PlanGraph graph)
{
    constexpr std::array kNames{std::array{"pdop", "PDOP"}, std::array{"gdop", "GDOP"},
                                std::array{"tdop", "TDOP"}};
    const bool isCount = graph == PlanGraph::Count;
    const auto& name = kNames[isCount ? 0
                                      : static_cast<std::size_t>(graph) -
                                            static_cast<std::size_t>(PlanGraph::Pdop)];
    Report::Table table{"samples",
                        {{"time", "JST"},
                         isCount ? Report::Column{"satellites", text::kHeadSatellites}
                                 : Report::Column{name[0], name[1]}}};
    for (int k = 0; k < plan.Division(); ++k) {
        table.rows.push_back(
            {JstValue(plan.Computed(), EpochOfSample(graph, k)),
             isCount ? Value::Integer(std::lround(plan.CountAt(k)))
                     : Value::Real(SampleAt(plan, graph, k).value_or(NAN), kDopDecimals)});
    }
    return table;
}

/// The column of satellites in a table of tracks.
Report::Column SatelliteColumn(const ObservationPlan& plan)
{
    return plan.IsGpsAlone() ? Report::Column{"prn", "PRN"}
                             : Report::Column{"satellite", text::kHeadSatellite};
}

/// @param index  of the plan's satellites
Value SatelliteValue(const ObservationPlan& plan, int index)
{
    const SatelliteId satellite = plan.Satellites()[static_cast<std::size_t>(index)];
    return plan.IsGpsAlone() ? Value::Integer(satellite.number) : Value::Text(satellite.Text());
}

int SatelliteCount(const ObservationPlan& plan)
{
    return static_cast<int>(plan.Satellites().size());
}

Report::Table TracksTable(const ObservationPlan& plan)
{
    Report::Table table{"samples",
                        {{"time", "JST"},
                         SatelliteColumn(plan),
                         {"azimuthDeg", text::kHeadAzimuth},
                         {"elevationDeg", text::kHeadElevation}}};
    for (int k = 0; k <= plan.Division(); ++k) {
        for (int index = 0; index < SatelliteCount(plan); ++index) {
            if (const std::optional<SkyDirection> direction = plan.DirectionAt(index, k)) {
                table.rows.push_back({JstValue(plan.Computed(), k), SatelliteValue(plan, index),
                                      Value::Real(DegreesOf(direction->azimuthRad), 1),
                                      Value::Real(DegreesOf(direction->elevationRad), 1)});
            }
        }
    }
    return table;
}

Report::Table Samples(const ObservationPlan& plan, std::optional<PlanGraph> graph)
{
    if (!graph) {
        return OverviewTable(plan);
    }
    return IsTracks(*graph) ? TracksTable(plan) : SeriesTable(plan, *graph);
}

const char* KindOf(std::optional<PlanGraph> graph)
{
    constexpr std::array kKinds{"count", "tracks", "tracks", "tracks", "pdop", "gdop", "tdop"};
    return graph ? kKinds[static_cast<std::size_t>(*graph)] : "overview";
}

/// Table with a bar behind each row.
std::string ChartWords(const ObservationPlan& plan, std::optional<PlanGraph> graph)
{
    constexpr int kDopScale = 4;
    const bool isCount = !graph || *graph == PlanGraph::Count;
    Report::Table table = Samples(plan, graph);
    table.columns.push_back({"", ""});
    for (std::size_t k = 0; k < table.rows.size(); ++k) {
        const auto sample = static_cast<int>(k);
        table.rows[k].push_back(Value::Text(
            isCount ? Bar(plan.CountAt(sample), 1) : Bar(SampleAt(plan, *graph, sample), kDopScale),
            ""));
    }
    Report report;
    report.AddTable(std::move(table));
    return report.Words();
}

/// When each satellite is up, and how high it comes.
std::string TrackWords(const ObservationPlan& plan)
{
    Report::Table table{"",
                        {SatelliteColumn(plan),
                         {"", text::kHeadFromJst},
                         {"", text::kHeadToJst},
                         {"", text::kHeadHighest},
                         {"", text::kHeadUp}},
                        text::kSayNoneUp};
    for (int index = 0; index < SatelliteCount(plan); ++index) {
        std::string line;
        int first = -1;
        int last = -1;
        double highest = 0.0;
        for (int k = 0; k <= plan.Division(); ++k) {
            const std::optional<SkyDirection> direction = plan.DirectionAt(index, k);
            line += direction ? "█" : "·";
            if (direction) {
                first = first < 0 ? k : first;
                last = k;
                highest = std::max(highest, direction->elevationRad);
            }
        }
        if (first >= 0) {
            const PlanPeriod& period = plan.Computed();
            table.rows.push_back({SatelliteValue(plan, index), Value::Text(period.ClockText(first)),
                                  Value::Text(period.ClockText(last)),
                                  Value::Integer(std::lround(DegreesOf(highest)), "deg"),
                                  Value::Text(line)});
        }
    }
    Report report;
    report.AddTable(std::move(table));
    return report.Words();
}

std::optional<PlanWindow> BestWindow(const ObservationPlan& plan, const WindowLimits& limits)
{
    const std::vector<PlanWindow> windows = FindWindows(plan, limits);
    const auto best = std::max_element(
        windows.begin(), windows.end(), [](const PlanWindow& a, const PlanWindow& b) {
            const int lengthA = a.last - a.first;
            const int lengthB = b.last - b.first;
            return lengthA != lengthB ? lengthA < lengthB : a.highestPdop > b.highestPdop;
        });
    return best == windows.end() ? std::nullopt : std::optional(*best);
}

std::string BestWords(const ObservationPlan& plan, const WindowLimits& limits)
{
    const std::optional<PlanWindow> best = BestWindow(plan, limits);
    if (!best) {
        return Worded(text::kSayBestNone, {LimitWords(limits)});
    }
    return Worded(text::kSayBest,
                  {plan.Computed().ClockText(best->first), plan.Computed().ClockText(best->last),
                   std::to_string(best->fewestSatellites),
                   Value::Real(best->highestPdop, 1).Words()});
}

std::string Coordinates(const Observer& observer)
{
    std::array<char, 80> text{};
    const double latitude = DegreesOf(observer.latitudeRad);
    const double longitude = DegreesOf(observer.longitudeRad);
    std::snprintf(text.data(), text.size(), "%.5f %c, %.5f %c, %.0f m", std::abs(latitude),
                  latitude < 0.0 ? 'S' : 'N', std::abs(longitude), longitude < 0.0 ? 'W' : 'E',
                  observer.heightM);
    return text.data();
}

Value TimeValue(std::chrono::sys_seconds time)
{
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const auto minutes = std::chrono::floor<std::chrono::minutes>(time - day).count();
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(minutes / 60),
                  static_cast<int>(minutes % 60));
    const std::string code = text.data();
    return Value::Word(code, DateOf(code) + " " + ClockOf(code));
}

std::string AgeWords(const AlmanacState& almanac)
{
    return Worded(almanac.ageDays < 0.0 ? text::kSayDaysAfter : text::kSayDaysBefore,
                  {Value::Real(std::abs(almanac.ageDays), 1).Words()});
}

} // namespace

Report PlanReport(const ObservationPlan& plan, const NamedSite& site, const PlanRequest& request,
                  std::optional<PlanGraph> graph)
{
    const PlanPeriod& period = plan.Computed();
    Report report;
    report.Add("site", text::kLabelSite, Value::Text(std::wstring_view(site.name)));
    report.Add("latitudeDeg", text::kLabelLatitude,
               Value::Real(DegreesOf(site.observer.latitudeRad), 8));
    report.Add("longitudeDeg", text::kLabelLongitude,
               Value::Real(DegreesOf(site.observer.longitudeRad), 8));
    report.Add("heightM", text::kLabelHeight, Value::Real(site.observer.heightM, 3));
    report.Add("date", text::kLabelDate, Value::Text(DateOf(period.JstText(0))));
    report.Add("from", text::kLabelFrom, Value::Text(period.JstText(0)));
    report.Add("to", text::kLabelTo, Value::Text(period.JstText(plan.Division())));
    report.Add("intervalMinutes", text::kLabelInterval, Value::Integer(period.Interval().count()));
    report.Add("maskDeg", text::kLabelMask, Value::Integer(request.maskDeg));
    report.Add("hasCurtain", text::kLabelCurtain,
               Value::YesNo(HasObstruction(plan.Calc().GetCurtain())));
    if (plan.UsesAlmanac()) {
        Report& almanac = report.AddSection("almanac", text::kLabelAlmanac);
        AddAlmanacSummary(almanac, plan.Calc(), period.Start());
    }
    if (!plan.IsGpsAlone()) {
        AddSystems(report, plan);
    }
    report.Add("kind", text::kLabelKind, Value::Text(std::string(KindOf(graph))));
    report.AddTable(Samples(plan, graph));
    if (const std::optional<PlanWindow> best = BestWindow(plan, request.settings.limits)) {
        Report& window = report.AddSection("bestWindow", text::kLabelBestWindow);
        const std::vector<Report::Column> columns = WindowColumns();
        std::vector<Value> row = WindowRow(plan, site, *best);
        for (std::size_t at = 2; at < columns.size(); ++at) { // site and date stand above
            window.Add(columns[at].key, columns[at].label, std::move(row[at]));
        }
    } else {
        report.Add("bestWindow", text::kLabelBestWindow, Value::Unknown());
    }
    return report;
}

std::string PlanWords(const ObservationPlan& plan, const NamedSite& site,
                      const PlanRequest& request, std::optional<PlanGraph> graph)
{
    const PlanPeriod& period = plan.Computed();
    const AlmanacState almanac = StateOfAlmanac(plan);
    std::string words = ToUtf8(site.name) + "  " + Coordinates(site.observer) + "\n";
    const std::string end = period.ClockText(plan.Division());
    const std::string lastDay = DateOf(period.JstText(plan.Division()));
    const bool passesMidnight = end != "24:00" && lastDay != DateOf(period.JstText(0));
    const bool hasCurtain = HasObstruction(plan.Calc().GetCurtain());
    words += Worded(text::kSayPlanHead,
                    {DateOf(period.JstText(0)), period.ClockText(0),
                     (passesMidnight ? lastDay + ", " : "") + end,
                     std::to_string(period.Interval().count()), std::to_string(request.maskDeg),
                     Worded(hasCurtain ? text::kSayWithCurtain : text::kSayNoCurtain)});
    words +=
        plan.IsGpsAlone()
            ? Worded(text::kSayPlanAlmanac,
                     {TimeValue(almanac.time).Words(), AgeWords(almanac),
                      std::to_string(almanac.satellites), std::to_string(almanac.healthy),
                      SourceValue(almanac.source).Words() +
                          (almanac.source.name.empty() ? "" : " " + ToUtf8(almanac.source.name))})
            : SystemWords(plan);
    words += graph && IsTracks(*graph) ? TrackWords(plan) : ChartWords(plan, graph);
    return words + "\n" + BestWords(plan, request.settings.limits) + "\n";
}

std::vector<Report::Column> WindowColumns()
{
    return {{"site", text::kHeadSite},
            {"date", text::kHeadDate},
            {"from", text::kHeadFromJst},
            {"to", text::kHeadToJst},
            {"hours", text::kHeadHours},
            {"minutes", text::kHeadMinutes},
            {"fewestSatellites", text::kHeadSatellites},
            {"highestPdop", "PDOP"}};
}

std::string LimitWords(const WindowLimits& limits)
{
    return Worded(text::kSayWindowLimits,
                  {std::to_string(limits.minSatellites), Value::Real(limits.maxPdop, 1).Words(),
                   std::to_string(limits.minLength.count())});
}

std::vector<Value> WindowRow(const ObservationPlan& plan, const NamedSite& site,
                             const PlanWindow& window)
{
    const PlanPeriod& period = plan.Computed();
    const auto minutes = (window.last - window.first) * period.Interval().count();
    return {Value::Text(std::wstring_view(site.name)),
            Value::Text(DateOf(period.JstText(window.first))),
            JstValue(period, window.first),
            JstValue(period, window.last),
            Value::Real(static_cast<double>(minutes) / 60.0, 1),
            Value::Integer(minutes),
            Value::Integer(window.fewestSatellites),
            Value::Real(window.highestPdop, kDopDecimals)};
}

} // namespace fieldcore::cli
