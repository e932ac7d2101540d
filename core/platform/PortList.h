#pragma once

#include "core/platform/PortNames.h"
#include "core/platform/SystemRoots.h"

#include <string>
#include <vector>

namespace fieldcore {

/// A serial port of this machine.
struct SerialPort
{
    /// What is behind a port.
    enum class Kind
    {
        BuiltIn,
        Usb,
        Bluetooth
    };

    Kind kind = Kind::BuiltIn; ///< by how it is reached
    std::string path;          ///< such as /dev/ttyUSB0
    std::string stablePath; ///< below /dev/serial/by-id, the same after plugging in again, or empty
    std::string description; ///< what is plugged in, in words; UTF-8, no control characters
    std::string label;   ///< what the device says of itself, its address for Bluetooth; or empty
    std::string comName; ///< such as COM3, or empty if no COM number means it
};

/// The serial ports that are really there, by name and number: those whose driver has found the
/// hardware, and Bluetooth serial ports. None is opened, so nothing happens on any line.
/// Blocks for some file reads.
[[nodiscard]] std::vector<SerialPort> ListSerialPorts(const PortNames& names,
                                                      const SystemRoots& roots = {});

} // namespace fieldcore
