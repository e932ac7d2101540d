#pragma once

#include "core/link/SerialLink.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace CLI {
class App;
}

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

} // namespace fieldcore::cli
