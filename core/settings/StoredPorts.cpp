#include "core/settings/StoredPorts.h"

#include "core/platform/NumberText.h"
#include "core/platform/Utf8.h"
#include "core/settings/HostReg.h"

#include <filesystem>
#include <optional>
#include <system_error>
#include <variant>

namespace fieldcore {

namespace {

/// @return nothing if @p name is not COM and a number
std::optional<int> ComNumberOf(const std::wstring& name)
{
    const std::string text = ToUtf8(FoldCase(name));
    constexpr std::string_view kCom = "com";
    return text.starts_with(kCom) ? NumberOf<int>(std::string_view(text).substr(kCom.size()))
                                  : std::nullopt;
}

} // namespace

std::vector<std::wstring> AssignStoredPorts(PortNames& names, SettingsRoots& roots)
{
    std::vector<std::wstring> faults;
    std::error_code ignored;
    if (!std::filesystem::exists(roots.File(RootKey::CurrentUser), ignored)) {
        return faults;
    }
    const std::wstring key = HostBasePath() + L'\\' + kPortsKey;
    const auto values = roots.Store(RootKey::CurrentUser).Values(key);
    for (const NamedSetting& setting : values.value_or(std::vector<NamedSetting>())) {
        const std::optional<int> com = ComNumberOf(setting.name);
        const auto* const path = std::get_if<std::wstring>(&setting.value);
        if (!com || path == nullptr || !names.Assign(*com, ToUtf8(*path))) {
            faults.push_back(setting.name);
        }
    }
    return faults;
}

} // namespace fieldcore
