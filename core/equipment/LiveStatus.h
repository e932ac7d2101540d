#pragma once

#include "core/equipment/BatteryWatch.h"
#include "core/equipment/GPSError.h"
#include "core/link/ReceiverLink.h"
#include "core/link/Replies.h"

#include <chrono>
#include <optional>
#include <string>

namespace fieldcore {

/// The time that a receiver told.
struct ReceiverTime
{
    std::chrono::local_seconds jst;
    int utcOffsetS = 0;
    bool isSynchronised = false;               ///< false: the seconds mean nothing
    std::chrono::milliseconds controllerAhead; ///< of the receiver; counts when synchronised
};

/// The battery as a receiver told it.
struct BatteryReading
{
    std::optional<int> percent; ///< nothing if it did not tell
    std::wstring source;        ///< name of the power source in use
};

/// How the receiver is, each value with the time at which it came. What has not come is nothing.
struct LiveStatus
{
    std::optional<TimedValue<StatusReply>> status;
    std::optional<TimedValue<ReturnPositionStatusInformation>> position;
    std::optional<TimedValue<std::wstring>> pdop; ///< text of CGPSError
    std::optional<TimedValue<ReceiverTime>> time;
    std::optional<TimedValue<BatteryReading>> battery;
    std::optional<BatteryTrend> trend;
    std::optional<CGPSError::ClockChange> clockChange;
};

/// Whether a place is there to show: a position is computed, and it is one.
[[nodiscard]] bool HasPlace(const ReturnPositionStatusInformation& position);

} // namespace fieldcore
