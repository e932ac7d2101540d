#include "cli/Command.h"
#include "cli/PortParameters.h"
#include "cli/PortSession.h"
#include "cli/Wording.h"

#include "core/link/ComPrmSet.h"
#include "core/platform/PortList.h"
#include "core/platform/PortReport.h"
#include "core/resources/StringTable.h"

#include <memory>
#include <utility>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

Value State(const PortReport& report)
{
    switch (report.trouble) {
    case PortTrouble::None:
        return Value::Word("free", Worded(text::kWordFree));
    case PortTrouble::InUse:
        return Value::Word("in-use", report.text);
    case PortTrouble::NotAllowed:
    case PortTrouble::LoginNeeded:
        return Value::Word("not-allowed", report.text);
    case PortTrouble::Absent:
    case PortTrouble::Unplugged:
    case PortTrouble::NotADevice:
    case PortTrouble::NotSerial:
    case PortTrouble::NoHardware:
        break;
    }
    return Value::Word("unusable", report.text);
}

ExitCode Run(const Context& context)
{
    const SystemRoots& roots = context.world.roots;
    Report::Table table{"ports",
                        Worded(text::kSayNoSerial),
                        {{"path", Worded(text::kHeadPort)},
                         {"com", "COM"},
                         {"description", Worded(text::kHeadWhatItIs)},
                         {"stablePath", Worded(text::kHeadStableName)},
                         {"state", Worded(text::kHeadState)}},
                        {}};
    for (const SerialPort& port :
         ListSerialPorts(KnownPortNames(context.world, context.output), roots)) {
        table.rows.push_back({Value::Text(port.path), Value::Text(port.comName),
                              Value::Text(port.description), Value::Text(port.stablePath),
                              State(ReportPort(port.path, 0, roots))});
    }
    Report report;
    report.AddTable(std::move(table));
    return context.output.Done(report);
}

} // namespace

Command AddPortsCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(program, "ports", "The serial ports of this machine",
                                 "  fieldcore-cli ports          what is there, and who uses it\n"
                                 "  fieldcore-cli ports --json   the same for a script\n"
                                 "  fieldcore-cli ports show     how the receiver's are set\n");
    CLI::App& show = AddParser(parser, "show", "The stored parameters of the receiver's ports",
                               "  fieldcore-cli ports show\n");
    CLI::App& set = AddParser(
        parser, "set", "Set a port of the receiver, or the controller's own line",
        "  fieldcore-cli ports set 2 115200-8-None-1-None --port COM1   port 2 of the receiver\n"
        "  fieldcore-cli ports set 1 57600 --port COM1   its rate alone; the line follows\n"
        "  fieldcore-cli ports set 1 57600 --port COM1 --dry-run   what would that change?\n"
        "  fieldcore-cli ports set 0 38400               the line of the controller, stored "
        "only\n");
    const auto options = std::make_shared<PortParameterOptions>();
    set.add_option("NUMBER", options->number, "1 to 3, or 0 for the controller's own line")
        ->check(CLI::Range(CComPrmSet::kLinkPort, CComPrmSet::kMostPorts).description(""))
        ->type_name("")
        ->required();
    set.add_option("PARAMETERS", options->parameters, "RATE-BITS-PARITY-STOPBITS-FLOW or its front")
        ->type_name("")
        ->required();
    AddDryRun(set, "Connect, but tell and store nothing; show what would be");
    options->port.AddTo(set);
    return {&parser, [options, &show, &set](const Context& context) {
                return show.parsed()  ? ShowPortParameters(context)
                       : set.parsed() ? SetPortParameters(context, *options)
                                      : Run(context);
            }};
}

} // namespace fieldcore::cli
