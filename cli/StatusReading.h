#pragma once

#include "cli/Failure.h"
#include "cli/Report.h"

#include "core/equipment/BatteryWatch.h"
#include "core/link/Replies.h"
#include "core/platform/Clock.h"

#include <cstdint>
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
    Clock::UtcTime controllerTime; ///< the controller's, when the receiver told its own

    std::wstring powerSourceName;      ///< empty: not looked up, see BatteryFollow
    std::optional<BatteryTrend> trend; ///< nothing: not known yet

    // When each of them came, by the session's clock, and when the last answer was there.
    Clock::Duration statusAt{};
    Clock::Duration timeAt{};
    Clock::Duration positionAt{};
    Clock::Duration powerSourceAt{};
    Clock::Duration endedAt{};

    /// Time by the receiver; nothing while it does not know the time itself.
    [[nodiscard]] std::optional<Clock::UtcTime> Utc() const;
    /// Whether there is a place to show.
    [[nodiscard]] bool HasPosition() const;
};

/// What one reading does not tell of the battery: the name of its source, which depends on the
/// type of the receiver, and over many readings how the charge goes.
class BatteryFollow
{
public:
    /// Fills in name and trend. Asks for the type of the receiver once, which may fail: the name
    /// is then that of a receiver that nobody knows.
    void Follow(PortSession& session, StatusReading& reading);

private:
    std::uint32_t m_typeNumber = 0; // 0: not known
    std::optional<int> m_source;
    BatteryWatch m_watch;
};

/// Asks for all of it. What a receiver refuses is left out; silence and a lost link are not.
/// @return why it failed; nothing if @p reading is filled
[[nodiscard]] std::optional<Failure> ReadStatus(PortSession& session, StatusReading& reading);

/// Everything, a value a line.
void AddStatus(Report& report, const StatusReading& reading);
/// How old each answer was when the last one came.
void AddAges(Report& report, const StatusReading& reading);

/// One line of the watch, and the line that heads its columns.
[[nodiscard]] std::string WatchLine(const StatusReading& reading);
[[nodiscard]] std::string WatchHeader();

} // namespace fieldcore::cli
