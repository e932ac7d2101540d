#include "core/link/PortChoices.h"

#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

namespace fieldcore {

namespace {

std::wstring TitleOf(const SerialPort& port)
{
    switch (port.kind) {
    case SerialPort::Kind::BuiltIn:
        return Text(text::kPortBuiltIn);
    case SerialPort::Kind::Bluetooth:
        return Text(text::kPortBluetooth) +
               (port.label.empty() ? std::wstring() : L" " + FromUtf8(port.label));
    case SerialPort::Kind::Usb:
        break;
    }
    return port.label.empty() ? Text(text::kPortUsb) : FromUtf8(port.label);
}

} // namespace

const wchar_t* PortStateText(PortTrouble trouble)
{
    constexpr int kTexts[] = {text::kPortFree,       text::kPortGone,        text::kPortGone,
                              text::kPortUnusable,   text::kPortUnusable,    text::kPortUnusable,
                              text::kPortNotAllowed, text::kPortLoginNeeded, text::kPortInUse};
    return Text(kTexts[static_cast<std::size_t>(trouble)]);
}

std::vector<PortChoice> ListPortChoices(const PortNames& names, const SystemRoots& roots)
{
    std::vector<PortChoice> choices;
    for (const SerialPort& port : ListSerialPorts(names, roots)) {
        const PortTrouble trouble = ReportPort(port.path, 0, roots).trouble;
        PortChoice choice;
        choice.name = !port.comName.empty()      ? port.comName
                      : !port.stablePath.empty() ? port.stablePath
                                                 : port.path;
        choice.title = TitleOf(port);
        choice.place = FromUtf8(port.comName.empty() ? port.path : port.comName + "  " + port.path);
        choice.state = PortStateText(trouble);
        choice.usable = trouble == PortTrouble::None;
        choices.push_back(std::move(choice));
    }
    choices.push_back(
        {"sim:", Text(text::kPortSimulator), {}, Text(text::kPortSimulatorState), true});
    return choices;
}

bool IsSamePort(const PortNames& names, const std::string& a, const std::string& b)
{
    const auto first = names.Parse(a).port;
    const auto second = names.Parse(b).port;
    if (!first || !second || first->kind != second->kind) {
        return false;
    }
    return first->kind == PortKind::Simulator ||
           names.StablePath(first->path) == names.StablePath(second->path);
}

} // namespace fieldcore
