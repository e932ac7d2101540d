#include "cli/PlanReport.h"

#include "cli/AlmanacReport.h"

#include "core/planning/AlmanacState.h"
#include "core/planning/PlanSeries.h"
#include "core/platform/Degrees.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace fieldcore::cli {

namespace {

constexpr int kDopDecimals = 2;

std::string DateOf(const std::string& jst)
{
    constexpr std::size_t kLength = 10;
    return jst.substr(0, kLength);
}

Value JstValue(const PlanPeriod& period, int epoch)
{
    return Value::Word(period.JstText(epoch), period.ClockText(epoch));
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
    Report::Table table{"samples"};
    for (int k = 0; k < plan.Division(); ++k) {
        const int count = plan.View().count[static_cast<std::size_t>(k)];
        const DopValues& dop = plan.View().dop[static_cast<std::size_t>(k)];
        const auto solved = [&](double dilution) { // or unknown
            return Value::Real(count < kSatellitesForDop ? NAN : dilution, kDopDecimals);
        };
        table.rows.push_back({{"time", "JST", JstValue(plan.Computed(), k)},
                              {"satellites", text::kHeadSatellites, Value::Integer(count)},
                              {"pdop", "PDOP", solved(dop.pdop)},
                              {"gdop", "GDOP", solved(dop.gdop)},
                              {"tdop", "TDOP", solved(dop.tdop)}});
    }
    return table;
}

Report::Table SeriesTable(const ObservationPlan& plan, PlanGraph graph)
{
    constexpr std::array kNames{std::array{"pdop", "PDOP"}, std::array{"gdop", "GDOP"},
                                std::array{"tdop", "TDOP"}};
    Report::Table table{"samples"};
    for (int k = 0; k < plan.Division(); ++k) {
        auto& row = table.rows.emplace_back();
        row.push_back({"time", "JST", JstValue(plan.Computed(), EpochOfSample(graph, k))});
        if (graph == PlanGraph::Count) {
            row.push_back({"satellites", text::kHeadSatellites,
                           Value::Integer(std::lround(plan.CountAt(k)))});
            continue;
        }
        const auto& [key, head] =
            kNames[static_cast<std::size_t>(graph) - static_cast<std::size_t>(PlanGraph::Pdop)];
        row.push_back(
            {key, head, Value::Real(SampleAt(plan, graph, k).value_or(NAN), kDopDecimals)});
    }
    return table;
}

/// @param index  of the plan's satellites
Report::Cell SatelliteCell(const ObservationPlan& plan, int index)
{
    const SatelliteId satellite = plan.Satellites()[static_cast<std::size_t>(index)];
    return plan.IsGpsAlone()
               ? Report::Cell{"prn", "PRN", Value::Integer(satellite.number)}
               : Report::Cell{"satellite", text::kHeadSatellite, Value::Text(satellite.Text())};
}

int SatelliteCount(const ObservationPlan& plan)
{
    return static_cast<int>(plan.Satellites().size());
}

Report::Table TracksTable(const ObservationPlan& plan)
{
    Report::Table table{"samples"};
    for (int k = 0; k <= plan.Division(); ++k) {
        for (int index = 0; index < SatelliteCount(plan); ++index) {
            if (const std::optional<SkyDirection> direction = plan.DirectionAt(index, k)) {
                table.rows.push_back({{"time", "JST", JstValue(plan.Computed(), k)},
                                      SatelliteCell(plan, index),
                                      {"azimuthDeg", text::kHeadAzimuth,
                                       Value::Real(DegreesOf(direction->azimuthRad), 1)},
                                      {"elevationDeg", text::kHeadElevation,
                                       Value::Real(DegreesOf(direction->elevationRad), 1)}});
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
    for (std::size_t k = 0; k < table.rows.size(); ++k) {
        const auto sample = static_cast<int>(k);
        const std::string bar =
            isCount ? Bar(plan.CountAt(sample), 1) : Bar(SampleAt(plan, *graph, sample), kDopScale);
        table.rows[k].push_back({"", "", Value::Text(bar, "")});
    }
    return Report(std::move(table)).Words();
}

/// When each satellite is up, and how high it comes.
std::string TrackWords(const ObservationPlan& plan)
{
    Report::Table table{"", text::kSayNoneUp};
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
            table.rows.push_back(
                {SatelliteCell(plan, index),
                 {"", text::kHeadFromJst, Value::Text(period.ClockText(first))},
                 {"", text::kHeadToJst, Value::Text(period.ClockText(last))},
                 {"", text::kHeadHighest, Value::Integer(std::lround(DegreesOf(highest)), "deg")},
                 {"", text::kHeadUp, Value::Text(line)}});
        }
    }
    return Report(std::move(table)).Words();
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
    const double latitude = DegreesOf(observer.latitudeRad);
    const double longitude = DegreesOf(observer.longitudeRad);
    return Value::Real(std::abs(latitude), 5).Words() + (latitude < 0.0 ? " S, " : " N, ") +
           Value::Real(std::abs(longitude), 5).Words() + (longitude < 0.0 ? " W, " : " E, ") +
           Value::Real(observer.heightM, 0, "m").Words();
}

} // namespace

Report PlanReport(const ObservationPlan& plan, const NamedSite& site, const PlanRequest& request,
                  std::optional<PlanGraph> graph)
{
    const PlanPeriod& period = plan.Computed();
    Report report;
    report.Add("site", Value::Text(std::wstring_view(site.name)));
    report.Add("latitudeDeg", Value::Real(DegreesOf(site.observer.latitudeRad), 8));
    report.Add("longitudeDeg", Value::Real(DegreesOf(site.observer.longitudeRad), 8));
    report.Add("heightM", Value::Real(site.observer.heightM, 3));
    report.Add("date", Value::Text(DateOf(period.JstText(0))));
    report.Add("from", Value::Text(period.JstText(0)));
    report.Add("to", Value::Text(period.JstText(plan.Division())));
    report.Add("intervalMinutes", Value::Integer(period.Interval().count()));
    report.Add("maskDeg", Value::Integer(request.settings.elMaskDeg));
    report.Add("hasCurtain", Value::YesNo(HasObstruction(plan.Calc().GetCurtain())));
    if (plan.UsesAlmanac()) {
        Report& almanac = report.AddSection("almanac");
        AddAlmanacSummary(almanac, plan.Calc(), period.Start());
    }
    if (!plan.IsGpsAlone()) {
        AddSystems(report, plan);
    }
    report.Add("kind", Value::Text(std::string(KindOf(graph))));
    report.AddTable(Samples(plan, graph));
    if (const std::optional<PlanWindow> best = BestWindow(plan, request.settings.limits)) {
        Report& window = report.AddSection("bestWindow");
        std::vector<Report::Cell> cells = WindowRow(plan, site, *best);
        for (std::size_t at = 2; at < cells.size(); ++at) { // site and date stand above
            window.Add(cells[at].key, std::move(cells[at].value));
        }
    } else {
        report.Add("bestWindow", Value::Unknown());
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
                     std::to_string(period.Interval().count()),
                     std::to_string(request.settings.elMaskDeg),
                     Worded(hasCurtain ? text::kSayWithCurtain : text::kSayNoCurtain)});
    words +=
        plan.IsGpsAlone()
            ? Worded(text::kSayPlanAlmanac,
                     {DateValue(almanac.time, false).Words(),
                      Worded(almanac.ageDays < 0.0 ? text::kSayDaysAfter : text::kSayDaysBefore,
                             {Value::Real(std::abs(almanac.ageDays), 1).Words()}),
                      std::to_string(almanac.satellites), std::to_string(almanac.healthy),
                      SourceValue(almanac.source).Words() +
                          (almanac.source.name.empty() ? "" : " " + ToUtf8(almanac.source.name))})
            : SystemWords(plan);
    words += graph && IsTracks(*graph) ? TrackWords(plan) : ChartWords(plan, graph);
    return words + "\n" + BestWords(plan, request.settings.limits) + "\n";
}

std::string LimitWords(const WindowLimits& limits)
{
    return Worded(text::kSayWindowLimits,
                  {std::to_string(limits.minSatellites), Value::Real(limits.maxPdop, 1).Words(),
                   std::to_string(limits.minLength.count())});
}

std::vector<Report::Cell> WindowRow(const ObservationPlan& plan, const NamedSite& site,
                                    const PlanWindow& window)
{
    const PlanPeriod& period = plan.Computed();
    const auto minutes = (window.last - window.first) * period.Interval().count();
    return {{"site", text::kHeadSite, Value::Text(std::wstring_view(site.name))},
            {"date", text::kHeadDate, Value::Text(DateOf(period.JstText(window.first)))},
            {"from", text::kHeadFromJst, JstValue(period, window.first)},
            {"to", text::kHeadToJst, JstValue(period, window.last)},
            {"hours", text::kHeadHours, Value::Real(static_cast<double>(minutes) / 60.0, 1)},
            {"minutes", text::kHeadMinutes, Value::Integer(minutes)},
            {"fewestSatellites", text::kHeadSatellites, Value::Integer(window.fewestSatellites)},
            {"highestPdop", "PDOP", Value::Real(window.highestPdop, kDopDecimals)}};
}

} // namespace fieldcore::cli
