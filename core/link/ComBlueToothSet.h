#pragma once

#include "core/platform/Assign.h"
#include "core/settings/Reg.h"

namespace fieldcore {

/// How the controller reaches the receiver, as the host suite has set it for the whole machine: by
/// cable on COM1, or by a Bluetooth serial port. One thread at a time, together with all others
/// that use the same settings.
class CComBlueToothSet
{
public:
    /// How the receiver is reached.
    enum Way : int
    {
        Cable = 0,
        BlueTooth = 1,
    };

    /// @param roots  must outlive the object
    explicit CComBlueToothSet(SettingsRoots& roots = SettingsRoots::Instance());

    /// Reads the number GpsPort of the host suite; where there is none it is 1, and nothing is
    /// made. 1 is the cable; any other is a Bluetooth port, whether there is such a COM number or
    /// not.
    /// @return 1
    int ReadReg();
    /// The host suite's settings are its own: writes nothing. @return 1
    [[nodiscard]] int WriteReg() const { return 1; }

    /// Whether the host suite has said it, as of ReadReg().
    [[nodiscard]] bool IsStored() const { return m_isStored; }

    // Setters answer 1 if the value changed.

    [[nodiscard]] int GetConnectPort() const { return m_connectPort; } ///< COM number
    int SetConnectPort(int port) { return Assign(m_connectPort, port); }
    [[nodiscard]] int GetComConnectWay() const { return m_way; } ///< a Way
    /// Any number but 0 is Bluetooth.
    int SetComConnectWay(int way) { return Assign(m_way, way == Cable ? Cable : BlueTooth); }
    [[nodiscard]] int GetBlueToothPort() const { return m_blueToothPort; } ///< COM number
    int SetBlueToothPort(int port) { return Assign(m_blueToothPort, port); }

private:
    CReg m_reg;
    bool m_isStored = false;
    int m_connectPort = 1;
    int m_way = Cable;
    int m_blueToothPort = 1;
};

} // namespace fieldcore
