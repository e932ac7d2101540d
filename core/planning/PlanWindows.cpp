#include "core/planning/PlanWindows.h"

#include <algorithm>
#include <array>
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

std::vector<PlanWindow> FindWindows(std::span<const std::uint8_t> counts,
                                    std::span<const double> pdops, std::chrono::minutes interval,
                                    const WindowLimits& limits)
{
    std::vector<PlanWindow> windows;
    std::optional<PlanWindow> open;
    const auto close = [&] {
        if (open && (open->last - open->first) * interval >= limits.minLength) {
            windows.push_back(*open);
        }
        open.reset();
    };
    for (std::size_t at = 0; at < counts.size(); ++at) {
        const int k = static_cast<int>(at);
        const int count = counts[at];
        const double pdop = pdops[at];
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

std::vector<PlanWindow> FindWindows(const ObservationPlan& plan, const WindowLimits& limits)
{
    const SiteView& view = plan.View();
    const std::size_t epochs = static_cast<std::size_t>(plan.Division()) + 1;
    std::array<double, kPlanEpochs> pdops{};
    std::transform(view.dop.begin(), view.dop.end(), pdops.begin(),
                   [](const DopValues& dop) { return dop.pdop; });
    return FindWindows(std::span(view.count).first(epochs), std::span(pdops).first(epochs),
                       plan.Computed().Interval(), limits);
}

} // namespace fieldcore
