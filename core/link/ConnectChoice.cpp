#include "core/link/ConnectChoice.h"

#include "core/platform/Utf8.h"

#include <filesystem>
#include <string_view>

namespace fieldcore {

namespace {

constexpr std::wstring_view kKey = L"GPS\\Connect";
constexpr std::wstring_view kPort = L"Port";
constexpr std::string_view kBluetooth = "rfcomm";
/// Stands for a Bluetooth port that no COM number means.
constexpr int kNoComNumber = 0;

bool IsPortName(const std::string& name)
{
    return PortNames().Parse(name).port.has_value();
}

} // namespace

ConnectChoice LoadConnectChoice(const CReg& reg, ConnectChoice otherwise)
{
    std::wstring port;
    if (reg.ReadString(kKey, kPort, port, L"") == 1 && IsPortName(ToUtf8(port))) {
        otherwise.port = ToUtf8(port);
    }
    return otherwise;
}

int SaveConnectChoice(const CReg& reg, const ConnectChoice& choice)
{
    const std::wstring port = FromUtf8(choice.port);
    if (port.size() > CReg::kMaxText || !IsPortName(choice.port)) {
        return 0;
    }
    return reg.WriteString(kKey, kPort, port);
}

ConnectTarget TargetOf(const std::string& devicePath, const PortSettings& settings,
                       const PortNames& names)
{
    ConnectTarget target;
    target.devicePath = devicePath;
    target.settings = settings;
    if (const std::optional<int> com = names.ComNumber(devicePath)) {
        target.port = *com;
    } else if (std::filesystem::path(devicePath).filename().string().starts_with(kBluetooth)) {
        target.port = kNoComNumber;
    }
    return target;
}

} // namespace fieldcore
