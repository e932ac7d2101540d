#pragma once

#include "cli/Failure.h"
#include "cli/Report.h"

#include "core/link/Replies.h"
#include "core/platform/Clock.h"

#include <optional>
#include <string>

namespace fieldcore::cli {

class PortSession;

/// How the receiver is at one moment. What it refused to tell, or told in a way that makes no
/// sense, is nothing.
struct StatusReading
{
    std::optional<StatusReply> status;
    std::optional<GpsTimeReply> time;
    std::optional<PositionStatusReply> position;
    std::optional<int> powerSource;
    Clock::UtcTime controllerTime; ///< of the controller, when it was asked

    /// Time by the receiver; nothing while it does not know the time itself.
    [[nodiscard]] std::optional<Clock::UtcTime> Utc() const;
    /// Whether there is a place to show.
    [[nodiscard]] bool HasPosition() const;
};

/// Asks for all of it. What a receiver refuses is left out; silence and a lost link are not.
/// @return why it failed; nothing if @p reading is filled
[[nodiscard]] std::optional<Failure> ReadStatus(PortSession& session, StatusReading& reading);

/// Everything, a value a line.
void AddStatus(Report& report, const StatusReading& reading);

/// One line of the watch, and the line that heads its columns.
[[nodiscard]] std::string WatchLine(const StatusReading& reading);
[[nodiscard]] std::string WatchHeader();

} // namespace fieldcore::cli
