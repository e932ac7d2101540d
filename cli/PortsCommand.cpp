#include "cli/Command.h"
#include "cli/PortSession.h"

#include "core/platform/PortList.h"
#include "core/platform/PortReport.h"

#include <utility>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

Value State(const PortReport& report)
{
    switch (report.trouble) {
    case PortTrouble::None:
        return Value::Word("free", "free");
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
                        "This machine has no serial port. Plug in an adapter, or try the "
                        "simulated receiver: --port sim:",
                        {{"path", "PORT"},
                         {"com", "COM"},
                         {"description", "WHAT IT IS"},
                         {"stablePath", "STABLE NAME"},
                         {"state", "STATE"}},
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
                                 "  fieldcore-cli ports --json   the same for a script\n");
    return {&parser, Run};
}

} // namespace fieldcore::cli
