#pragma once

#include "core/platform/SystemRoots.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace fieldcore {

enum class PortKind
{
    Device,   ///< something to open by its path
    Simulator ///< the program that asks starts a simulated receiver
};

/// What a port name means.
struct NamedPort
{
    PortKind kind = PortKind::Device;
    std::string path;     ///< of a Device
    std::string scenario; ///< of a Simulator; empty: the one it plays by itself
    int com = 0;          ///< the number that a Device is named by; 0: by its path
};

/// Why a name is none of a port.
enum class PortNameFault
{
    None,
    TooLong,
    ControlCharacter,
    Empty,
    NoComNumber, ///< COM with something else behind it than 1 to PortNames::kMaxCom
    Unknown
};

/// A port, or why the name is none.
struct PortNameResult
{
    std::optional<NamedPort> port;
    PortNameFault why = PortNameFault::None;
    std::string fault; ///< the same in plain English; empty if there is a port
};

/// Knows which device is meant by COM1, COM2 and so on: the one assigned to it, else the built-in
/// port of that place (COM1 is ttyS0). One thread at a time.
class PortNames
{
public:
    /// The highest COM number.
    static constexpr int kMaxCom = 256;

    /// @param roots  where devices are looked for
    explicit PortNames(SystemRoots roots = {});

    /// Lets COM @p com mean @p path from now on. An adapter is remembered by its stable name, so
    /// that it stays the same port when it is plugged in elsewhere.
    /// @return false, and nothing changes, if the number is not 1 to kMaxCom or the path is not
    /// absolute
    [[nodiscard]] bool Assign(int com, const std::string& path);

    /// What was assigned, by COM number.
    [[nodiscard]] const std::map<int, std::string>& Assigned() const { return m_assigned; }

    /// The device that COM @p com means.
    /// @param com  1 to kMaxCom
    [[nodiscard]] std::string DevicePath(int com) const;

    /// The COM number that means @p path, whatever name of the device it is.
    [[nodiscard]] std::optional<int> ComNumber(const std::string& path) const;

    /// Reads "COM3" (in any case, with or without a colon), a path (anything with a slash), "sim:"
    /// or "sim:SCENARIO". Blanks around it are ignored. Whether the port is there is not asked.
    [[nodiscard]] PortNameResult Parse(std::string_view name) const;

    /// The name of the device below /dev/serial/by-id, else @p path as it is.
    [[nodiscard]] std::string StablePath(const std::string& path) const;

private:
    SystemRoots m_roots;
    std::map<int, std::string> m_assigned;
};

} // namespace fieldcore
