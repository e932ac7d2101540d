#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/link/ComPrmSet.h"
#include "core/link/ReceiverTypes.h"
#include "core/resources/StringTable.h"

#include <memory>
#include <string>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

Value ParityValue(int code)
{
    return code == 2   ? Value::Word("even", Worded(text::kWordEven))
           : code == 1 ? Value::Word("odd", Worded(text::kWordOdd))
                       : Value::Word("none", Worded(text::kWordNone));
}

void AddRecord(Report& report, const IdentificationRecord& record)
{
    const ReceiverType* const type = FindReceiverType(record.typeNumber);
    const wchar_t* const model = type != nullptr ? type->model : nullptr;
    report.Add("model", Worded(text::kLabelModel),
               model != nullptr ? Value::Text(std::wstring_view(model)) : Value::Unknown());
    report.Add("typeNumber", Worded(text::kLabelTypeNumber), Value::Integer(record.typeNumber));
    report.Add("navigationFirmware", Worded(text::kLabelNavigationFirmware),
               Value::Real(record.version, 2));
    report.Add("port", Worded(text::kLabelPortOfTheReceiver), Value::Integer(record.port));
    report.Add("baudRate", Worded(text::kLabelRate), Value::Integer(record.baudRate, "bit/s"));
    report.Add("dataBits", Worded(text::kLabelDataBits), Value::Integer(record.byteSize));
    report.Add("parity", Worded(text::kLabelParity), ParityValue(record.parity));
    report.Add("stopBits", Worded(text::kLabelStopBits),
               Value::Integer(record.stopBits == 2 ? 2 : 1));
    report.Add("flowControl", Worded(text::kLabelFlowControl), Value::YesNo(record.flowControl));
}

struct Options : PortOptions
{
    bool search = false;
    bool store = false;
};

ExitCode Run(const Context& context, const Options& options)
{
    TerminalHost host(context.world, context.output);
    PortSession session(context.world, context.output, host, options);
    if (const std::optional<Failure> failure = options.search ? session.Search() : session.Open()) {
        return context.output.Failed(*failure);
    }
    IdentificationRecord record;
    if (session.Command().RequestIdentity(record) == 0) {
        return context.output.Failed(session.RequestFailed());
    }
    Report report;
    AddRecord(report, record);
    if (options.search) {
        const std::uint32_t rate = session.Target().settings.baudRate;
        report.Add("answersAt", Worded(text::kLabelAnswersAt), Value::Integer(rate, "bit/s"));
        SettingsRoots roots{Folders(context.world.folders)};
        if (options.store && !context.dryRun &&
            (!roots.Store(RootKey::CurrentUser).IsKept() || SetLinkRate(rate, roots) == 0)) {
            return context.output.Failed(FileFailure(
                "The rate could not be stored: " + roots.File(RootKey::CurrentUser).string() +
                    " cannot be written, or nothing but --baud has it.",
                "fieldcore-cli doctor"));
        }
        report.Add("stored", Worded(text::kLabelStored),
                   Value::YesNo(options.store && !context.dryRun));
    }
    return options.store ? Kept(context, report) : context.output.Done(report);
}

} // namespace

Command AddIdentifyCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    return AddCommand(
        program,
        {"identify", "Ask who is there with a BREAK",
         "  fieldcore-cli identify --port sim:pica                 a simulated receiver\n"
         "  fieldcore-cli identify --port /dev/ttyUSB0 --search    one whose rate is unknown\n"
         "  fieldcore-cli identify --search --store                and keep the rate for the next "
         "time\n",
         [options](CLI::App& parser) {
             options->AddTo(parser);
             CLI::Option* const search =
                 parser.add_flag("--search", options->search, "Try one rate after the other");
             parser.add_flag("--store", options->store, "Store the rate that --search finds")
                 ->needs(search);
         },
         [options](const Context& context) { return Run(context, *options); }});
}

} // namespace fieldcore::cli
