#include "core/settings/HostReg.h"

namespace fieldcore {

std::wstring HostBasePath()
{
    return L"Software\\Aldex-Corvane\\olen+(GPS)";
}

HostReg::HostReg(SettingsRoots& roots) : CReg(roots)
{
    SetBasePath(HostBasePath());
}

} // namespace fieldcore
