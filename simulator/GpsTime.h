#pragma once

#include "core/platform/Clock.h"

namespace fieldcore::simulator {

/// A moment in GPS time, which has no leap seconds.
struct GpsTime
{
    int week = 0;      ///< full count since 1980-01-06
    double sowS = 0.0; ///< seconds of the week
};

/// @param utcOffsetS  GPS time minus UTC, s
[[nodiscard]] GpsTime ToGpsTime(Clock::UtcTime utc, int utcOffsetS);

} // namespace fieldcore::simulator
