#pragma once

#include "core/link/ConnectSequence.h"

#include <memory>
#include <optional>
#include <string>

namespace fieldcore {

class CCommand;
class Clock;
class PortNames;
class SettingsRoots;
namespace simulator {
class Simulator;
}

/// Where the port of the user's choice is reached, with the simulated receiver behind it if that is
/// meant. User-interface thread only.
class PortTarget
{
public:
    /// All of them must outlive the object.
    /// @param command  is closed before its simulated receiver goes
    PortTarget(CCommand& command, const PortNames& names, SettingsRoots& roots, const Clock& clock);
    ~PortTarget();
    PortTarget(const PortTarget&) = delete;
    PortTarget& operator=(const PortTarget&) = delete;

    /// Starts the simulated receiver that is meant, unless it runs, and ends it if none is.
    /// @param port  name as the user writes it
    /// @return nothing, with @p fault in words for the user, if there is no such port
    [[nodiscard]] std::optional<ConnectTarget> Resolve(const std::string& port,
                                                       std::wstring& fault);

    [[nodiscard]] bool IsSimulated() const { return m_simulator != nullptr; }
    /// What the simulated receiver plays; empty without one.
    [[nodiscard]] const std::string& Scenario() const { return m_scenario; }

private:
    bool StartSimulator(const std::string& scenario, std::wstring& fault);

    CCommand& m_command;
    const PortNames& m_names;
    SettingsRoots& m_roots;
    const Clock& m_clock;
    std::unique_ptr<simulator::Simulator> m_simulator; // null: a real port
    std::string m_scenario;
};

} // namespace fieldcore
