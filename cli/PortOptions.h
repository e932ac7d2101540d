#pragma once

#include "core/link/SerialLink.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace CLI {
class App;
}

namespace fieldcore::cli {

/// Which port, and how it is run.
struct PortOptions
{
    std::string port;               ///< empty: $FIELDCORE_PORT
    std::uint32_t baudRate = 38400; ///< bit/s
    int dataBits = 8;
    int parity = 0; ///< 0 none, 1 odd, 2 even
    int stopBits = 1;
    FlowControl flow = FlowControl::None;
    double timeoutS = 2.0;     ///< how long an answer may take
    std::filesystem::path log; ///< every frame is appended to it; empty: none
    double speed = 1.0;        ///< of time, with the simulator

    /// The same for the library.
    [[nodiscard]] PortSettings Settings() const;

    /// Gives a command the options of a port. This object must outlive the parsing.
    void AddTo(CLI::App& command);
    /// Only those that fit a simulated port as well as a real one: time-out, log and speed.
    void AddSessionTo(CLI::App& command);
};

} // namespace fieldcore::cli
