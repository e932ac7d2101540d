#pragma once

#include "core/host/Host.h"
#include "core/platform/Clock.h"
#include "core/platform/PortNames.h"
#include "core/platform/SerialDevice.h"
#include "core/settings/SettingsRoots.h"

#include <functional>
#include <memory>

namespace fieldcore {

/// The world around the library. A program makes one and gives it to the channel (CCommand);
/// whoever has the channel has all of it. What is left out is this machine's own, the host that of
/// SetDefaultHost(). What is pointed to must outlive whoever was given it.
struct Environment
{
    Host* host = nullptr;                                        ///< asked, and breathes
    const Clock* clock = nullptr;                                ///< of waits, ages and dates
    const PortNames* ports = nullptr;                            ///< resolves port numbers
    std::function<std::unique_ptr<SerialDevice>()> makeDevice{}; ///< of a port that is opened
    SettingsRoots* roots = nullptr;                              ///< settings, and the folders

    /// What was given, else what is used without.
    [[nodiscard]] Host& GetHost() const { return host != nullptr ? *host : DefaultHost(); }
    /// As GetHost().
    [[nodiscard]] const Clock& GetClock() const
    {
        return clock != nullptr ? *clock : SystemClock::Instance();
    }
    /// As GetHost().
    [[nodiscard]] SettingsRoots& Roots() const
    {
        return roots != nullptr ? *roots : SettingsRoots::Instance();
    }
    /// Those of Roots().
    [[nodiscard]] const Folders& GetFolders() const { return Roots().GetFolders(); }
};

} // namespace fieldcore
