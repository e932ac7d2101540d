#pragma once

#include "core/settings/Reg.h"

#include <string>

namespace fieldcore {

/// The base path of all settings of the library, below the user's own root.
[[nodiscard]] std::wstring HostBasePath();

/// The accessor with which the library's classes reach their settings: a CReg that starts at
/// HostBasePath().
class HostReg : public CReg
{
public:
    /// @param roots  must outlive the object
    explicit HostReg(SettingsRoots& roots = SettingsRoots::Instance());
};

} // namespace fieldcore
