#pragma once

#include "core/equipment/ReceiverFields.h"

#include <optional>
#include <string>
#include <vector>

namespace fieldcore {

/// A line of the status display.
struct StatusRow
{
    const ReceiverField* field = nullptr;
    std::wstring value; ///< "--" or the field's own word for what is not known
    std::wstring age;   ///< how old, or for a stale value when it came; empty for none
    bool isStale = false;
};

/// The line of a field.
[[nodiscard]] StatusRow StatusRowOf(const ReceiverField& field, const Receiver& receiver,
                                    const StatusView& view);
/// The lines, always the same ones in the same order: the position, then the rest.
[[nodiscard]] std::vector<StatusRow> StatusRowsOf(const Receiver& receiver, const StatusView& view);

/// What the survey's limits are broken by now, a line each: nothing where all is well, where a
/// value is not known or not fresh, and without limits.
[[nodiscard]] std::vector<std::wstring> BrokenLimits(const Receiver& receiver,
                                                     const StatusView& view);

/// The one word for how the link is, with its sign: "● 接続済み".
[[nodiscard]] const wchar_t* LinkText(LinkState link);
/// "FIX 16衛星": the kind of the fix in short, and the satellites; empty if the kind is not known.
[[nodiscard]] std::wstring FixText(const Receiver& receiver, const StatusView& view);

/// The charge with its source for a status bar.
[[nodiscard]] std::wstring BatteryText(const Receiver& receiver, const StatusView& view);
/// The charge in percent; nothing if it is not known.
[[nodiscard]] std::optional<int> BatteryPercent(const Receiver& receiver);
/// How old a value is, for the user: seconds, then minutes.
[[nodiscard]] std::wstring AgeText(Clock::Duration age);
/// "最終受信 12:34:56": when a value of @p age came, by the controller's clock in Japan's time.
[[nodiscard]] std::wstring LastReceivedText(Clock::UtcTime utc, Clock::Duration age);

} // namespace fieldcore
