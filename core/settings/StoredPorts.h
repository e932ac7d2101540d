#pragma once

#include "core/platform/PortNames.h"
#include "core/settings/SettingsRoots.h"

#include <string>
#include <vector>

namespace fieldcore {

/// The key, below HostBasePath() in the user's own settings, that says which device a COM number
/// means: a text under the name COM1 to COM256, the whole path of the device.
inline constexpr wchar_t kPortsKey[] = L"Ports";

/// Gives @p names the devices that the settings assign to COM numbers. Settings that are not there
/// yet are not made. One thread at a time, together with all others that use the same roots.
/// @return the names of the settings that cannot be used
std::vector<std::wstring> AssignStoredPorts(PortNames& names, SettingsRoots& roots);

} // namespace fieldcore
