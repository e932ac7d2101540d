#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/TerminalHost.h"

#include "core/link/ReceiverTypes.h"

#include <memory>
#include <string>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

Value ParityValue(int code)
{
    return code == 2   ? Value::Word("even", "even")
           : code == 1 ? Value::Word("odd", "odd")
                       : Value::Word("none", "none");
}

void AddRecord(Report& report, const IdentificationRecord& record)
{
    const ReceiverType* const type = FindReceiverType(record.typeNumber);
    const wchar_t* const model = type != nullptr ? type->model : nullptr;
    report.Add("model", "model",
               model != nullptr ? Value::Text(std::wstring_view(model)) : Value::Unknown());
    report.Add("typeNumber", "type number", Value::Integer(record.typeNumber));
    report.Add("navigationFirmware", "navigation firmware", Value::Real(record.version, 2));
    report.Add("port", "port of the receiver", Value::Integer(record.port));
    report.Add("baudRate", "rate", Value::Integer(record.baudRate, "bit/s"));
    report.Add("dataBits", "data bits", Value::Integer(record.byteSize));
    report.Add("parity", "parity", ParityValue(record.parity));
    report.Add("stopBits", "stop bits", Value::Integer(record.stopBits == 2 ? 2 : 1));
    report.Add("flowControl", "flow control", Value::YesNo(record.flowControl));
}

ExitCode Run(const Context& context, const PortOptions& options)
{
    TerminalHost host(context.world, context.output);
    PortSession session(context.world, context.output, host, options);
    if (const std::optional<Failure> failure = session.Open()) {
        return context.output.Failed(*failure);
    }
    IdentificationRecord record;
    if (session.Command().RequestIdentity(record) == 0) {
        return context.output.Failed(session.RequestFailed());
    }
    Report report;
    AddRecord(report, record);
    return context.output.Done(report);
}

} // namespace

Command AddIdentifyCommand(CLI::App& program)
{
    CLI::App& parser =
        AddParser(program, "identify", "Ask who is there with a BREAK, whatever the rate",
                  "  fieldcore-cli identify --port /dev/ttyUSB0   a receiver whose port settings "
                  "are unknown\n"
                  "  fieldcore-cli identify --port sim:pica       a simulated one\n");
    auto options = std::make_shared<PortOptions>();
    options->AddTo(parser);
    return {&parser, [options](const Context& context) { return Run(context, *options); }};
}

} // namespace fieldcore::cli
