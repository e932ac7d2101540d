#pragma once

#include <vector>

namespace fieldcore::simulator {

/// From a moment on a value holds.
struct Step
{
    double fromS = 0.0; ///< receiver's seconds since it started
    int value = 0;
};

/// A value that changes with time; in the order of time.
using Steps = std::vector<Step>;

/// The value at @p elapsedS; @p before where no step has begun.
[[nodiscard]] inline int ValueAt(const Steps& steps, double elapsedS, int before)
{
    int value = before;
    for (const Step& step : steps) {
        if (step.fromS <= elapsedS) {
            value = step.value;
        }
    }
    return value;
}

} // namespace fieldcore::simulator
