#include "cli/PortOptions.h"

#include "cli/Options.h"

#include "core/platform/FastClock.h"

#include <chrono>
#include <cmath>
#include <map>
#include <set>

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

    command.option_defaults()->group("Port");
    // What there is to choose from is told by the texts; the parser's own description of it is hard
    // to read.
    const auto add = [&command](const char* name, auto& value, const char* type,
                                const char* purpose, CLI::Validator choices) {
        command.add_option(name, value, purpose)
            ->transform(choices.description(""))
            ->type_name(type);
    };
    AddText(command, "-p,--port", port, "PORT",
            "COM1, a path, sim: or sim:SCENARIO (else $FIELDCORE_PORT, else as stored)");
    add("--baud", baudRate, "RATE",
        "Rate, bit/s: 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200 or 230400",
        CLI::IsMember(rates));
    add("--bits", dataBits, "N", "Data bits, 7 or 8", CLI::IsMember(std::set<int>{7, 8}));
    add("--parity", parity, "PARITY", "none, odd or even",
        CLI::CheckedTransformer(parities, CLI::ignore_case));
    add("--stop-bits", stopBits, "N", "Stop bits, 1 or 2", CLI::IsMember(std::set<int>{1, 2}));
    add("--flow", flow, "FLOW", "Handshake: none, xonxoff, rtscts or dsrdtr",
        CLI::CheckedTransformer(flows, CLI::ignore_case));
    AddSessionTo(command);
}

void PortOptions::AddSessionTo(CLI::App& command)
{
    command.option_defaults()->group("Port");
    AddNumber(command, "--timeout", timeoutS, {0.05, 600.0, "s", "2"}, "SECONDS",
              "How long an answer may take");
    AddText(command, "--log", log, "FILE",
            "Append all that passes the line to this file; see trace");
    AddNumber(command, "--speed", speed,
              {FastClock::kLowestSpeed, FastClock::kHighestSpeed, "times", "1"}, "N",
              "How fast time runs with sim:");
    command.option_defaults()->group("Options");
}

} // namespace fieldcore::cli
