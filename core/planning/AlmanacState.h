#pragma once

#include "core/planning/ObservationPlan.h"

#include <chrono>

namespace fieldcore {

/// The almanac that a plan is made with.
struct AlmanacState
{
    std::chrono::sys_seconds time; ///< its latest reference time, on the GPS time scale
    double ageDays = 0.0;          ///< at the start of the plan; negative: it is from later
    bool isOld = false;            ///< IsAlmanacOld()
    int satellites = 0;            ///< valid ones; 0: there is no almanac
    int healthy = 0;               ///< of these
    AlmanacSource source;

    /// Its day by the calendar: the one that is shown.
    [[nodiscard]] std::chrono::sys_days Day() const
    {
        return std::chrono::floor<std::chrono::days>(time);
    }
};

/// @param plan  its Calc() and Period() are looked at; it need not be computed
[[nodiscard]] AlmanacState StateOfAlmanac(const ObservationPlan& plan);

} // namespace fieldcore
