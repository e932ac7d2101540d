#pragma once

#include "core/platform/Clock.h"
#include "simulator/Frame.h"
#include "simulator/Scenario.h"

namespace fieldcore::simulator {

/// A moment in GPS time, which has no leap seconds.
struct GpsTime
{
    int week = 0;      ///< full count since 1980-01-06
    double sowS = 0.0; ///< seconds of the week
};

/// @param utcOffsetS  GPS time minus UTC, s
[[nodiscard]] GpsTime ToGpsTime(Clock::UtcTime utc, int utcOffsetS);

/// Replies that tell how the receiver is; layouts in docs/protocol.md.

[[nodiscard]] Bytes StatusReply(const Scenario& scenario, int batteryPercent);    ///< 0x09
[[nodiscard]] Bytes TimeReply(const GpsTime& time, int utcOffsetS);               ///< 0x15
[[nodiscard]] Bytes SiteReply(const Scenario& scenario);                          ///< 0x31
[[nodiscard]] Bytes PositionReply(const Scenario& scenario, const GpsTime& time); ///< 0x35

/// How many satellites the receiver says that it tracks.
[[nodiscard]] int TrackedSatellites(const Scenario& scenario);

} // namespace fieldcore::simulator
