#include "cli/AlmanacReport.h"
#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PlanReport.h"
#include "cli/PlanRequest.h"
#include "cli/SiteSearch.h"

#include "core/planning/AlmanacState.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/PlanCsv.h"
#include "core/planning/PlanSettings.h"
#include "core/planning/PlanWindows.h"
#include "core/platform/Degrees.h"
#include "core/platform/Folders.h"
#include "core/platform/Utf8.h"
#include "core/settings/HostReg.h"
#include "core/settings/SettingsRoots.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <functional>
#include <map>

namespace fieldcore::cli {

namespace {

struct Options
{
    PlanOptions plan;
    std::optional<PlanGraph> kind; ///< nothing: the overview
    bool csv = false;
    // Of a good window; what is not given is what the settings have.
    std::optional<int> minSatellites;
    std::optional<double> maxPdop;
    std::string minLength;
    int top = 3; ///< best days of a search
};

/// Reads what the plans that @p options ask for are made of.
/// @param wholeDay  the period if none is given
/// @return what is wrong with the options or the files
std::optional<Failure> Prepare(const Context& context, const PlanOptions& options, bool wholeDay,
                               PlanRequest& request, ObservationPlan& plan)
{
    const PlanSettings settings = LoadPlanSettings(HostReg(context.world.Roots()));
    if (auto failure = Resolve(options, context.world, settings, wholeDay, request)) {
        return failure;
    }
    const bool isPut = options.almanac.empty() &&
                       AlmanacStore(request.folder).PutNominal(context.world.GetClock().Utc());
    if (isPut) {
        context.output.Warn(text::kSayAlmanacPut);
        context.output.Note(text::kSayGetAlmanac);
    }
    if (auto failure = LoadSky(options, request, plan)) {
        return failure;
    }
    const AlmanacSource& source = plan.Calc().Source();
    // Else it has been told, or does not matter.
    if (!isPut && plan.UsesAlmanac() && source.origin == AlmanacOrigin::Nominal) {
        context.output.Warn({text::kSayMadeUpAlmanac, {ToUtf8(SourceText(source))}});
    }
    return std::nullopt;
}

/// Says what is too old for @p plan.
/// @return whether there was anything to say
bool WarnOfOld(Output& output, const ObservationPlan& plan)
{
    if (!plan.IsGpsAlone()) {
        WarnOfSystems(output, plan);
        return true;
    }
    const AlmanacState state = StateOfAlmanac(plan);
    if (state.isOld) {
        output.Message("warning", ToUtf8(Text(text::kAlmanacOldCaption)),
                       ToUtf8(Text(text::kAlmanacOld)), Colour::Yellow);
        output.Note({text::kSayAlmanacAge, {Value::Real(state.ageDays, 1).Words()}});
    }
    return state.isOld;
}

/// Makes each of the plans that @p options ask for and hands it on. As for Prepare().
std::optional<Failure>
ForEachPlan(const Context& context, const PlanOptions& options, bool wholeDay, PlanRequest& request,
            const std::function<void(const ObservationPlan&, const NamedSite&)>& use)
{
    ObservationPlan plan;
    if (auto failure = Prepare(context, options, wholeDay, request, plan)) {
        return failure;
    }
    bool warned = false;
    for (const NamedSite& site : request.sites) {
        plan.Calc().SetObserver(site.observer);
        for (const std::chrono::year_month_day date : request.dates) {
            if (context.world.StopRequested() || !*context.world.out) {
                return RequestFailure(CommandFault::Cancelled, "");
            }
            plan.Period() = {date, request.settings.startHour, request.settings.hours};
            warned = warned || WarnOfOld(context.output, plan);
            plan.Compute();
            use(plan, site);
        }
    }
    return std::nullopt;
}

Ending Plan(const Context& context, const Options& options)
{
    if (options.csv && context.output.IsJson()) {
        return UsageFailure(text::kSayCsvOrJson);
    }
    const std::optional<PlanGraph> graph = options.kind;
    const PlanGraph csvGraph = graph.value_or(PlanGraph::Count);
    PlanRequest request;
    Report report;
    const bool isGpsAlone = ParseSystems(options.plan.systems) == SystemSetOf(GnssSystem::Gps);
    std::string words = options.csv ? PlanCsvHeader(csvGraph, isGpsAlone) : "";
    const auto failure =
        ForEachPlan(context, options.plan, false, request,
                    [&](const ObservationPlan& plan, const NamedSite& site) {
                        if (options.csv) {
                            words += PlanCsvRows(plan, csvGraph, site.name);
                        } else if (context.output.IsJson()) {
                            report.AddEntry("plans", PlanReport(plan, site, request, graph));
                        } else {
                            words +=
                                (words.empty() ? "" : "\n") + PlanWords(plan, site, request, graph);
                        }
                    });
    return failure ? context.output.Failed(*failure) : context.output.Done(report, words);
}

/// "90m", "1.5h" or "90"; nothing if it is no such time, or longer than a day.
std::optional<std::chrono::minutes> ParseLength(const std::string& text)
{
    constexpr double kDayMin = 1440.0;
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const std::string_view unit(stop, static_cast<std::size_t>(end - stop));
    const double minutes = unit == "h" ? number * 60.0 : number;
    const bool isKnown = unit.empty() || unit == "m" || unit == "min" || unit == "h";
    return error == std::errc() && isKnown && minutes >= 0.0 && minutes <= kDayMin
               ? std::optional(std::chrono::minutes(std::lround(minutes)))
               : std::nullopt;
}

WindowLimits LimitsOf(const Options& options, const PlanSettings& settings)
{
    WindowLimits limits = settings.limits;
    limits.minSatellites = options.minSatellites.value_or(limits.minSatellites);
    limits.maxPdop = options.maxPdop.value_or(limits.maxPdop);
    limits.minLength = ParseLength(options.minLength).value_or(limits.minLength);
    return limits;
}

struct Searched
{
    PlanRequest request;
    ObservationPlan plan;
    std::optional<PlanSearch> search;
    WindowLimits limits;
};

/// Searches the days for all sites at once.
/// @param fewest  sites
std::optional<Failure> Search(const Context& context, const Options& options, std::size_t fewest,
                              Searched& result)
{
    if (options.csv && context.output.IsJson()) {
        return UsageFailure(text::kSayCsvOrJson);
    }
    PlanRequest& request = result.request;
    if (auto failure = Prepare(context, options.plan, true, request, result.plan)) {
        return failure;
    }
    if (request.sites.size() < fewest) {
        return UsageFailure(text::kSayNeedsSites, text::kSayNeedsSitesHint);
    }
    result.plan.Period() = {request.dates.front(), request.settings.startHour,
                            request.settings.hours};
    WarnOfOld(context.output, result.plan);
    result.limits = LimitsOf(options, request.settings);
    return RunSearch(context, options.plan, request, result.plan, result.search);
}

/// The table of good windows, or that there is none.
Ending TellWindows(const Context& context, Report::Table table, const WindowLimits& limits,
                   const std::string& csv)
{
    const bool isNone = table.rows.empty();
    const Report report(std::move(table));
    if (!isNone) {
        return csv.empty() ? context.output.Done(report) : context.output.Done(report, csv);
    }
    return context.output.Failed({ExitCode::Failed, "no-window",
                                  Worded(text::kSayNoWindow, {LimitWords(limits)}),
                                  text::kSayNoWindowHint},
                                 context.output.IsJson() ? &report : nullptr);
}

Ending BestOfSites(const Context& context, const Options& options)
{
    Searched of;
    if (const auto failure = Search(context, options, 1, of)) {
        return *failure;
    }
    Report::Table table = BestTable(*of.search, of.limits, options.top);
    if (!table.rows.empty()) {
        WarnOfSitesWithout(context.output, *of.search, table);
    }
    const std::string csv =
        options.csv && !table.rows.empty() ? TableCsv(table, CsvSource(of.plan)) : "";
    return TellWindows(context, std::move(table), of.limits, csv);
}

Ending Best(const Context& context, const Options& options)
{
    if (!options.plan.siteList.empty()) {
        return BestOfSites(context, options);
    }
    Report::Table table{"windows"};
    PlanRequest request;
    WindowLimits limits;
    const auto failure =
        ForEachPlan(context, options.plan, true, request,
                    [&](const ObservationPlan& plan, const NamedSite& site) {
                        limits = LimitsOf(options, request.settings);
                        for (const PlanWindow& window : FindWindows(plan, limits)) {
                            table.rows.push_back(WindowRow(plan, site, window));
                        }
                    });
    if (failure) {
        return *failure;
    }
    return TellWindows(context, std::move(table), limits, "");
}

Ending Session(const Context& context, const Options& options)
{
    Searched of;
    if (const auto failure = Search(context, options, 2, of)) {
        return *failure;
    }
    Report::Table samples = SessionSamples(*of.search);
    const std::string csv = options.csv ? TableCsv(samples, CsvSource(of.plan)) : "";
    Report report(SessionTable(*of.search, of.limits));
    report.AddTable(BestTable(*of.search, of.limits, options.top));
    report.AddTable(std::move(samples));
    return csv.empty() ? context.output.Done(report) : context.output.Done(report, csv);
}

Ending Sites(const Context& context, const Options& /*options*/)
{
    Report::Table table{"sites"};
    for (const NamedSite& site : KnownSites(context.world.GetFolders().Program())) {
        table.rows.push_back(
            {{"name", text::kHeadSite, Value::Text(std::wstring_view(site.name))},
             {"latitudeDeg", text::kHeadLatitude,
              Value::Real(DegreesOf(site.observer.latitudeRad), 5, "deg")},
             {"longitudeDeg", text::kHeadLongitude,
              Value::Real(DegreesOf(site.observer.longitudeRad), 5, "deg")},
             {"heightM", text::kHeadHeight, Value::Real(site.observer.heightM, 1, "m")},
             {"source", text::kHeadFrom,
              site.isSample ? Term("sample", text::kWordComesWithTheProgram)
                            : Term("file", text::kWordYourSiteFile)}});
    }
    return context.output.Done(Report(std::move(table)));
}

void AddBestOptions(CLI::App& best, Options& options)
{
    best.fallthrough(); // site, days and so on are those of plan
    AddNumber(best, "--min-sv", options.minSatellites,
              {WindowLimits::kFewestSatellites, WindowLimits::kMostSatellites, "",
               Worded(text::kSayAsPage, {"5"})},
              "N", text::kOptMinSv);
    AddNumber(best, "--max-pdop", options.maxPdop,
              {WindowLimits::kLowestPdop, WindowLimits::kHighestPdop, "",
               Worded(text::kSayAsPage, {"4"})},
              "X", text::kOptMaxPdop);
    AddText(best, "--min-length,--length", options.minLength, "TIME", text::kOptMinLength)
        ->check(CLI::Validator(
            [](const std::string& text) { return ParseLength(text) ? "" : "no length"; }, ""));
    AddNumber(best, "--top", options.top, {1.0, SearchHours::kMostDays, "", "3"}, "N",
              text::kOptTop);
}

} // namespace

Command AddPlanCommand(CLI::App& program)
{
    return AddCommand<Options>(program,
                               {"plan", text::kHelpPlan,
                                [](CLI::App& parser, Options& options) {
                                    const std::map<std::string, PlanGraph> kinds{
                                        {"count", PlanGraph::Count},
                                        {"pdop", PlanGraph::Pdop},
                                        {"gdop", PlanGraph::Gdop},
                                        {"tdop", PlanGraph::Tdop},
                                        {"tracks", PlanGraph::SkyPlot}};
                                    options.plan.AddTo(parser);
                                    AddText(parser, "--kind", options.kind, "KIND", text::kOptKind)
                                        ->transform(CLI::CheckedTransformer(kinds).description(""));
                                    AddFlag(parser, "--csv", options.csv, text::kOptCsv);
                                    parser.option_defaults()->group("Options");
                                },
                                Plan},
                               {{"best", text::kHelpPlanBest, AddBestOptions, Best},
                                {"session", text::kHelpPlanSession, AddBestOptions, Session},
                                {"sites", text::kHelpPlanSites, nullptr, Sites}});
}

} // namespace fieldcore::cli
