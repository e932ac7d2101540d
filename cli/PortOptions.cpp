#include "cli/PortOptions.h"

#include "cli/Options.h"
#include "cli/Wording.h"

#include "core/platform/FastClock.h"
#include "core/resources/StringTable.h"

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

    command.option_defaults()->group(kPortGroup);
    // What there is to choose from is told by the texts; the parser's own description of it is hard
    // to read.
    const auto add = [&command](const char* name, auto& value, const char* type, int purpose,
                                CLI::Validator choices) {
        command.add_option(name, value, Worded(purpose))
            ->transform(choices.description(""))
            ->type_name(type);
    };
    AddText(command, "-p,--port", port, "PORT", text::kOptPort);
    add("--baud", baudRate, "RATE", text::kOptBaud, CLI::IsMember(rates));
    add("--bits", dataBits, "N", text::kOptBits, CLI::IsMember(std::set<int>{7, 8}));
    add("--parity", parity, "PARITY", text::kOptParity,
        CLI::CheckedTransformer(parities, CLI::ignore_case));
    add("--stop-bits", stopBits, "N", text::kOptStopBits, CLI::IsMember(std::set<int>{1, 2}));
    add("--flow", flow, "FLOW", text::kOptFlow, CLI::CheckedTransformer(flows, CLI::ignore_case));
    AddSessionTo(command);
}

void PortOptions::AddSessionTo(CLI::App& command)
{
    command.option_defaults()->group(kPortGroup);
    AddNumber(command, "--timeout", timeoutS, {0.05, 600.0, "s", "2"}, "SECONDS",
              text::kOptTimeout);
    AddText(command, "--log", log, "FILE", text::kOptLog);
    AddNumber(command, "--speed", speed,
              {FastClock::kLowestSpeed, FastClock::kHighestSpeed, Worded(text::kUnitTimes), "1"},
              "N", text::kOptSpeed);
    command.option_defaults()->group("Options");
}

} // namespace fieldcore::cli
