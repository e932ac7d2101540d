#pragma once

#include "core/link/RecvInfo.h"

#include <span>

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

} // namespace fieldcore
