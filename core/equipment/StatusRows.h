#pragma once

#include "core/equipment/LiveStatus.h"
#include "core/platform/Clock.h"

#include <chrono>
#include <string>
#include <vector>

namespace fieldcore {

/// A line of the status display.
struct StatusRow
{
    int labelId = 0;    ///< of the string table
    std::wstring value; ///< "--" for what is not known
    std::wstring age;   ///< how old, or for a stale value when it came; empty for none
    bool isStale = false;
};

/// What the status display is made of beside the values.
struct StatusView
{
    Clock::Duration now{};    ///< of the clock that the values are timed by
    Clock::UtcTime utc;       ///< the controller's date and time
    bool isConnected = false; ///< without a link every value is stale
    int planeZone = 0;        ///< 1 to 19; 0: the one whose origin is nearest
    bool maySetClock = false; ///< the user wants the controller's clock set
};

/// From this age on a value is stale. The battery is asked for less often.
inline constexpr std::chrono::seconds kStaleStatus{10};
inline constexpr std::chrono::seconds kStaleBattery{75};

/// The lines, always the same ones in the same order.
[[nodiscard]] std::vector<StatusRow> StatusRowsOf(const LiveStatus& status, const StatusView& view);

/// The fix in words; "--" for a kind that nobody knows.
[[nodiscard]] const wchar_t* FixText(int fixKind);
/// The charge with its source for a status bar: "不明" when the receiver did not tell.
[[nodiscard]] std::wstring BatteryText(const BatteryReading& reading);
/// A trend and how long the battery lasts; "--" for nothing.
[[nodiscard]] std::wstring TrendText(const std::optional<BatteryTrend>& trend);
/// "最終受信 12:34:56": when a value of @p age came, by the controller's clock in Japan's time.
[[nodiscard]] std::wstring LastReceivedText(Clock::UtcTime utc, Clock::Duration age);

/// The plane zone whose origin is nearest to a place. Which zone a survey must use is a matter of
/// the prefecture; this is a proposal.
[[nodiscard]] int NearestPlaneZone(const SiteReply& place);

} // namespace fieldcore
