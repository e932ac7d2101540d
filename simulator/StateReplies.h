#pragma once

#include "simulator/Frame.h"
#include "simulator/GpsTime.h"
#include "simulator/Scenario.h"
#include "simulator/Sky.h"

namespace fieldcore::simulator {

/// What the receiver knows about its position at a moment.
struct Solution
{
    int fixKind = 0;
    bool knowsTime = true;
    LocalDop dop; ///< all of them 99.9 without a position
};

/// Replies that tell how the receiver is; layouts in docs/protocol.md.

[[nodiscard]] Bytes StatusReply(const Scenario& scenario, const Sky& sky, const Solution& solution,
                                int batteryPercent,
                                int freeMemoryTenths);              ///< 0x09
[[nodiscard]] Bytes TimeReply(const GpsTime& time, int utcOffsetS); ///< 0x15
[[nodiscard]] Bytes SiteReply(const Scenario& scenario);            ///< 0x31
[[nodiscard]] Bytes PositionReply(const Scenario& scenario, const Sky& sky,
                                  const Solution& solution, const GpsTime& time); ///< 0x35

/// @param elapsedS  the receiver's seconds since it started
[[nodiscard]] Solution SolutionAt(const Scenario& scenario, const Sky& sky, double elapsedS);

/// How many satellites the receiver says that it tracks.
[[nodiscard]] int TrackedSatellites(const Scenario& scenario, const Sky& sky);

} // namespace fieldcore::simulator
