#pragma once

#include "core/platform/PortList.h"
#include "core/platform/PortReport.h"

#include <string>
#include <utility>
#include <vector>

namespace fieldcore {

/// Something that a receiver can be reached through, to be chosen from a list.
struct PortChoice
{
    std::string name;    ///< that PortNames::Parse() reads; the same after plugging in again
    std::wstring title;  ///< what it is, for the user
    std::wstring place;  ///< COM number and path, for the user; empty for the simulator
    std::wstring state;  ///< whether it can be used, for the user
    bool usable = false; ///< nothing is known that prevents it

    bool operator==(const PortChoice&) const = default;
};

/// The state of a port, for the user.
[[nodiscard]] const wchar_t* PortStateText(PortTrouble trouble);

/// The ports of this machine and, last, the simulated receiver. Opens nothing; looks through files
/// of the system and all processes, which takes some milliseconds.
[[nodiscard]] std::vector<PortChoice> ListPortChoices(const PortNames& names,
                                                      const SystemRoots& roots = {});

/// Whether two names mean the same choice: any scenario is the simulator, and a device is the same
/// by its COM number, its path and its stable path.
[[nodiscard]] bool IsSamePort(const PortNames& names, const std::string& a, const std::string& b);

} // namespace fieldcore
