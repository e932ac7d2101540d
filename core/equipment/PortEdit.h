#pragma once

#include "core/link/ComPrmSet.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace fieldcore {

class CCommand;

/// How setting a port ended.
enum class PortSet
{
    Done,      ///< stored, and sent to the receiver if one is connected
    Refused,   ///< by the receiver; nothing was stored
    NoAnswer,  ///< from the receiver; nothing was stored
    NotStored, ///< the settings cannot be written; a receiver that is connected has it
};

/// What to tell the user; 0 for Done. A format: the number of the port.
[[nodiscard]] int PortSetText(PortSet outcome);

/// What is known of how the receiver runs a port, beside what is shown for it.
enum class PortKnown
{
    Same,    ///< it runs so: the controller talks through it, or has set it so
    Waiting, ///< it does not: what is shown was chosen when no receiver was connected
    Default, ///< nothing, and what is shown is what nobody has chosen
    Stored,  ///< nothing, and what is shown is what another receiver was set to
};

/// What to tell the user of it; 0 for Same.
[[nodiscard]] int PortKnownText(PortKnown known);

/// Forgets what receivers were told: one was returned to its factory settings, and what is stored
/// for its ports waits to be sent again. @return 1, or 0 if it could not be stored
int ForgetPorts(SettingsRoots& roots);

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
    /// @param receiver  serial number of the one that is, or was last, connected: what is known of
    ///                  a port is known of one receiver
    explicit PortEdit(int linkPort, SettingsRoots& roots,
                      const std::optional<PortSettings>& link = std::nullopt,
                      std::wstring receiver = {});

    /// @param port  1 to CComPrmSet::kMostPorts
    [[nodiscard]] CComPrmSet& At(int port) { return Of(port).set; }
    [[nodiscard]] int LinkPort() const { return m_linkPort; }

    /// What is known of a port, as of when this was made.
    [[nodiscard]] PortKnown Known(int port) const { return Of(port).known; }
    /// Whether there is anything to set: the flags are others than when this was made, or it is
    /// known that the receiver has others. What only might be otherwise is the user's to touch.
    [[nodiscard]] bool IsDue(int port) const;

    /// Sets a port to its flags: tells the receiver, then stores them. The controller's own port is
    /// left alone as long as nothing about it changes. An answer that is lost when that port does
    /// change counts as given: FollowLink() finds out.
    /// @param command  null, or its port closed: there is no receiver, the flags are stored only
    [[nodiscard]] PortSet Set(int port, CCommand* command);

    /// Whether the controller's port is to run otherwise than the link did when this was made.
    [[nodiscard]] bool MovesLink() const;
    /// How the controller's port is to run, by its flags.
    [[nodiscard]] PortSettings LinkWanted() const;
    /// Whether the stored link differs from the flags of the controller's port.
    [[nodiscard]] bool IsLinkChanged() const;
    /// Stores the flags of the controller's port as the link's. @return 1 or 0
    int KeepLink();
    /// Takes it back: the link and its port are as they were when this was made. @return 1 or 0
    int TakeLinkBack();
    /// The link as it was when this was made.
    [[nodiscard]] PortSettings LinkBefore() const;

private:
    struct Port
    {
        explicit Port(SettingsRoots& roots) : set(roots) {}
        CComPrmSet set;
        std::wstring before{}; ///< the parameters as read, in one text
        PortKnown known = PortKnown::Same;
    };
    [[nodiscard]] const Port& Of(int port) const
    {
        return m_ports.at(static_cast<std::size_t>(port - 1));
    }
    [[nodiscard]] Port& Of(int port) { return m_ports.at(static_cast<std::size_t>(port - 1)); }
    void Read(int port);
    /// The parameters of a port with the receiver that has them, as one text.
    [[nodiscard]] std::wstring Told(const CComPrmSet& set) const
    {
        return set.GetPrmString() + L" " + m_receiver;
    }

    SettingsRoots& m_roots;
    const int m_linkPort;
    const std::wstring m_receiver;
    CComPrmSet m_link;
    std::array<Port, CComPrmSet::kMostPorts> m_ports;
};

} // namespace fieldcore
