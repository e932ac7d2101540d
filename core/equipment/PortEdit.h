#pragma once

#include "core/link/ComPrmSet.h"

#include <array>
#include <cstddef>
#include <optional>

namespace fieldcore {

class CCommand;

/// How setting a port ended.
enum class PortSet
{
    Done,      ///< stored, and sent to the receiver if one is connected
    Refused,   ///< by the receiver; nothing was stored
    NoAnswer,  ///< from the receiver; nothing was stored
    NotStored, ///< sent, but the settings cannot be written
};

/// What to tell the user; empty for Done. A format: the number of the port.
[[nodiscard]] int PortSetText(PortSet outcome);

/// The parameters of the receiver's ports while somebody changes them, from the settings to the
/// receiver and back. The port through which the controller talks is special: what it has is what
/// works, so it is shown with the parameters of the controller's own link, and when it changes the
/// link changes, too. The thread that uses the channel.
class PortEdit
{
public:
    /// Reads all ports.
    /// @param linkPort  the port of the receiver that the controller uses; 0 or above kMostPorts:
    ///                  none of those that can be set
    /// @param roots     must outlive the object
    /// @param link      how the link runs, if not as it is stored
    explicit PortEdit(int linkPort, SettingsRoots& roots = SettingsRoots::Instance(),
                      const std::optional<PortSettings>& link = std::nullopt);

    /// @param port  1 to CComPrmSet::kMostPorts
    [[nodiscard]] CComPrmSet& At(int port)
    {
        return m_ports.at(static_cast<std::size_t>(port - 1));
    }
    [[nodiscard]] int LinkPort() const { return m_linkPort; }

    /// Sets a port to its flags: tells the receiver, then stores them. The controller's own port is
    /// left alone as long as nothing about it changes. An answer that is lost when that port does
    /// change counts as given: FollowLink() finds out.
    /// @param command  null, or its port closed: there is no receiver, the flags are stored only
    [[nodiscard]] PortSet Set(int port, CCommand* command);

    /// Whether the controller's port is to run otherwise than the link did when this was made.
    [[nodiscard]] bool MovesLink() const;
    /// Whether the stored link differs from the flags of the controller's port.
    [[nodiscard]] bool IsLinkChanged() const;
    /// Stores the flags of the controller's port as the link's. @return 1 or 0
    int KeepLink();
    /// Takes it back: the link and its port are as they were when this was made. @return 1 or 0
    int TakeLinkBack();
    /// The link as it was when this was made.
    [[nodiscard]] PortSettings LinkBefore() const;

private:
    SettingsRoots& m_roots;
    const int m_linkPort;
    CComPrmSet m_link;
    std::array<CComPrmSet, CComPrmSet::kMostPorts> m_ports;
};

} // namespace fieldcore
