#pragma once

#include "core/equipment/ReceiverFields.h"
#include "core/link/RecvInfo.h"

#include <optional>
#include <span>
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

// The version display.

/// An option that may be installed in a receiver.
struct InstalledOption
{
    const char* words; ///< its name in English, for reports
    int textId;        ///< its name for the user
    /// Not 0 if @p info has it.
    int (*has)(const CRecvInfo& info);
};

/// All that the library knows, in the order in which they are listed.
[[nodiscard]] std::span<const InstalledOption> AllInstalledOptions();

/// A line of the version display.
struct VersionRow
{
    std::wstring name;
    std::wstring value; ///< "--" for what the receiver did not tell
    bool isHeading = false;
    bool isMissing = false; ///< an option that is not installed
};

/// Who the receiver is, its firmware and every option, as the version display lists them.
[[nodiscard]] std::vector<VersionRow> VersionRowsOf(const ReceiverIdentity& identity);

/// The list as text to copy: a row a line, name and value with a tab between.
[[nodiscard]] std::wstring VersionText(const std::vector<VersionRow>& rows);

} // namespace fieldcore
