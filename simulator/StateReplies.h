#pragma once

#include "simulator/Frame.h"
#include "simulator/GpsTime.h"
#include "simulator/Scenario.h"
#include "simulator/Sky.h"

namespace fieldcore::simulator {

/// Replies that tell how the receiver is; layouts in docs/protocol.md.

[[nodiscard]] Bytes StatusReply(const Scenario& scenario, const Sky& sky, int batteryPercent,
                                int freeMemoryTenths);              ///< 0x09
[[nodiscard]] Bytes TimeReply(const GpsTime& time, int utcOffsetS); ///< 0x15
[[nodiscard]] Bytes SiteReply(const Scenario& scenario);            ///< 0x31
[[nodiscard]] Bytes PositionReply(const Scenario& scenario, const Sky& sky,
                                  const GpsTime& time); ///< 0x35

/// How many satellites the receiver says that it tracks.
[[nodiscard]] int TrackedSatellites(const Scenario& scenario, const Sky& sky);

} // namespace fieldcore::simulator
