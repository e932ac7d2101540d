#pragma once

#include "cli/TerminalHost.h"

#include "core/link/Command.h"
#include "core/link/Connect.h"
#include "core/link/ConnectChoice.h"
#include "core/link/SerialLink.h"
#include "core/platform/FastClock.h"
#include "core/platform/LogFile.h"
#include "core/platform/PortNames.h"
#include "simulator/Simulator.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace fieldcore::cli {

/// Which port, and how it is run.
struct PortOptions
{
    std::string port; ///< empty: $FIELDCORE_PORT, else the one of the settings
    // The line; what is not given is as the settings have it.
    std::optional<std::uint32_t> baudRate; ///< bit/s
    std::optional<int> dataBits;
    std::optional<int> parity; ///< 0 none, 1 odd, 2 even
    std::optional<int> stopBits;
    std::optional<FlowControl> flow;
    double timeoutS = 2.0;     ///< how long an answer may take
    std::filesystem::path log; ///< every frame is appended to it; empty: none
    double speed = 1.0;        ///< of time, with the simulator

    /// The same for the library.
    /// @param stored  the line of the settings
    [[nodiscard]] PortSettings Settings(const PortSettings& stored) const;

    /// Gives a command the options of a port. This object must outlive the parsing.
    void AddTo(CLI::App& command);
    /// Only those that fit a simulated port as well as a real one: time-out, log and speed.
    void AddSessionTo(CLI::App& command);
};

/// A port for the time of one command, with the receiver behind it: a real one, or a simulator
/// that is started for this command and ends with it.
class PortSession
{
public:
    /// Both outlive the session.
    /// @param hasAgreed  as of TerminalHost
    PortSession(const Context& context, const PortOptions& options, bool hasAgreed = false);
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
    [[nodiscard]] TerminalHost& GetHost() { return m_host; }
    /// Null if the port is not simulated.
    [[nodiscard]] simulator::Simulator* GetSimulator() { return m_simulator.get(); }

private:
    [[nodiscard]] std::optional<Failure> FindPort();
    [[nodiscard]] std::optional<Failure> StartSimulator(const std::string& scenario);
    [[nodiscard]] std::optional<Failure> OpenFound();
    [[nodiscard]] Failure NotOpened(std::string detail) const;
    void Keep(Direction direction, std::span<const std::uint8_t> bytes);

    const World& m_world;
    Output& m_output;
    TerminalHost m_host;
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

/// The real settings, also for a command whose own are the simulator's: they say which port is
/// meant.
[[nodiscard]] SettingsRoots RealSettings(const World& world);
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
