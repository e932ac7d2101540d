#pragma once

#include "core/link/Receiver.h"

#include <string>
#include <vector>

namespace fieldcore {

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
