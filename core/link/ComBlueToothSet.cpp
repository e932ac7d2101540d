#include "core/link/ComBlueToothSet.h"

#include <cstdint>

namespace fieldcore {

CComBlueToothSet::CComBlueToothSet(SettingsRoots& roots) : m_reg(roots)
{
    m_reg.SetRootKey(RootKey::LocalMachine, 0);
    m_reg.SetBasePath(L"Software\\CorvaneTS Software\\Wexmain");
}

int CComBlueToothSet::ReadReg()
{
    constexpr std::uint32_t kCablePort = 1;
    std::uint32_t port = kCablePort;
    m_isStored = m_reg.ReadNumber(L"Data\\System\\Rtk", L"GpsPort", port, kCablePort) == 1;
    m_connectPort = static_cast<int>(port);
    if (port == kCablePort) {
        m_way = Cable;
    } else {
        m_way = BlueTooth;
        m_blueToothPort = m_connectPort;
    }
    return 1;
}

} // namespace fieldcore
