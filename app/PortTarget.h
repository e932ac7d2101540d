#pragma once

#include "core/link/ConnectChoice.h"

#include <memory>
#include <string>

namespace fieldcore {

class CCommand;
namespace simulator {
class Simulator;
}

/// Where the port of the user's choice is reached, with the simulated receiver behind it if that is
/// meant. User-interface thread only.
class PortTarget
{
public:
    /// @param command  is closed before its simulated receiver goes; must outlive the object. Its
    ///                 settings and clock count, and its names of ports
    explicit PortTarget(CCommand& command);
    ~PortTarget();
    PortTarget(const PortTarget&) = delete;
    PortTarget& operator=(const PortTarget&) = delete;

    /// Starts the simulated receiver that is meant, unless it runs, and ends it if none is.
    /// @param port  name as the user writes it
    /// @return as FindTarget(), with the port of the simulated receiver in place of its scenario
    [[nodiscard]] FoundTarget Resolve(const std::string& port);

    [[nodiscard]] bool IsSimulated() const { return m_simulator != nullptr; }
    /// What the simulated receiver plays; empty without one.
    [[nodiscard]] const std::string& Scenario() const { return m_scenario; }

private:
    /// @return 0, or the string-table number of the cause
    int StartSimulator(const std::string& scenario, std::string& error);

    CCommand& m_command;
    std::unique_ptr<simulator::Simulator> m_simulator; // null: a real port
    std::string m_scenario;
};

} // namespace fieldcore
