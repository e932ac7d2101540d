#include "core/platform/PortList.h"

#include "core/platform/FolderEntries.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>
#include <tuple>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBluetooth = "rfcomm";

bool Exists(const fs::path& path)
{
    std::error_code ignored;
    return fs::exists(path, ignored);
}

/// The first line of a small file of the system, without control characters: some of them
/// repeat what a plugged-in device says about itself. Empty if there is none.
std::string Attribute(const fs::path& file)
{
    constexpr std::size_t kLongest = 256;
    std::string line;
    std::ifstream in(file);
    std::getline(in, line);
    std::erase_if(line, [](char c) { return (c >= '\0' && c < ' ') || c == '\x7F'; });
    line.resize(std::min(line.size(), kLongest));
    return line;
}

/// A driver also registers ports for hardware that it has not found; their UART type is 0.
bool IsThere(const fs::path& entry)
{
    if (entry.filename().string().starts_with(kBluetooth)) {
        return true;
    }
    return Exists(entry / "device/driver") && Attribute(entry / "type") != "0";
}

/// The USB device that the port is a part of, some folders up.
std::optional<fs::path> UsbDevice(const fs::path& entry)
{
    std::error_code error;
    fs::path folder = fs::canonical(entry / "device", error);
    while (!error && folder.has_relative_path()) {
        if (Exists(folder / "idVendor")) {
            return folder;
        }
        folder = folder.parent_path();
    }
    return std::nullopt;
}

/// Fills in what the port is.
void Describe(const fs::path& entry, SerialPort& port)
{
    if (entry.filename().string().starts_with(kBluetooth)) {
        port.kind = SerialPort::Kind::Bluetooth;
        port.label = Attribute(entry / "address");
        port.description = "Bluetooth serial port";
        port.description += port.label.empty() ? "" : " to " + port.label;
        return;
    }
    const std::optional<fs::path> usb = UsbDevice(entry);
    if (!usb) {
        port.description = "built-in serial port";
        return;
    }
    port.kind = SerialPort::Kind::Usb;
    port.label = Attribute(*usb / "product");
    port.description = port.label.empty() ? "USB serial adapter" : port.label;
    const std::string serial = Attribute(*usb / "serial");
    port.description += serial.empty() ? "" : ", serial number " + serial;
}

/// Orders ttyUSB2 before ttyUSB10.
bool ComesBefore(const SerialPort& a, const SerialPort& b)
{
    const auto key = [](const std::string& path) {
        const std::size_t digits = path.find_last_not_of("0123456789") + 1;
        return std::tuple(std::string_view(path).substr(0, digits), path.size(),
                          std::string_view(path));
    };
    return key(a.path) < key(b.path);
}

} // namespace

std::vector<SerialPort> ListSerialPorts(const PortNames& names, const SystemRoots& roots)
{
    std::vector<SerialPort> ports;
    std::error_code error;
    for (const fs::path& entry : FolderEntries(roots.sys / "class/tty", error)) {
        const fs::path device = roots.dev / entry.filename();
        if (!IsThere(entry) || !Exists(device)) {
            continue;
        }
        SerialPort port;
        port.path = device.string();
        port.stablePath = names.StablePath(port.path);
        if (port.stablePath == port.path) {
            port.stablePath.clear();
        }
        Describe(entry, port);
        if (const std::optional<int> com = names.ComNumber(port.path)) {
            port.comName = "COM" + std::to_string(*com);
        }
        ports.push_back(port);
    }
    std::sort(ports.begin(), ports.end(), ComesBefore);
    return ports;
}

} // namespace fieldcore
