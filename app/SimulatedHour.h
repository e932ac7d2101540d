#pragma once

#include "core/equipment/StatusHistory.h"
#include "core/link/Receiver.h"
#include "core/platform/Clock.h"

#include <optional>

namespace fieldcore {

/// What an hour with a simulated receiver leaves behind.
struct SimulatedHour
{
    Receiver receiver;
    StatusHistory history;
    Clock::Duration now{}; ///< of the clock that they are timed by
    Clock::UtcTime utc;
};

/// Lives through an hour with a simulated receiver, whose satellites move and whose battery drains,
/// on a clock of its own that leaps from round to round. Takes some seconds.
/// @return nothing if the simulator cannot be started or reached
[[nodiscard]] std::optional<SimulatedHour> LiveAnHour();

} // namespace fieldcore
