#include "cli/Command.h"
#include "cli/Options.h"
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
        return Value::Word("in-use", Translated(report.text));
    case PortTrouble::NotAllowed:
    case PortTrouble::LoginNeeded:
        return Value::Word("not-allowed", Translated(report.text));
    case PortTrouble::Absent:
    case PortTrouble::Unplugged:
    case PortTrouble::NotADevice:
    case PortTrouble::NotSerial:
    case PortTrouble::NoHardware:
        break;
    }
    return Value::Word("unusable", Translated(report.text));
}

ExitCode Run(const Context& context)
{
    const SystemRoots& roots = context.world.roots;
    Report::Table table{"ports",
                        Worded(text::kSayNoSerial),
                        {{"path", text::kHeadPort},
                         {"com", "COM"},
                         {"description", text::kHeadWhatItIs},
                         {"stablePath", text::kHeadStableName},
                         {"state", text::kHeadState}},
                        {}};
    for (const SerialPort& port :
         ListSerialPorts(KnownPortNames(context.world, context.output), roots)) {
        table.rows.push_back({Value::Text(port.path), Value::Text(port.comName),
                              Value::Word(port.description, Translated(port.description)),
                              Value::Text(port.stablePath),
                              State(ReportPort(port.path, 0, roots))});
    }
    Report report;
    report.AddTable(std::move(table));
    return context.output.Done(report);
}

} // namespace

Command AddPortsCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(program, "ports", text::kHelpPorts);
    CLI::App& show = AddParser(parser, "show", text::kHelpPortsShow);
    CLI::App& set = AddParser(parser, "set", text::kHelpPortsSet);
    const auto options = std::make_shared<PortParameterOptions>();
    set.add_option("NUMBER", options->number, Worded(text::kOptPortNumber))
        ->check(CLI::Range(CComPrmSet::kLinkPort, CComPrmSet::kMostPorts).description(""))
        ->type_name("")
        ->required();
    AddText(set, "PARAMETERS", options->parameters, "", text::kOptParameters)->required();
    AddDryRun(set, text::kOptPortsDry);
    options->port.AddTo(set);
    return {&parser, [options, &show, &set](const Context& context) {
                return show.parsed()  ? ShowPortParameters(context)
                       : set.parsed() ? SetPortParameters(context, *options)
                                      : Run(context);
            }};
}

} // namespace fieldcore::cli
