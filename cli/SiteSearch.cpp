#include "cli/SiteSearch.h"

#include "cli/Wording.h"

#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "core/planning/PlanCsv.h"
#include "core/planning/SiteSkies.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>
#include <variant>
#include <vector>

namespace fieldcore::cli {

namespace {

constexpr int kDopDecimals = 2;
constexpr std::size_t kMostNames = 10; // in a warning
constexpr const char* kTogether = "*"; // for programs

/// The sites with what hides their skies: their own curtain, else the one that was asked for, else
/// nothing.
std::optional<Failure> ReadSkies(const Context& context, const PlanOptions& options,
                                 const PlanRequest& request, const ObservationPlan& plan,
                                 std::vector<SearchSite>& sites)
{
    std::vector<std::string> without;
    std::filesystem::path wanted;
    for (const NamedSite& site : request.sites) {
        ObstructionCurtain curtain{};
        const auto file = SiteCurtainPath(request.folder, site.name);
        std::error_code error;
        if (options.noCurtain) {
            // an open sky
        } else if (file && std::filesystem::exists(*file, error)) {
            const CurtainText text = LoadCurtainText(*file);
            if (text.error) {
                return TextFailure(*file, *text.error, text::kSayCurtainHint);
            }
            curtain = text.curtain;
        } else if (!options.curtain.empty()) {
            curtain = plan.Calc().GetCurtain();
        } else {
            without.push_back(ToUtf8(site.name));
            wanted = wanted.empty() && file ? *file : wanted;
        }
        sites.push_back({site.name, site.observer, SkyLimits(plan.Calc().GetElMask(), curtain),
                         HasObstruction(curtain)});
    }
    if (!without.empty()) {
        context.output.Warn({text::kSayNoSiteCurtain, {Joined(without, kMostNames)}});
        context.output.Note({text::kSaySiteCurtainHint, {wanted.string()}});
    }
    return std::nullopt;
}

Value SiteValue(const PlanSearch& search, std::size_t site)
{
    return site == search.Together() ? Term(kTogether, text::kSayAllSites)
                                     : Value::Text(std::wstring_view(search.Sites()[site].name));
}

Value TimeValue(const PlanSearch& search, int epoch)
{
    return Value::Word(JstText(search.UtcAt(epoch)), ClockText(search, epoch));
}

Value DateValue(const PlanSearch& search, int epoch)
{
    constexpr std::size_t kDateLength = 10;
    return Value::Text(JstText(search.UtcAt(epoch)).substr(0, kDateLength));
}

} // namespace

std::optional<Failure> RunSearch(const Context& context, const PlanOptions& options,
                                 const PlanRequest& request, const ObservationPlan& plan,
                                 std::optional<PlanSearch>& search)
{
    if (request.dates.size() > SearchHours::kMostDays) {
        return UsageFailure({text::kSayMostDays, {std::to_string(SearchHours::kMostDays)}});
    }
    if (request.sites.size() > PlanSearch::kMostSites) {
        return UsageFailure({text::kSayMostSites, {std::to_string(PlanSearch::kMostSites)}});
    }
    if (plan.HasClockPerSystem()) {
        return UsageFailure(text::kSayOneClock);
    }
    std::vector<SearchSite> sites;
    if (auto failure = ReadSkies(context, options, request, plan, sites)) {
        return failure;
    }
    const SearchHours hours{request.dates.front(), static_cast<int>(request.dates.size()),
                            request.settings.startHour, request.settings.hours};
    search.emplace(SearchOf(plan, std::move(sites), hours));
    while (search->Step()) {
        if (context.world.StopRequested() || !*context.world.out) {
            context.output.Progress("");
            return RequestFailure(CommandFault::Cancelled, "");
        }
        context.output.Progress(
            {text::kSaySearching,
             {std::to_string(search->StepsDone()), std::to_string(search->Steps())}});
    }
    context.output.Progress("");
    return std::nullopt;
}

Report::Table BestTable(const PlanSearch& search, const WindowLimits& limits, int days)
{
    Report::Table table{"windows"};
    for (std::size_t site = 0; site <= search.Together(); ++site) {
        int left = days;
        for (const auto& [window, goodFirst, goodLast] : search.BestOfDays(site, limits)) {
            if (left-- == 0) {
                break;
            }
            table.rows.push_back(
                {{"site", text::kHeadSite, SiteValue(search, site)},
                 {"date", text::kHeadDate, DateValue(search, window.first)},
                 {"from", text::kHeadFromJst, TimeValue(search, window.first)},
                 {"to", text::kHeadToJst, TimeValue(search, window.last)},
                 {"fewestSatellites", text::kHeadSatellites,
                  Value::Integer(window.fewestSatellites)},
                 {"highestPdop", "PDOP", Value::Real(window.highestPdop, kDopDecimals)},
                 {"goodFrom", text::kHeadGoodFrom, TimeValue(search, goodFirst)},
                 {"goodTo", text::kHeadGoodTo, TimeValue(search, goodLast)}});
        }
    }
    return table;
}

void WarnOfSitesWithout(Output& output, const PlanSearch& search, const Report::Table& table)
{
    std::vector<std::string> without;
    for (std::size_t site = 0; site <= search.Together(); ++site) {
        const std::string name = SiteValue(search, site).Words();
        if (std::none_of(table.rows.begin(), table.rows.end(),
                         [&](const auto& row) { return row.front().value.Words() == name; })) {
            without.push_back(name);
        }
    }
    if (!without.empty()) {
        output.Warn({text::kSayNoWindowAt, {Joined(without, kMostNames)}});
    }
}

Report::Table SessionTable(const PlanSearch& search, const WindowLimits& limits)
{
    Report::Table table{"sites"};
    for (std::size_t site = 0; site <= search.Together(); ++site) {
        const auto counts = search.Counts(site);
        const auto pdops = search.Pdops(site);
        int good = 0;
        for (const PlanWindow& window : FindWindows(counts, pdops, search.Interval(), limits)) {
            good += window.last - window.first;
        }
        const int fewest = *std::min_element(counts.begin(), counts.end());
        const double highest = *std::max_element(pdops.begin(), pdops.end());
        table.rows.push_back(
            {{"site", text::kHeadSite, SiteValue(search, site)},
             {"hasCurtain", text::kHeadCurtain,
              site == search.Together() ? Value::Unknown()
                                        : Value::YesNo(search.Sites()[site].hasCurtain)},
             {"fewestSatellites", text::kHeadFewest, Value::Integer(fewest)},
             {"highestPdop", text::kHeadHighestPdop,
              Value::Real(fewest < kSatellitesForDop ? NAN : highest, kDopDecimals)},
             {"goodHours", text::kHeadGoodHours,
              Value::Real(static_cast<double>(good * search.Interval().count()) / 60.0, 1)}});
    }
    return table;
}

Report::Table SessionSamples(const PlanSearch& search)
{
    Report::Table table{"samples"};
    const auto counts = search.Counts(search.Together());
    const auto pdops = search.Pdops(search.Together());
    for (int k = 0; k < search.EpochCount(); ++k) {
        const auto at = static_cast<std::size_t>(k);
        table.rows.push_back(
            {{"time", "JST", TimeValue(search, k)},
             {"satellites", text::kHeadSatellites, Value::Integer(counts[at])},
             {"pdop", "PDOP",
              Value::Real(counts[at] < kSatellitesForDop ? NAN : pdops[at], kDopDecimals)}});
    }
    return table;
}

std::string TableCsv(const Report::Table& table, const std::string& almanac)
{
    constexpr const char* kLineEnd = "\r\n";
    std::string text;
    for (const Report::Cell& cell : table.rows.front()) {
        text += std::string(cell.key) + ",";
    }
    text += std::string("almanac") + kLineEnd;
    for (const std::vector<Report::Cell>& row : table.rows) {
        for (const auto& [key, head, value] : row) {
            const auto* const code = std::get_if<std::string>(&value.GetData());
            const auto* const yes = std::get_if<bool>(&value.GetData());
            text += value.IsUnknown() ? ""
                    : code != nullptr ? CsvField(*code)
                    : yes != nullptr  ? (*yes ? "1" : "0")
                                      : value.Words();
            text += ",";
        }
        text += CsvField(almanac) + kLineEnd;
    }
    return text;
}

} // namespace fieldcore::cli
