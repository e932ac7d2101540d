#include "cli/PlanRequest.h"

#include "cli/Options.h"

#include "core/orbits/NavigationFile.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "core/planning/Geodesy.h"
#include "core/planning/PackedDegrees.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SampleSites.h"
#include "core/planning/SitesCsv.h"
#include "core/platform/Degrees.h"
#include "core/platform/Folders.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <utility>

namespace fieldcore::cli {

namespace {

std::optional<Failure> UsePlace(const std::string& text, NamedSite& site)
{
    std::vector<double> numbers;
    std::istringstream parts(text + ',');
    for (std::string part; std::getline(parts, part, ',');) {
        numbers.push_back(ParseReal(part).value_or(NAN)); // which is no place
    }
    const bool hasPlace = numbers.size() == 2 || numbers.size() == 3;
    numbers.resize(3); // without a height it is 0
    const GeodeticPosition place{RadiansOf(numbers[0]), RadiansOf(numbers[1]), numbers[2]};
    if (!hasPlace || !IsPlace(place)) {
        return UsageFailure({text::kSayNotAPlace, {text}}, text::kSayNotAPlaceHint);
    }
    site = {FromUtf8(text), {place.latitudeRad, place.longitudeRad, place.heightM}};
    return std::nullopt;
}

std::optional<Failure> CheckEntry(const std::filesystem::path& folder, const std::wstring& name)
{
    const SiteEntry entry = ReadSite(folder, name);
    if (!entry.IsComplete()) {
        const char* const missing = !entry.latitudeRad    ? "LAT"
                                    : !entry.longitudeRad ? "LON"
                                                          : "HGT";
        return FileFailure(
            {text::kSaySiteLacks, {ToUtf8(name), missing, SitesPath(folder).string()}},
            text::kSaySiteLacksHint);
    }
    if (!IsPlace({*entry.latitudeRad, *entry.longitudeRad, *entry.heightM})) {
        return FileFailure({text::kSaySiteNowhere, {ToUtf8(name), SitesPath(folder).string()}},
                           text::kSaySiteNowhereHint);
    }
    return std::nullopt;
}

/// The site of that name, or the only one whose name has it as a part.
std::optional<Failure> UseSite(const std::string& name, const std::vector<NamedSite>& known,
                               const std::filesystem::path& folder, NamedSite& site)
{
    const std::wstring wanted = FromUtf8(name);
    std::vector<const NamedSite*> found;
    for (const NamedSite& candidate : known) {
        if (candidate.name == wanted) {
            found = {&candidate};
            break;
        }
        if (!wanted.empty() && candidate.name.find(wanted) != std::wstring::npos) {
            found.push_back(&candidate);
        }
    }
    if (found.empty()) {
        return UsageFailure({text::kSayNoSite, {name}}, text::kSaySitesHint);
    }
    if (found.size() > 1) {
        std::vector<std::string> names;
        names.reserve(found.size());
        for (const NamedSite* candidate : found) {
            names.push_back(ToUtf8(candidate->name));
        }
        return UsageFailure({text::kSaySeveralSites, {name, Joined(names)}}, text::kSaySitesHint);
    }
    site = *found.front();
    return site.isSample ? std::nullopt : CheckEntry(folder, site.name);
}

/// Fits the period into the day.
/// @param settings  in which it is put
void ResolvePeriod(const PlanOptions& options, bool wholeDay, PlanSettings& settings)
{
    constexpr int kDayH = 24;
    if (wholeDay && !options.from && !options.hours) {
        settings.startHour = 0;
        settings.hours = kDayH;
        return;
    }
    settings.hours = options.hours.value_or(settings.hours);
    // Where no start is asked for, the usual one counts unless the day is too short for it.
    settings.startHour =
        options.from.value_or(std::min(settings.startHour, kDayH - settings.hours));
}

} // namespace

void PlanOptions::AddTo(CLI::App& command)
{
    command.option_defaults()->group(kPlanGroup);
    AddText(command, "--site", sites, "NAME", text::kOptSite);
    AddText(command, "--at", places, "LAT,LON[,HEIGHT]", text::kOptAt);
    AddText(command, "--sites", siteList, "FILE", text::kOptSites);
    AddText(command, "--date", date, "DATE", text::kOptDate);
    AddNumber(command, "--days", days, {1.0, 366.0, "", "1"}, "N", text::kOptDays);
    AddNumber(command, "--from", from, {0.0, 23.0, "h"}, "HOUR", text::kOptFrom);
    AddNumber(command, "--hours", hours, {1.0, 24.0, "h"}, "N", text::kOptHowLong);
    AddNumber(command, "--mask", maskDeg, {0.0, 90.0, "deg"}, "DEG", text::kOptMask);
    AddText(command, "--almanac", almanac, "FILE", text::kOptAlmanac);
    CLI::Option* const file = AddText(command, "--curtain", curtain, "FILE", text::kOptCurtain);
    AddFlag(command, "--no-curtain", noCurtain, text::kOptNoCurtain)->excludes(file);
    AddText(command, "--systems", systems, "LETTERS", text::kOptSystems);
    AddFlag(command, "--clock-per-system", clockPerSystem, text::kOptClockPerSystem);
}

std::vector<NamedSite> KnownSites(const std::filesystem::path& folder)
{
    std::vector<NamedSite> sites;
    constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
    for (auto& [name, entry] : ReadSites(folder)) {
        sites.push_back(
            {std::move(name),
             {entry.latitudeRad.value_or(kUnknown), entry.longitudeRad.value_or(kUnknown),
              entry.heightM.value_or(kUnknown)}});
    }
    const std::size_t own = sites.size();
    for (const SampleSite& sample : SampleSites()) {
        const auto end = sites.begin() + static_cast<std::ptrdiff_t>(own);
        const bool replaced = std::any_of(
            sites.begin(), end, [&](const NamedSite& site) { return site.name == sample.name; });
        if (!replaced) {
            sites.push_back({sample.name,
                             {ParsePackedDegrees(sample.latitude),
                              ParsePackedDegrees(sample.longitude), sample.heightM},
                             true});
        }
    }
    return sites;
}

std::optional<Failure> Resolve(const PlanOptions& options, const World& world,
                               const PlanSettings& settings, bool wholeDay, PlanRequest& request)
{
    request.folder = world.GetFolders().Program();
    request.settings = settings;
    request.settings.elMaskDeg = options.maskDeg.value_or(settings.elMaskDeg);
    std::vector<std::string> names = options.sites;
    if (names.empty() && options.places.empty() && options.siteList.empty()) {
        names.push_back(ToUtf8(settings.position));
    }
    const std::optional<SystemSet> systems = ParseSystems(options.systems);
    if (!systems) {
        return UsageFailure({text::kSayNoSystems, {options.systems}}, text::kSaySystemLetters);
    }
    request.systems = *systems;
    const std::vector<NamedSite> known = KnownSites(request.folder);
    for (const std::string& name : names) {
        NamedSite& site = request.sites.emplace_back();
        if (auto failure = UseSite(name, known, request.folder, site)) {
            return failure;
        }
    }
    for (const std::string& place : options.places) {
        if (auto failure = UsePlace(place, request.sites.emplace_back())) {
            return failure;
        }
    }
    if (!options.siteList.empty()) {
        SitesCsv list = LoadSitesCsv(options.siteList);
        if (list.error) {
            return TextFailure(options.siteList, *list.error, text::kSaySiteListHint);
        }
        for (ListedSite& site : list.sites) {
            request.sites.push_back({std::move(site.name), site.observer});
        }
    }
    ResolvePeriod(options, wholeDay, request.settings);
    std::chrono::sys_days first;
    std::optional<Failure> failure = ReadDate(options.date, options.days, world, first);
    for (int day = 0; !failure && day < options.days; ++day) {
        request.dates.emplace_back(first + std::chrono::days(day));
    }
    return failure;
}

std::optional<Failure> LoadSky(const PlanOptions& options, const PlanRequest& request,
                               ObservationPlan& plan)
{
    const std::filesystem::path almanac =
        options.almanac.empty() ? AlmanacPath(request.folder) : options.almanac;
    if (!plan.Calc().LoadAlmanac(almanac)) {
        return FileFailure({text::kSayNoAlmanac, {almanac.string()}}, text::kSayWaysToAlmanac);
    }
    if (!options.curtain.empty()) {
        const CurtainText text = LoadCurtainText(options.curtain);
        if (text.error) {
            return TextFailure(options.curtain, *text.error, text::kSayCurtainHint);
        }
        plan.Calc().SetCurtain(text.curtain);
    } else if (!options.noCurtain) {
        plan.Calc().SetCurtain(LoadCurtain(request.folder));
    }
    ApplySettings(request.settings, plan);
    plan.SetSystems(request.systems, options.clockPerSystem);
    if (!plan.IsGpsAlone()) {
        KeptNavigation kept = LoadConstellations(request.folder);
        if (kept.error) {
            return FileFailure({text::kSayMessagesDamaged, {Translated(kept.error->message)}});
        }
        plan.SetConstellations(std::move(kept.constellations));
    }
    return std::nullopt;
}

} // namespace fieldcore::cli
