#include "core/planning/PlanWindows.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace fieldcore {

WindowLimits Fitted(WindowLimits limits)
{
    limits.minSatellites = std::clamp(limits.minSatellites, WindowLimits::kFewestSatellites,
                                      WindowLimits::kMostSatellites);
    limits.maxPdop =
        std::clamp(limits.maxPdop, WindowLimits::kLowestPdop, WindowLimits::kHighestPdop);
    limits.minLength =
        std::clamp(limits.minLength, WindowLimits::kShortest, WindowLimits::kLongest);
    return limits;
}

std::vector<PlanWindow> FindWindows(const ObservationPlan& plan, const WindowLimits& limits)
{
    const SiteView& view = plan.View();
    std::vector<PlanWindow> windows;
    std::optional<PlanWindow> open;
    const auto close = [&] {
        if (open && (open->last - open->first) * plan.Computed().Interval() >= limits.minLength) {
            windows.push_back(*open);
        }
        open.reset();
    };
    for (int k = 0; k <= plan.Division(); ++k) {
        const int count = view.count[static_cast<std::size_t>(k)];
        const double pdop = view.dop[static_cast<std::size_t>(k)].pdop;
        if (count < limits.minSatellites || !(pdop <= limits.maxPdop)) {
            close(); // a dilution that is no number is not good either
            continue;
        }
        if (!open) {
            open = PlanWindow{k, k, count, pdop};
        }
        open->last = k;
        open->fewestSatellites = std::min(open->fewestSatellites, count);
        open->highestPdop = std::max(open->highestPdop, pdop);
    }
    close();
    return windows;
}

} // namespace fieldcore
