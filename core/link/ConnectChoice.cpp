#include "core/link/ConnectChoice.h"

#include "core/platform/Utf8.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace fieldcore {

namespace {

constexpr std::wstring_view kKey = L"GPS\\Connect";
constexpr std::wstring_view kPort = L"Port";
constexpr std::wstring_view kBaudRate = L"BaudRate";
constexpr std::string_view kBluetooth = "rfcomm";
/// Stands for a Bluetooth port that no COM number means.
constexpr int kNoComNumber = 0;

bool IsPortName(const std::string& name)
{
    return PortNames().Parse(name).port.has_value();
}

bool IsBaudRate(std::uint32_t rate)
{
    return std::find(kBaudRates.begin(), kBaudRates.end(), rate) != kBaudRates.end();
}

} // namespace

ConnectChoice LoadConnectChoice(const CReg& reg)
{
    ConnectChoice choice;
    std::wstring port;
    if (reg.ReadString(kKey, kPort, port, L"") == 1 && IsPortName(ToUtf8(port))) {
        choice.port = ToUtf8(port);
    }
    std::uint32_t rate = 0;
    if (reg.ReadNumber(kKey, kBaudRate, rate, choice.baudRate) == 1 && IsBaudRate(rate)) {
        choice.baudRate = rate;
    }
    return choice;
}

int SaveConnectChoice(const CReg& reg, const ConnectChoice& choice)
{
    const std::wstring port = FromUtf8(choice.port);
    if (port.size() > CReg::kMaxText || !IsPortName(choice.port) || !IsBaudRate(choice.baudRate)) {
        return 0;
    }
    return reg.WriteString(kKey, kPort, port) == 1 &&
                   reg.WriteNumber(kKey, kBaudRate, choice.baudRate) == 1
               ? 1
               : 0;
}

ConnectTarget TargetOf(const std::string& devicePath, std::uint32_t baudRate,
                       const PortNames& names)
{
    ConnectTarget target;
    target.devicePath = devicePath;
    target.settings.baudRate = baudRate;
    if (const std::optional<int> com = names.ComNumber(devicePath)) {
        target.port = *com;
    } else if (std::filesystem::path(devicePath).filename().string().starts_with(kBluetooth)) {
        target.port = kNoComNumber;
    }
    return target;
}

} // namespace fieldcore
