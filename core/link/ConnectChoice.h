#pragma once

#include "core/link/ConnectSequence.h"
#include "core/platform/PortNames.h"
#include "core/settings/Reg.h"

#include <array>
#include <cstdint>
#include <string>

namespace fieldcore {

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

/// The port that is stored in the key GPS\Connect, with the rate of @p otherwise: the rate is kept
/// with the other parameters of the line, see CComPrmSet.
/// @param reg  the accessor of the library's settings: a HostReg
/// @param otherwise  its port where none is stored, or one that can be none
[[nodiscard]] ConnectChoice LoadConnectChoice(const CReg& reg, ConnectChoice otherwise = {});

/// Stores the port.
/// @return 1; 0, and nothing is stored, if the name is longer than CReg::kMaxText or can be no
///         port; 0 if the settings cannot be written
int SaveConnectChoice(const CReg& reg, const ConnectChoice& choice);

/// How a device is reached. COM1, and a device that has neither another COM number nor a Bluetooth
/// name, is the cable.
/// @param devicePath  of the port, or of the simulated receiver's
[[nodiscard]] ConnectTarget TargetOf(const std::string& devicePath, const PortSettings& settings,
                                     const PortNames& names);

} // namespace fieldcore
