#include "core/settings/HostReg.h"

#include <string_view>

namespace fieldcore {

namespace {

constexpr std::wstring_view kSoftwareKey = L"Software";
constexpr std::wstring_view kMakerKey = L"Aldex-Corvane";
constexpr std::wstring_view kHostKey = L"olen+(GPS)";

} // namespace

std::wstring HostBasePath()
{
    std::wstring path(kSoftwareKey);
    path += L'\\';
    path += kMakerKey;
    path += L'\\';
    path += kHostKey;
    return path;
}

HostReg::HostReg(SettingsRoots& roots) : CReg(roots)
{
    SetBasePath(HostBasePath());
}

} // namespace fieldcore
