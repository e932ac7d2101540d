#pragma once

#include "core/link/Receiver.h"
#include "core/link/RecvInfo.h"

#include <span>
#include <string>
#include <vector>

namespace fieldcore {

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
