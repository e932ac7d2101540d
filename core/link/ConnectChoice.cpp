#include "core/link/ConnectChoice.h"

#include "core/link/ComBlueToothSet.h"
#include "core/link/ComPrmSet.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "core/settings/Setting.h"
#include "core/settings/StoredPorts.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <variant>
#include <vector>

namespace fieldcore {

namespace {

constexpr KnownSetting kPort = L"GPS\\Connect\\Port";
constexpr std::string_view kBluetooth = "rfcomm";
/// Stands for a Bluetooth port that no COM number means: rules that go by the number take it for
/// one of Bluetooth.
constexpr int kNoComNumber = PortNames::kMaxCom + 1;

std::string ComName(int number)
{
    return "COM" + std::to_string(number);
}

int CauseOf(PortNameFault why)
{
    constexpr int kTexts[] = {0,
                              text::kPortNameTooLong,
                              text::kPortNameControl,
                              text::kPortNameEmpty,
                              text::kPortNameCom,
                              text::kPortNameUnknown};
    return kTexts[static_cast<std::size_t>(why)];
}

FoundTarget Unusable(const std::string& port, int cause, std::string detail)
{
    constexpr std::size_t kMostShown = 32; // a word that no line of a box cuts off
    std::wstring shown = FromUtf8(port);
    std::replace_if(
        shown.begin(), shown.end(), [](wchar_t c) { return c < L' ' || c == L'\x7F'; }, L'?');
    if (shown.size() > kMostShown) {
        shown.resize(kMostShown);
        shown += L"…";
    }
    FoundTarget found;
    found.fault = FormatText(text::kPortUnusableTarget, shown.c_str(), Text(cause));
    found.detail = std::move(detail);
    return found;
}

} // namespace

int OpenTarget(CCommand& command, const ConnectTarget& target)
{
    return target.devicePath.empty()
               ? command.OpenPort(target.port, target.settings)
               : command.OpenPort(target.devicePath, target.settings, target.port);
}

std::optional<std::string> StoredPort(SettingsRoots& roots)
{
    const SettingsRead read =
        roots.Store(RootKey::CurrentUser).Get(HostBasePath() + L'\\' + kPort->Key(), kPort->Name());
    if (read.state == SettingsReadState::Found) {
        const auto* const name = std::get_if<std::wstring>(&read.value);
        const auto* const number = std::get_if<std::uint32_t>(&read.value);
        return name != nullptr     ? ToUtf8(*name)
               : number != nullptr ? std::to_string(*number) // which is no name, and is told so
                                   : std::string();
    }
    CComBlueToothSet way(roots);
    way.ReadReg();
    return way.IsStored() ? std::optional(ComName(way.GetConnectPort())) : std::nullopt;
}

int SaveConnectChoice(const CReg& reg, const ConnectChoice& choice)
{
    const std::wstring port = FromUtf8(choice.port);
    if (port.size() > CReg::kMaxText || !PortNames().Parse(choice.port).port) {
        return 0;
    }
    return Store(reg, kPort, port);
}

FoundTarget FindTarget(SettingsRoots& roots, const std::string& port, const SystemRoots& system)
{
    const std::string name = !port.empty() ? port : StoredPort(roots).value_or(ComName(1));
    PortNames names(system);
    const std::vector<std::wstring> unusable = AssignStoredPorts(names, roots);
    const PortNameResult named = names.Parse(name);
    if (!named.port) {
        return Unusable(name, CauseOf(named.why), named.fault);
    }
    const int com = named.port->com;
    if (named.port->kind == PortKind::Simulator) {
        FoundTarget found = Unusable(name, text::kPortNameSimulator,
                                     "The simulated receiver is chosen, which this program has "
                                     "not.");
        found.scenario = named.port->scenario;
        return found;
    }
    const bool isBroken =
        com != 0 && std::any_of(unusable.begin(), unusable.end(), [com](const std::wstring& n) {
            return FoldCase(n) == FoldCase(FromUtf8(ComName(com)));
        });
    if (isBroken) {
        return Unusable(name, text::kPortNameDevice,
                        "The setting " + ComName(com) + " of the key " + ToUtf8(kPortsKey) +
                            " should be the whole path of a device.");
    }
    FoundTarget found;
    found.target = TargetOf(named.port->path, LinkSettings(roots), names);
    if (com != 0) {
        found.target->port = com;
    }
    return found;
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
