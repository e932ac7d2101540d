#include "core/link/ComBlueToothSet.h"

#include "core/settings/Setting.h"

namespace fieldcore {

CComBlueToothSet::CComBlueToothSet(SettingsRoots& roots) : m_reg(roots)
{
    m_reg.SetRootKey(RootKey::LocalMachine, 0);
    m_reg.SetBasePath(L"Software\\CorvaneTS Software\\Wexmain");
}

int CComBlueToothSet::ReadReg()
{
    constexpr KnownSetting kPort = L"Data\\System\\Rtk\\GpsPort";
    std::uint32_t port = 0;
    m_isStored = ReadSetting(m_reg, kPort, port) == 1;
    m_connectPort = static_cast<int>(port);
    m_way = port == kPort->number.byDefault ? Cable : BlueTooth;
    if (m_way == BlueTooth) {
        m_blueToothPort = m_connectPort;
    }
    return 1;
}

} // namespace fieldcore
