#pragma once

#include "cli/Failure.h"
#include "cli/Output.h"
#include "cli/PortOptions.h"
#include "cli/World.h"

#include "core/host/Host.h"
#include "core/link/Command.h"
#include "core/link/ConnectChoice.h"
#include "core/link/ConnectSequence.h"
#include "core/platform/FastClock.h"
#include "core/platform/Folders.h"
#include "core/platform/LogFile.h"
#include "core/platform/PortNames.h"
#include "simulator/Simulator.h"

#include <memory>
#include <optional>
#include <span>
#include <string>

namespace fieldcore::cli {

/// A port for the time of one command, with the receiver behind it: a real one, or a simulator
/// that is started for this command and ends with it.
class PortSession
{
public:
    /// All four outlive the session.
    PortSession(const World& world, Output& output, Host& host, const PortOptions& options);
    ~PortSession();
    PortSession(const PortSession&) = delete;
    PortSession& operator=(const PortSession&) = delete;

    /// Finds the port and starts the simulator if it is meant; opens nothing yet.
    [[nodiscard]] std::optional<Failure> Prepare();
    /// Prepares and opens the port.
    [[nodiscard]] std::optional<Failure> Open();
    /// Prepares, opens the port and makes sure that a receiver answers, showing each step.
    [[nodiscard]] std::optional<Failure> Connect();
    /// Prepares, looks for the rate at which the receiver answers, showing each, and opens the port
    /// with it.
    [[nodiscard]] std::optional<Failure> Search();

    /// The channel; there is one once Prepare() succeeded.
    [[nodiscard]] CCommand& Command() { return *m_command; }
    /// Where the receiver is; known once Prepare() succeeded. The line is run as the options say,
    /// and else as the settings do.
    [[nodiscard]] const ConnectTarget& Target() const { return m_target; }
    /// Why the last request failed, on the open port.
    [[nodiscard]] Failure RequestFailed() const;
    /// Counts time for the receiver: with a simulator it may run fast.
    [[nodiscard]] const Clock& GetClock() const;
    /// Null if the port is not simulated.
    [[nodiscard]] simulator::Simulator* GetSimulator() { return m_simulator.get(); }

private:
    [[nodiscard]] std::optional<Failure> FindPort();
    [[nodiscard]] std::optional<Failure> StartSimulator(const std::string& scenario);
    [[nodiscard]] Failure NotOpened(std::string detail) const;
    [[nodiscard]] std::optional<Failure> OpenLog();
    [[nodiscard]] Failure NoPortNamed() const;
    void Keep(Direction direction, std::span<const std::uint8_t> bytes);

    const World& m_world;
    Output& m_output;
    Host& m_host;
    const PortOptions& m_options;
    PortNames m_names;
    ConnectTarget m_target;
    std::unique_ptr<FastClock> m_fastClock;
    std::unique_ptr<simulator::Simulator> m_simulator; // behind its clock
    // Touched by the command's observer alone once there is one, and outliving it:
    LogFile m_log;
    bool m_logFailed = false;
    std::unique_ptr<CCommand> m_command; // behind the simulator, whose port it opens
};

/// Where the real settings are, also for a command whose own are the simulator's: they say which
/// port is meant.
[[nodiscard]] Folders RealFolders(const World& world);
/// The port of a command: what it names, else the variable FIELDCORE_PORT; empty: the stored one.
[[nodiscard]] std::string NamedPort(const World& world, const std::string& named);
/// Whether a simulated receiver is behind the port, also that of a "sim run" that started this.
/// @param port  as of NamedPort()
[[nodiscard]] bool IsSimulated(const World& world, const std::string& port);

/// Set by "sim run" for its command: the path of a port that is simulated.
inline constexpr const char* kSimulatedPort = "FIELDCORE_SIMULATED_PORT";

/// The port names of this machine and what the settings assign to them. What cannot be used of the
/// settings is told as a warning.
[[nodiscard]] PortNames KnownPortNames(const World& world, Output& output);

} // namespace fieldcore::cli
