#include "cli/Command.h"
#include "cli/Navigation.h"
#include "cli/Options.h"
#include "cli/PlanReport.h"
#include "cli/PlanRequest.h"
#include "cli/Wording.h"

#include "core/planning/AlmanacState.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/Degrees.h"
#include "core/planning/PlanCsv.h"
#include "core/planning/PlanSettings.h"
#include "core/planning/PlanWindows.h"
#include "core/platform/Folders.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "core/settings/HostReg.h"
#include "core/settings/SettingsRoots.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <ostream>

namespace fieldcore::cli {

namespace {

struct Options
{
    PlanOptions plan;
    std::string kind; ///< empty: the overview
    bool csv = false;
    // Of a good window; what is not given is what the settings have.
    std::optional<int> minSatellites;
    std::optional<double> maxPdop;
    std::string minLength;
};

const std::map<std::string, PlanGraph>& Kinds()
{
    static const std::map<std::string, PlanGraph> kinds{
        {"count", PlanGraph::Count}, {"pdop", PlanGraph::Pdop},      {"gdop", PlanGraph::Gdop},
        {"tdop", PlanGraph::Tdop},   {"tracks", PlanGraph::SkyPlot},
    };
    return kinds;
}

std::optional<PlanGraph> GraphOf(const std::string& kind)
{
    const auto found = Kinds().find(kind);
    return found == Kinds().end() ? std::nullopt : std::optional(found->second);
}

void WarnOfAge(Output& output, const ObservationPlan& plan)
{
    const AlmanacState state = StateOfAlmanac(plan);
    if (!state.isOld) {
        return;
    }
    output.Message("warning", ToUtf8(Text(text::kAlmanacOldCaption)),
                   ToUtf8(Text(text::kAlmanacOld)), Colour::Yellow);
    output.Note(Worded(text::kSayAlmanacAge, {Value::Real(state.ageDays, 1).Words()}));
}

void WarnOfSource(Output& output, const ObservationPlan& plan)
{
    const AlmanacSource& source = plan.Calc().Source();
    if (source.origin == AlmanacOrigin::Nominal) {
        output.Message("warning", "", Worded(text::kSayMadeUpAlmanac, {ToUtf8(SourceText(source))}),
                       Colour::Yellow);
    }
}

/// Makes each of the plans that @p options ask for and hands it on.
/// @param wholeDay  the period if none is given
/// @return what is wrong with the options or the files
std::optional<Failure>
ForEachPlan(const Context& context, const PlanOptions& options, bool wholeDay, PlanRequest& request,
            const std::function<void(const ObservationPlan&, const NamedSite&)>& use)
{
    SettingsRoots roots{Folders(context.world.folders)};
    const PlanSettings settings = LoadPlanSettings(HostReg(roots));
    if (std::optional<Failure> failure =
            Resolve(options, context.world, settings, wholeDay, request)) {
        return failure;
    }
    if (options.almanac.empty() &&
        AlmanacStore(request.folder).PutNominal(context.world.clock->Utc())) {
        context.output.Message("warning", "", Worded(text::kSayAlmanacPut), Colour::Yellow);
        context.output.Note(Worded(text::kSayGetAlmanac));
    }
    ObservationPlan plan;
    if (std::optional<Failure> failure = LoadSky(options, request, plan)) {
        return failure;
    }
    if (plan.UsesAlmanac()) {
        WarnOfSource(context.output, plan);
    }
    bool warned = false;
    for (const NamedSite& site : request.sites) {
        plan.Calc().SetObserver(site.observer);
        for (const std::chrono::year_month_day date : request.dates) {
            if (context.world.StopRequested() || !*context.world.out) {
                return RequestFailure(CommandFault::Cancelled, "");
            }
            plan.Period() = {date, request.startHour, request.hours};
            if (!warned && !plan.IsGpsAlone()) {
                WarnOfSystems(context.output, plan);
                warned = true;
            } else if (!warned && StateOfAlmanac(plan).isOld) {
                WarnOfAge(context.output, plan);
                warned = true;
            }
            plan.Compute();
            use(plan, site);
        }
    }
    return std::nullopt;
}

ExitCode Plan(const Context& context, const Options& options)
{
    if (options.csv && context.output.IsJson()) {
        return context.output.Failed(UsageFailure("--csv and --json are two different outputs."));
    }
    const std::optional<PlanGraph> graph = GraphOf(options.kind);
    const PlanGraph csvGraph = graph.value_or(PlanGraph::Count);
    PlanRequest request;
    Report report;
    const bool isGpsAlone = ParseSystems(options.plan.systems) == SystemSetOf(GnssSystem::Gps);
    std::string words = options.csv ? PlanCsvHeader(csvGraph, isGpsAlone) : "";
    const std::optional<Failure> failure =
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

ExitCode Best(const Context& context, const Options& options)
{
    Report::Table table{"windows", "", WindowColumns(), {}};
    PlanRequest request;
    WindowLimits limits;
    const std::optional<Failure> failure =
        ForEachPlan(context, options.plan, true, request,
                    [&](const ObservationPlan& plan, const NamedSite& site) {
                        limits = LimitsOf(options, request.settings);
                        for (const PlanWindow& window : FindWindows(plan, limits)) {
                            table.rows.push_back(WindowRow(plan, site, window));
                        }
                    });
    if (failure) {
        return context.output.Failed(*failure);
    }
    const bool isNone = table.rows.empty();
    Report report;
    report.AddTable(std::move(table));
    if (!isNone) {
        return context.output.Done(report);
    }
    return context.output.Failed(
        {ExitCode::Failed, "no-window",
         "There is no such window: no time with " + LimitWords(limits) + ".",
         "fewer satellites (--min-sv), a higher PDOP (--max-pdop), less "
         "time (--min-length), another day (--date, --days)"},
        context.output.IsJson() ? &report : nullptr);
}

ExitCode Sites(const Context& context)
{
    Report::Table table{"sites",
                        "",
                        {{"name", Worded(text::kHeadSite)},
                         {"latitudeDeg", Worded(text::kHeadLatitude)},
                         {"longitudeDeg", Worded(text::kHeadLongitude)},
                         {"heightM", Worded(text::kHeadHeight)},
                         {"source", Worded(text::kHeadFrom)}},
                        {}};
    for (const NamedSite& site : KnownSites(Folders(context.world.folders).Program())) {
        table.rows.push_back({Value::Text(std::wstring_view(site.name)),
                              Value::Real(DegreesOf(site.observer.latitudeRad), 5, "deg"),
                              Value::Real(DegreesOf(site.observer.longitudeRad), 5, "deg"),
                              Value::Real(site.observer.heightM, 1, "m"),
                              site.isSample
                                  ? Value::Word("sample", Worded(text::kWordComesWithTheProgram))
                                  : Value::Word("file", Worded(text::kWordYourSiteFile))});
    }
    Report report;
    report.AddTable(std::move(table));
    return context.output.Done(report);
}

void AddBestOptions(CLI::App& best, Options& options)
{
    best.fallthrough(); // site, days and so on are those of plan
    AddNumber(best, "--min-sv", options.minSatellites,
              {WindowLimits::kFewestSatellites, WindowLimits::kMostSatellites, "",
               "as the plan's page: 5"},
              "N", "Satellites at least");
    AddNumber(best, "--max-pdop", options.maxPdop,
              {WindowLimits::kLowestPdop, WindowLimits::kHighestPdop, "", "the same: 4"}, "X",
              "PDOP at most");
    AddText(best, "--min-length", options.minLength, "TIME",
            "Length at least: 60m, 2h, up to a day (the same: 30m)")
        ->check(CLI::Validator(
            [](const std::string& text) { return ParseLength(text) ? "" : "no length"; }, ""));
}

} // namespace

Command AddPlanCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    std::vector<std::string> kinds;
    for (const auto& kind : Kinds()) {
        kinds.push_back(kind.first);
    }
    return AddCommands(
        program,
        {"plan", "When to observe: satellites and dilution over the hours of a day",
         "  fieldcore-cli plan                                      the usual site, today\n"
         "  fieldcore-cli plan --site 札幌 --date 2026-11-21 --from 9 --hours 8\n"
         "  fieldcore-cli plan --at 35.69,139.75,60 --kind tracks   when each satellite is up\n"
         "  fieldcore-cli plan --kind pdop --csv > pdop.csv         for a spreadsheet\n"
         "  fieldcore-cli plan --systems GREJ                       with other systems\n"
         "  fieldcore-cli plan best --min-sv 7 --max-pdop 2.5       the good hours\n"
         "  fieldcore-cli plan sites                                the sites it knows\n",
         [=](CLI::App& parser) {
             options->plan.AddTo(parser);
             AddWord(parser, "--kind", options->kind, kinds, "KIND",
                     "One graph: count, pdop, gdop, tdop or tracks");
             parser.add_flag("--csv", options->csv,
                             "Comma-separated values, by default of the count");
             parser.option_defaults()->group("Options");
         },
         [options](const Context& context) { return Plan(context, *options); }},
        {{"best", "The windows of a day in which the sky is good; takes plan's options, too",
          "  fieldcore-cli plan best --min-sv 7 --max-pdop 2.5 --min-length 60m\n"
          "  fieldcore-cli plan best --site 大阪 --date tomorrow --days 3\n"
          "  fieldcore-cli plan best --from 20 --hours 9     through the night\n",
          [options](CLI::App& parser) { AddBestOptions(parser, *options); },
          [options](const Context& context) { return Best(context, *options); }},
         {"sites",
          "The sites that plan knows by name",
          "  fieldcore-cli plan sites          names and coordinates\n"
          "  fieldcore-cli plan sites --json   for a script\n",
          {},
          Sites}});
}

} // namespace fieldcore::cli
