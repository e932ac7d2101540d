#include "core/planning/SiteSkies.h"

#include "core/orbits/SystemTime.h"
#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SkyPlan.h"
#include "core/platform/Folders.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>
#include <vector>

namespace fieldcore {

using namespace std::chrono_literals;

std::optional<SiteSky> SkyOfSite(const PlanSession& session, const std::wstring& name)
{
    const SiteEntry entry = ReadSite(session.Folder(), name);
    if (!entry.IsComplete()) {
        return std::nullopt;
    }
    SiteSky sky{name, {*entry.latitudeRad, *entry.longitudeRad, *entry.heightM}, {}, {}, {}};
    sky.origin = SiteSky::Origin::Open;
    const std::optional<std::filesystem::path> file = SiteCurtainPath(session.Folder(), name);
    std::error_code error;
    if (file && std::filesystem::exists(*file, error)) {
        const CurtainText text = LoadCurtainText(*file);
        sky.curtain = text.curtain;
        sky.error = text.error;
        sky.origin = text.error ? SiteSky::Origin::Open : SiteSky::Origin::Own;
    } else if (name == session.Settings().position) {
        sky.curtain = LoadCurtain(session.Folder());
        sky.origin = SiteSky::Origin::Plan;
    }
    return sky;
}

std::vector<SiteSky> SkiesOfSites(const PlanSession& session, std::span<const std::wstring> names)
{
    std::vector<SiteSky> sites;
    for (const std::wstring& name : names) {
        if (std::optional<SiteSky> site = SkyOfSite(session, name);
            site && sites.size() < PlanSearch::kMostSites) {
            sites.push_back(*std::move(site));
        }
    }
    return sites;
}

std::error_code KeepSiteCurtain(const std::filesystem::path& folder, const std::wstring& name,
                                const ObstructionCurtain& curtain)
{
    const std::optional<std::filesystem::path> file = SiteCurtainPath(folder, name);
    if (!file) {
        return std::make_error_code(std::errc::filename_too_long);
    }
    if (const std::error_code error = Folders::Create(file->parent_path())) {
        return error;
    }
    return SaveCurtainText(*file, curtain);
}

PlanSearch SearchOf(const ObservationPlan& plan, std::span<const SiteSky> sites,
                    const SearchHours& hours)
{
    std::vector<SearchSite> searched;
    for (const SiteSky& site : sites) {
        searched.push_back({site.name, site.observer,
                            SkyLimits(plan.Calc().GetElMask(), site.curtain),
                            HasObstruction(site.curtain)});
    }
    return SearchOf(plan, std::move(searched), hours);
}

PlanSearch SearchOf(const ObservationPlan& plan, std::vector<SearchSite> sites,
                    const SearchHours& hours)
{
    if (plan.IsGpsAlone()) {
        return {std::move(sites), hours, plan.Calc()};
    }
    Constellations known = WithAlmanac(plan.GetConstellations(), plan.Calc(),
                                       GpsSecondsOfUtc(plan.Period().UtcAfter(0)));
    const std::vector<SatelliteId> satellites =
        PlannedSatellites(known, plan.Systems(), plan.Calc());
    return {std::move(sites), hours, std::move(known), satellites};
}

std::string ClockText(const PlanSearch& search, int epoch)
{
    constexpr std::size_t kClockAt = 11;
    constexpr std::size_t kClockLength = 5;
    return JstText(search.UtcAt(epoch)).substr(kClockAt, kClockLength);
}

std::optional<WindowLimits> EasedLimits(const PlanSearch& search, std::size_t site,
                                        const WindowLimits& limits)
{
    constexpr double kTenths = 10.0;
    WindowLimits eased = limits;
    eased.maxPdop = WindowLimits::kHighestPdop;
    if (const auto found = search.BestOfDays(site, eased); !found.empty()) {
        eased.maxPdop = std::ceil(found.front().window.highestPdop * kTenths) / kTenths;
        return eased;
    }
    eased = limits;
    while (--eased.minSatellites >= WindowLimits::kFewestSatellites) {
        if (!search.BestOfDays(site, eased).empty()) {
            return eased;
        }
    }
    eased = limits;
    while ((eased.minLength -= search.Interval()) >= search.Interval()) {
        if (!search.BestOfDays(site, eased).empty()) {
            return eased;
        }
    }
    return std::nullopt;
}

SiteSummary SummaryOf(const PlanSearch& search, std::size_t site, const WindowLimits& limits)
{
    const std::span<const std::uint8_t> counts = search.Counts(site);
    const std::span<const double> pdops = search.Pdops(site);
    SiteSummary summary;
    summary.windows = FindWindows(counts, pdops, search.Interval(), limits);
    summary.fewestSatellites = *std::min_element(counts.begin(), counts.end());
    const double highest = *std::max_element(pdops.begin(), pdops.end());
    if (summary.fewestSatellites >= static_cast<int>(kSatellitesForDop) && std::isfinite(highest)) {
        summary.highestPdop = highest;
    }
    return summary;
}

PlanHours HoursAround(const PlanSearch& search, const PlanWindow& window)
{
    constexpr auto kJapan = 9h;
    constexpr int kDayH = 24;
    const auto first = search.UtcAt(window.first) + kJapan;
    const auto day = std::chrono::floor<std::chrono::days>(first);
    const auto from = std::chrono::floor<std::chrono::hours>(first - day);
    const auto to = std::chrono::ceil<std::chrono::hours>(search.UtcAt(window.last) + kJapan - day);
    const int startHour = static_cast<int>(from.count());
    return {day, startHour,
            std::clamp(static_cast<int>((to - from).count()), 1, kDayH - startHour)};
}

} // namespace fieldcore
