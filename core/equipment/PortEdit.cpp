#include "core/equipment/PortEdit.h"

#include "core/link/Command.h"
#include "core/resources/StringTable.h"
#include "core/settings/Setting.h"

#include <utility>

namespace fieldcore {

namespace {

/// With the values of a port: which of them a receiver was told last, and its serial number.
constexpr KnownSetting kTold = L"GPS\\Com\\Com*\\Told";

PortSettings LineWithFlagsOf(CComPrmSet set)
{
    set.ConvFlag2Data();
    return set.Line();
}

} // namespace

int PortSetText(PortSet outcome)
{
    constexpr int kTexts[] = {0, text::kComRefused, text::kComNoAnswer, text::kComNotStored};
    return kTexts[static_cast<std::size_t>(outcome)];
}

int PortKnownText(PortKnown known)
{
    constexpr int kTexts[] = {0, text::kComKnownWaiting, text::kComKnownDefault,
                              text::kComKnownStored};
    return kTexts[static_cast<std::size_t>(known)];
}

int ForgetPorts(SettingsRoots& roots)
{
    int forgotten = 1;
    for (int port = 1; port <= CComPrmSet::kMostPorts; ++port) {
        forgotten &= Store(HostReg(roots), kTold, L"", std::to_wstring(port));
    }
    return forgotten;
}

PortEdit::PortEdit(int linkPort, SettingsRoots& roots, const std::optional<PortSettings>& link,
                   std::wstring receiver)
    : m_roots(roots),
      m_linkPort(linkPort >= 1 && linkPort <= CComPrmSet::kMostPorts ? linkPort : 0),
      m_receiver(std::move(receiver)), m_link(roots), m_ports{Port(roots), Port(roots), Port(roots)}
{
    // What cannot be read is the default.
    m_link.ReadRegCommPrm(CComPrmSet::kLinkPort);
    m_link.ConvData2Flag();
    if (link) {
        m_link.SetLine(*link);
    }
    m_link.ConvFlag2Data();
    for (int port = 1; port <= CComPrmSet::kMostPorts; ++port) {
        Read(port);
    }
}

void PortEdit::Read(int port)
{
    Port& read = Of(port);
    read.set.ReadRegCommPrm(port);
    read.set.ConvData2Flag();
    const std::wstring told = StoredText(HostReg(m_roots), kTold, std::to_wstring(port));
    const bool isShown = told.starts_with(read.set.GetPrmString() + L" ");
    if (port == m_linkPort) {
        read.set.SetLine(m_link.Line());
    } else if (told.empty()) {
        const bool isDefault = read.set.HasFlagsOf(CComPrmSet(m_roots));
        read.known = isDefault ? PortKnown::Default : PortKnown::Waiting;
    } else if (!isShown) {
        read.known = PortKnown::Waiting;
    } else if (told != Told(read.set)) {
        read.known = PortKnown::Stored;
    }
    read.before = read.set.GetPrmString();
}

bool PortEdit::IsDue(int port) const
{
    return Of(port).known == PortKnown::Waiting || Of(port).set.GetPrmString() != Of(port).before;
}

PortSet PortEdit::Set(int port, CCommand* command)
{
    CComPrmSet& set = At(port);
    const bool isLink = port == m_linkPort;
    if (isLink && !MovesLink()) {
        return PortSet::Done;
    }
    set.ConvFlag2Data();
    const bool isConnected = command != nullptr && command->IsPortOpen() != 0;
    if (isConnected &&
        command->SetReceiverPort(static_cast<std::uint8_t>(port), LineWithFlagsOf(set)) == 0) {
        if (command->Fault() == CommandFault::Refused) {
            return PortSet::Refused;
        }
        if (!isLink || command->Fault() != CommandFault::TimedOut) {
            return PortSet::NoAnswer;
        }
    }
    const bool isStored = set.WriteRegCommPrm(port) == 1 &&
                          (!isConnected || isLink ||
                           Store(HostReg(m_roots), kTold, Told(set), std::to_wstring(port)) == 1);
    return isStored ? PortSet::Done : PortSet::NotStored;
}

bool PortEdit::MovesLink() const
{
    return m_linkPort != 0 && !m_link.HasFlagsOf(Of(m_linkPort).set);
}

PortSettings PortEdit::LinkWanted() const
{
    return LineWithFlagsOf(m_linkPort != 0 ? Of(m_linkPort).set : m_link);
}

bool PortEdit::IsLinkChanged() const
{
    if (m_linkPort == 0) {
        return false;
    }
    CComPrmSet stored(m_roots);
    stored.ReadRegCommPrm(CComPrmSet::kLinkPort);
    stored.ConvData2Flag();
    return !stored.HasFlagsOf(Of(m_linkPort).set);
}

int PortEdit::KeepLink()
{
    if (m_linkPort == 0) {
        return 0;
    }
    CComPrmSet& set = At(m_linkPort);
    set.ConvFlag2Data();
    return StoreLink(set);
}

int PortEdit::TakeLinkBack()
{
    return m_linkPort != 0 && StoreLink(m_link) == 1 && m_link.WriteRegCommPrm(m_linkPort) == 1 ? 1
                                                                                                : 0;
}

PortSettings PortEdit::LinkBefore() const
{
    return LineWithFlagsOf(m_link);
}

} // namespace fieldcore
