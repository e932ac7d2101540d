#include "core/equipment/PortEdit.h"

#include "core/link/Command.h"
#include "core/resources/StringTable.h"

namespace fieldcore {

int PortSetText(PortSet outcome)
{
    switch (outcome) {
    case PortSet::Done:
        break;
    case PortSet::Refused:
        return text::kComRefused;
    case PortSet::NoAnswer:
        return text::kComNoAnswer;
    case PortSet::NotStored:
        return text::kComNotStored;
    }
    return 0;
}

PortEdit::PortEdit(int linkPort, SettingsRoots& roots, const std::optional<PortSettings>& link)
    : m_roots(roots),
      m_linkPort(linkPort >= 1 && linkPort <= CComPrmSet::kMostPorts ? linkPort : 0),
      m_link(roots), m_ports{CComPrmSet(roots), CComPrmSet(roots), CComPrmSet(roots)}
{
    // What cannot be read is the default.
    m_link.ReadRegCommPrm(CComPrmSet::kLinkPort);
    m_link.ConvData2Flag();
    if (link) {
        m_link.SetSETCOMMS({0, link->baudRate, link->byteSize, link->parity, link->stopBits,
                            static_cast<std::uint8_t>(link->flowControl), 0});
    }
    m_link.ConvFlag2Data();
    SetRS232PortParameters now;
    m_link.GetSETCOMMS(m_linkPort, now);
    for (int port = 1; port <= CComPrmSet::kMostPorts; ++port) {
        At(port).ReadRegCommPrm(port);
        At(port).ConvData2Flag();
        if (port == m_linkPort) {
            At(port).SetSETCOMMS(now);
        }
    }
}

PortSet PortEdit::Set(int port, CCommand* command)
{
    CComPrmSet& set = At(port);
    const bool isLink = port == m_linkPort;
    if (isLink && !MovesLink()) {
        return PortSet::Done;
    }
    set.ConvFlag2Data();
    SetRS232PortParameters record;
    set.GetSETCOMMS(port, record);
    if (command != nullptr && command->IsPortOpen() != 0 &&
        command->SetReceiverPort(record.port, LineOf(record)) == 0) {
        if (command->Fault() == CommandFault::Refused) {
            return PortSet::Refused;
        }
        if (!isLink || command->Fault() != CommandFault::TimedOut) {
            return PortSet::NoAnswer;
        }
    }
    return set.WriteRegCommPrm(port) == 1 ? PortSet::Done : PortSet::NotStored;
}

bool PortEdit::MovesLink() const
{
    return m_linkPort != 0 &&
           !m_link.HasFlagsOf(m_ports.at(static_cast<std::size_t>(m_linkPort - 1)));
}

bool PortEdit::IsLinkChanged() const
{
    if (m_linkPort == 0) {
        return false;
    }
    CComPrmSet stored(m_roots);
    stored.ReadRegCommPrm(CComPrmSet::kLinkPort);
    stored.ConvData2Flag();
    return !stored.HasFlagsOf(m_ports.at(static_cast<std::size_t>(m_linkPort - 1)));
}

int PortEdit::KeepLink()
{
    if (m_linkPort == 0) {
        return 0;
    }
    CComPrmSet& set = At(m_linkPort);
    set.ConvFlag2Data();
    return set.WriteRegCommPrm(CComPrmSet::kLinkPort);
}

int PortEdit::TakeLinkBack()
{
    return m_linkPort != 0 && m_link.WriteRegCommPrm(CComPrmSet::kLinkPort) == 1 &&
                   m_link.WriteRegCommPrm(m_linkPort) == 1
               ? 1
               : 0;
}

PortSettings PortEdit::LinkBefore() const
{
    SetRS232PortParameters record;
    m_link.GetSETCOMMS(CComPrmSet::kLinkPort, record);
    return LineOf(record);
}

} // namespace fieldcore
