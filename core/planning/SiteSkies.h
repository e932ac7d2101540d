#pragma once

#include "core/planning/PlanSearch.h"
#include "core/planning/PlanSession.h"
#include "core/platform/TextError.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace fieldcore {

/// A site of the list and what hides its sky.
struct SiteSky
{
    enum class Origin
    {
        Own,  ///< the file of SiteCurtainPath()
        Plan, ///< the plan's, for the site of the plan
        Open, ///< there is none
    };

    std::wstring name;
    Observer observer;
    ObstructionCurtain curtain{};
    Origin origin = Origin::Open;
    std::optional<TextError> error; ///< its own file cannot be read: the sky is taken for open
};

/// @return nothing unless the list has all coordinates of the site
[[nodiscard]] std::optional<SiteSky> SkyOfSite(const PlanSession& session,
                                               const std::wstring& name);

/// Those of @p names, PlanSearch::kMostSites at most; without those that lack coordinates.
[[nodiscard]] std::vector<SiteSky> SkiesOfSites(const PlanSession& session,
                                                std::span<const std::wstring> names);

/// Keeps @p curtain as the site's own, whole or not at all; where it hides nothing, too: the sky is
/// then known to be open.
[[nodiscard]] std::error_code KeepSiteCurtain(const std::filesystem::path& folder,
                                              const std::wstring& name,
                                              const ObstructionCurtain& curtain);

/// A search with the systems and satellites of @p plan, and one receiver clock.
[[nodiscard]] PlanSearch SearchOf(const ObservationPlan& plan, std::vector<SearchSite> sites,
                                  const SearchHours& hours);
/// The same with its mask.
[[nodiscard]] PlanSearch SearchOf(const ObservationPlan& plan, std::span<const SiteSky> sites,
                                  const SearchHours& hours);

/// The time of day of an epoch in Japan: "09:00".
[[nodiscard]] std::string ClockText(const PlanSearch& search, int epoch);

/// The nearest limits with which @p site has a time although it has none with @p limits, only one
/// of them another: a higher PDOP, else fewer satellites, else a shorter time.
/// @param search  after its last step
/// @return nothing if none of them is enough
[[nodiscard]] std::optional<WindowLimits> EasedLimits(const PlanSearch& search, std::size_t site,
                                                      const WindowLimits& limits);

/// What a site, or all together, see over all of a search.
struct SiteSummary
{
    int fewestSatellites = 0;
    std::optional<double> highestPdop; ///< nothing if there is not always a solution
    std::vector<PlanWindow> windows;   ///< that keep to the limits
};
/// @param search  after its last step
[[nodiscard]] SiteSummary SummaryOf(const PlanSearch& search, std::size_t site,
                                    const WindowLimits& limits);

/// The day and the whole hours of it that a plan needs to show @p window, at least one.
struct PlanHours
{
    std::chrono::year_month_day date;
    int startHour = 0;
    int hours = 1;
};
[[nodiscard]] PlanHours HoursAround(const PlanSearch& search, const PlanWindow& window);

} // namespace fieldcore
