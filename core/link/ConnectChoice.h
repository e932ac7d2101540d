#pragma once

#include "core/link/Command.h"
#include "core/platform/PortNames.h"
#include "core/settings/Reg.h"
#include "core/settings/SettingsRoots.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace fieldcore {

/// Where the receiver is reached, and how.
struct ConnectTarget
{
    int port = 1;           ///< COM number; 1 is the cable, any other a Bluetooth serial port
    std::string devicePath; ///< a device of this machine in place of the COM number
    PortSettings settings;

    [[nodiscard]] bool IsBluetooth() const { return port != 1; }
};

/// Opens the port of the target. @return 1 if it is open
int OpenTarget(CCommand& command, const ConnectTarget& target);

/// The rates that a receiver's port can be set to, bit/s.
inline constexpr std::array<std::uint32_t, 7> kBaudRates{2400,  4800,  9600,  19200,
                                                         38400, 57600, 115200};

/// How the user last chose to reach the receiver.
struct ConnectChoice
{
    std::string port = "sim:";      ///< a name that PortNames::Parse() reads, UTF-8
    std::uint32_t baudRate = 38400; ///< bit/s; one of kBaudRates

    bool operator==(const ConnectChoice&) const = default;
};

/// The name of the port that the settings say: the user's own choice in the key GPS\Connect, else
/// the COM number of the host suite, see CComBlueToothSet. It need not be one that can be used.
/// @return nothing if neither is stored
[[nodiscard]] std::optional<std::string> StoredPort(SettingsRoots& roots);

/// Stores the port.
/// @return 1; 0, and nothing is stored, if the name is longer than CReg::kMaxText or can be no
///         port; 0 if the settings cannot be written
int SaveConnectChoice(const CReg& reg, const ConnectChoice& choice);

/// Where a port name leads: to a port, to a simulated receiver, or nowhere.
struct FoundTarget
{
    std::optional<ConnectTarget> target; ///< a port to open
    /// The simulated receiver is meant, which the program that has one starts, playing this; empty:
    /// what it plays by itself. See TargetOf() for its port.
    std::optional<std::string> scenario;
    std::wstring fault; ///< why there is no port to open, for the user; empty if there is
    std::string detail; ///< the same in plain English
};

/// Where and how to connect, as the settings have it: the port by its name and the devices that are
/// assigned to COM numbers, the line by the parameters of port 0. Nothing takes the place of a port
/// that cannot be used. Opens no port.
/// @param port    name of the port; empty: StoredPort(), and the cable on COM1 where none is stored
/// @param system  where devices are looked for
[[nodiscard]] FoundTarget FindTarget(SettingsRoots& roots, const std::string& port = {},
                                     const SystemRoots& system = {});

/// How a device is reached. COM1, and a device that has neither another COM number nor a Bluetooth
/// name, is the cable. A Bluetooth device without a COM number counts as one above all of them.
/// @param devicePath  of the port, or of the simulated receiver's
[[nodiscard]] ConnectTarget TargetOf(const std::string& devicePath, const PortSettings& settings,
                                     const PortNames& names);

} // namespace fieldcore
