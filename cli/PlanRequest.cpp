#include "cli/PlanRequest.h"

#include "cli/DayText.h"
#include "cli/Options.h"
#include "cli/Wording.h"

#include "core/orbits/NavigationFile.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "core/planning/Degrees.h"
#include "core/planning/Geodesy.h"
#include "core/planning/PackedDegrees.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SampleSites.h"
#include "core/planning/SitesCsv.h"
#include "core/platform/Folders.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <utility>

namespace fieldcore::cli {

namespace {

std::optional<Failure> UsePlace(const std::string& text, NamedSite& site)
{
    double numbers[3] = {0.0, 0.0, 0.0};
    std::size_t count = 0;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (count < std::size(numbers)) {
        const std::from_chars_result read = std::from_chars(at, end, numbers[count]);
        if (read.ec != std::errc()) {
            count = 0;
            break;
        }
        ++count;
        at = read.ptr;
        if (at == end || *at != ',') {
            break;
        }
        ++at;
    }
    const GeodeticPosition place{RadiansOf(numbers[0]), RadiansOf(numbers[1]), numbers[2]};
    if (count < 2 || at != end || !IsPlace(place)) {
        return UsageFailure("--at " + text + " is no place.",
                            "Latitude, longitude and, if you like, height: --at 35.69,139.75,60 "
                            "(degrees, north and east positive; metres above the ellipsoid)");
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
        return FileFailure("The site " + ToUtf8(name) + " has no " + missing + " in " +
                               SitesPath(folder).string() + ".",
                           "Add the line, or give the place: --at LAT,LON,HEIGHT");
    }
    if (!IsPlace({*entry.latitudeRad, *entry.longitudeRad, *entry.heightM})) {
        return FileFailure("The coordinates of the site " + ToUtf8(name) + " in " +
                               SitesPath(folder).string() + " are no place on Earth.",
                           "LAT and LON are written DD.MMSSsss, HGT in metres.");
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
        return UsageFailure(Worded(text::kSayNoSite, {name}), Worded(text::kSaySitesHint));
    }
    if (found.size() > 1) {
        std::string names;
        for (const NamedSite* candidate : found) {
            names += names.empty() ? "" : ", ";
            names += ToUtf8(candidate->name);
        }
        return UsageFailure(Worded(text::kSaySeveralSites, {name, names}),
                            Worded(text::kSaySitesHint));
    }
    site = *found.front();
    return site.isSample ? std::nullopt : CheckEntry(folder, site.name);
}

std::optional<Failure> UseList(const std::filesystem::path& file, PlanRequest& request)
{
    if (file.empty()) {
        return std::nullopt;
    }
    SitesCsv list = LoadSitesCsv(file);
    if (list.error) {
        return TextFailure(file, *list.error,
                           "A line is name,latitude,longitude,height: 本社,35.69,139.75,60");
    }
    for (ListedSite& site : list.sites) {
        request.sites.push_back({std::move(site.name), site.observer});
    }
    return std::nullopt;
}

/// @return nothing if @p text is no date
std::optional<std::chrono::sys_days> ParseDate(const std::string& text, const World& world)
{
    const std::chrono::sys_days today = JapanDay(world.clock->Utc());
    if (text == "today") {
        return today;
    }
    if (text == "tomorrow") {
        return today + std::chrono::days(1);
    }
    return ParseDay(text);
}

std::optional<Failure> ResolveDates(const PlanOptions& options, const World& world,
                                    PlanRequest& request)
{
    using namespace std::chrono_literals;
    constexpr std::chrono::sys_days kFirst = 1980y / std::chrono::January / 7;
    constexpr std::chrono::sys_days kLast = 2099y / std::chrono::December / 31; // of a date
    const std::optional<std::chrono::sys_days> first = ParseDate(options.date, world);
    if (!first) {
        return UsageFailure(Worded(text::kSayNoDate, {options.date}),
                            "Write it as --date 2026-11-21, or today, or tomorrow.");
    }
    const std::chrono::sys_days last = *first + std::chrono::days(options.days - 1);
    if (*first < kFirst || last > kLast) {
        return UsageFailure("Plans are made for 1980-01-07 to 2099-12-31.");
    }
    for (std::chrono::sys_days day = *first; day <= last; day += std::chrono::days(1)) {
        request.dates.emplace_back(day);
    }
    return std::nullopt;
}

void ResolvePeriod(const PlanOptions& options, const PlanSettings& settings, bool wholeDay,
                   PlanRequest& request)
{
    constexpr int kDayH = 24;
    const bool anyGiven = options.from || options.hours;
    if (wholeDay && !anyGiven) {
        request.startHour = 0;
        request.hours = kDayH;
        return;
    }
    request.hours = options.hours.value_or(settings.hours);
    // Where no start is asked for, the usual one counts unless the day is too short for it.
    request.startHour = options.from.value_or(std::min(settings.startHour, kDayH - request.hours));
}

} // namespace

void PlanOptions::AddTo(CLI::App& command)
{
    command.option_defaults()->group("Plan");
    AddText(command, "--site", sites, "NAME",
            "A site by its name, or a part of it; several may follow");
    AddText(command, "--at", places, "LAT,LON[,HEIGHT]",
            "A place in degrees and metres, e.g. 35.69,139.75,60");
    AddText(command, "--sites", siteList, "FILE",
            "The sites of a list: name, latitude, longitude and height, comma-separated");
    AddText(command, "--date", date, "DATE", "2026-11-21, today or tomorrow (today in Japan)");
    AddNumber(command, "--days", days, {1.0, 366.0, "", "1"}, "N", "So many days from the date on");
    AddNumber(command, "--from", from, {0.0, 23.0, "h"}, "HOUR", "First hour, Japan time");
    AddNumber(command, "--hours", hours, {1.0, 24.0, "h"}, "N", "How long");
    AddNumber(command, "--mask", maskDeg, {0.0, 90.0, "deg"}, "DEG", "Elevation mask");
    AddText(command, "--almanac", almanac, "FILE", "Another almanac than the one in use");
    CLI::Option* const file = AddText(command, "--curtain", curtain, "FILE",
                                      "Another obstruction curtain: a text, or a CurTain.obs");
    command.add_flag("--no-curtain", noCurtain, "An open sky")->excludes(file);
    AddText(command, "--systems", systems, "LETTERS",
            "Systems that count together: G R E C J S (G)");
    command.add_flag("--clock-per-system", clockPerSystem,
                     "Dilutions with a receiver clock for each system");
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
    request.folder = Folders(world.folders).Program();
    request.almanac = options.almanac.empty() ? AlmanacPath(request.folder) : options.almanac;
    request.maskDeg = options.maskDeg.value_or(settings.elMaskDeg);
    std::vector<std::string> names = options.sites;
    if (names.empty() && options.places.empty() && options.siteList.empty()) {
        names.push_back(ToUtf8(settings.position));
    }
    const std::optional<SystemSet> systems = ParseSystems(options.systems);
    if (!systems) {
        return UsageFailure(Worded(text::kSayNoSystems, {options.systems}),
                            Worded(text::kSaySystemLetters));
    }
    request.systems = *systems;
    const std::vector<NamedSite> known = KnownSites(request.folder);
    for (const std::string& name : names) {
        NamedSite& site = request.sites.emplace_back();
        if (std::optional<Failure> failure = UseSite(name, known, request.folder, site)) {
            return failure;
        }
    }
    for (const std::string& place : options.places) {
        if (std::optional<Failure> failure = UsePlace(place, request.sites.emplace_back())) {
            return failure;
        }
    }
    if (std::optional<Failure> failure = UseList(options.siteList, request)) {
        return failure;
    }
    if (std::optional<Failure> failure = ResolveDates(options, world, request)) {
        return failure;
    }
    ResolvePeriod(options, settings, wholeDay, request);
    request.settings = settings;
    request.settings.elMaskDeg = request.maskDeg;
    request.settings.startHour = request.startHour;
    request.settings.hours = request.hours;
    return std::nullopt;
}

std::optional<Failure> LoadSky(const PlanOptions& options, const PlanRequest& request,
                               ObservationPlan& plan)
{
    if (!plan.Calc().LoadAlmanac(request.almanac)) {
        return FileFailure("There is no almanac in " + request.almanac.string() + ".",
                           "Get one from the receiver: fieldcore-cli almanac get --port PORT; from "
                           "a file: fieldcore-cli almanac import FILE; or a nominal one: "
                           "fieldcore-cli almanac sample");
    }
    if (!options.curtain.empty()) {
        const CurtainText text = LoadCurtainText(options.curtain);
        if (text.error) {
            return TextFailure(options.curtain, *text.error,
                               "A line is an azimuth and an elevation in whole degrees: 170 40");
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
            return FileFailure(Worded(text::kSayMessagesDamaged, {kept.error->message}));
        }
        plan.SetConstellations(std::move(kept.constellations));
    }
    return std::nullopt;
}

} // namespace fieldcore::cli
