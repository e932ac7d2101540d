#include "cli/PortOptions.h"

#include <chrono>
#include <cmath>
#include <map>
#include <set>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

PortSettings PortOptions::Settings(const PortSettings& stored) const
{
    PortSettings settings = stored;
    settings.baudRate = baudRate.value_or(stored.baudRate);
    settings.byteSize = static_cast<std::uint8_t>(dataBits.value_or(stored.byteSize));
    settings.parity = static_cast<std::uint8_t>(parity.value_or(stored.parity));
    if (stopBits) {
        settings.stopBits = *stopBits == 2 ? 2 : 0;
    }
    settings.flowControl = flow.value_or(stored.flowControl);
    settings.replyTimeout = std::chrono::milliseconds(std::lround(timeoutS * 1000.0));
    return settings;
}

void PortOptions::AddTo(CLI::App& command)
{
    const std::set<std::uint32_t> rates{1200,  2400,  4800,   9600,  19200,
                                        38400, 57600, 115200, 230400};
    const std::map<std::string, FlowControl> flows{{"none", FlowControl::None},
                                                   {"xonxoff", FlowControl::Software},
                                                   {"rtscts", FlowControl::RtsCts},
                                                   {"dsrdtr", FlowControl::DsrDtr}};
    const std::map<std::string, int> parities{{"none", 0}, {"odd", 1}, {"even", 2}};

    // Limits are told by the texts; the parser's own description of them is hard to read.
    const auto add = [&command](const char* name, auto& value, const char* type,
                                const char* purpose, CLI::Validator limits) {
        command.add_option(name, value, purpose)
            ->transform(limits.description(""))
            ->type_name(type)
            ->group("Port");
    };
    command
        .add_option("-p,--port", port,
                    "COM1, a path, sim: or sim:SCENARIO (else $FIELDCORE_PORT, else as stored)")
        ->type_name("PORT")
        ->group("Port");
    add("--baud", baudRate, "RATE", "Rate, 1200 to 230400 bit/s", CLI::IsMember(rates));
    add("--bits", dataBits, "N", "Data bits, 7 or 8", CLI::Range(7, 8));
    add("--parity", parity, "PARITY", "none, odd or even",
        CLI::CheckedTransformer(parities, CLI::ignore_case));
    add("--stop-bits", stopBits, "N", "1 or 2", CLI::Range(1, 2));
    add("--flow", flow, "FLOW", "Handshake: none, xonxoff, rtscts or dsrdtr",
        CLI::CheckedTransformer(flows, CLI::ignore_case));
    AddSessionTo(command);
}

void PortOptions::AddSessionTo(CLI::App& command)
{
    command.add_option("--timeout", timeoutS, "How long an answer may take (2)")
        ->check(CLI::Range(0.05, 600.0).description(""))
        ->type_name("SECONDS")
        ->group("Port");
    command.add_option("--log", log, "Append all that passes the line to this file; see trace")
        ->type_name("FILE")
        ->group("Port");
    command.add_option("--speed", speed, "Let time run this many times as fast; only with sim:")
        ->check(CLI::Range(0.1, 1000.0).description(""))
        ->type_name("N")
        ->group("Port");
}

} // namespace fieldcore::cli
