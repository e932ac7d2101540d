#pragma once

#include "core/planning/ObservationPlan.h"

#include <chrono>
#include <cstdint>
#include <span>
#include <vector>

namespace fieldcore {

/// When the sky is good enough to observe.
struct WindowLimits
{
    static constexpr int kFewestSatellites = 4, kMostSatellites = 12;
    static constexpr double kLowestPdop = 1.0, kHighestPdop = 10.0;
    static constexpr std::chrono::minutes kShortest{5}, kLongest{720};

    /// Usable at every epoch, the highest dilution, and how long it must last.
    int minSatellites = 5;
    double maxPdop = 4.0;
    std::chrono::minutes minLength{30};

    friend bool operator==(const WindowLimits&, const WindowLimits&) = default;
};

/// @p limits brought into their ranges.
[[nodiscard]] WindowLimits Fitted(WindowLimits limits);

/// A part of a plan's period that is good from its first epoch to its last. Epoch k is start + k
/// intervals, 0 to Division().
struct PlanWindow
{
    int first = 0;
    int last = 0;
    int fewestSatellites = 0;
    double highestPdop = 0.0;
};

/// The longest runs of epochs that keep to @p limits and last at least as long as they ask, in the
/// order of time. What lies between two epochs is not looked at.
/// @param counts    of satellites, epoch by epoch, @p interval apart; so are @p pdops
[[nodiscard]] std::vector<PlanWindow> FindWindows(std::span<const std::uint8_t> counts,
                                                  std::span<const double> pdops,
                                                  std::chrono::minutes interval,
                                                  const WindowLimits& limits);
/// Those of a plan, after its Compute().
[[nodiscard]] std::vector<PlanWindow> FindWindows(const ObservationPlan& plan,
                                                  const WindowLimits& limits);

} // namespace fieldcore
