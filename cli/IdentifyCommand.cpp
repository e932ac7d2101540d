#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/Wording.h"

#include "core/link/ComPrmSet.h"
#include "core/link/ReceiverTypes.h"
#include "core/resources/StringTable.h"

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

Value ParityValue(int code)
{
    return code == 2   ? Term("even", text::kWordEven)
           : code == 1 ? Term("odd", text::kWordOdd)
                       : Term("none", text::kWordNone);
}

void AddRecord(Report& report, const IdentificationRecord& record)
{
    const ReceiverType* const type = FindReceiverType(record.typeNumber);
    const wchar_t* const model = type != nullptr ? type->model : nullptr;
    report.Add("model", text::kLabelModel,
               model != nullptr ? Value::Text(std::wstring_view(model)) : Value::Unknown());
    report.Add("typeNumber", text::kLabelTypeNumber, Value::Integer(record.typeNumber));
    report.Add("navigationFirmware", text::kLabelNavigationFirmware,
               Value::Real(record.version, 2));
    report.Add("port", text::kLabelPortOfTheReceiver, Value::Integer(record.port));
    report.Add("baudRate", text::kLabelRate, Value::Integer(record.baudRate, "bit/s"));
    report.Add("dataBits", text::kLabelDataBits, Value::Integer(record.byteSize));
    report.Add("parity", text::kLabelParity, ParityValue(record.parity));
    report.Add("stopBits", text::kLabelStopBits, Value::Integer(record.stopBits == 2 ? 2 : 1));
    report.Add("flowControl", text::kLabelFlowControl, Value::YesNo(record.flowControl));
}

struct Options : PortOptions
{
    bool search = false;
    bool store = false;
};

Ending Run(const Context& context, const Options& options)
{
    PortSession session(context, options);
    if (const std::optional<Failure> failure = options.search ? session.Search() : session.Open()) {
        return *failure;
    }
    IdentificationRecord record;
    if (session.Command().RequestIdentity(record) == 0) {
        return session.RequestFailed();
    }
    Report report;
    AddRecord(report, record);
    if (options.search) {
        const std::uint32_t rate = session.Target().settings.baudRate;
        report.Add("answersAt", text::kLabelAnswersAt, Value::Integer(rate, "bit/s"));
        SettingsRoots roots{Folders(context.world.folders)};
        if (options.store && !context.dryRun &&
            (!roots.Store(RootKey::CurrentUser).IsKept() || SetLinkRate(rate, roots) == 0)) {
            return FileFailure(
                {text::kSayRateNotStored, {roots.File(RootKey::CurrentUser).string()}},
                "fieldcore-cli doctor");
        }
        report.Add("stored", text::kLabelStored, Value::YesNo(options.store && !context.dryRun));
    }
    return options.store ? Kept(context, report) : context.output.Done(report);
}

} // namespace

Command AddIdentifyCommand(CLI::App& program)
{
    return AddCommand<Options>(
        program, {"identify", text::kHelpIdentify,
                  [](CLI::App& parser, Options& options) {
                      options.AddTo(parser);
                      CLI::Option* const search =
                          AddFlag(parser, "--search", options.search, text::kOptSearch);
                      AddFlag(parser, "--store", options.store, text::kOptStoreRate)->needs(search);
                  },
                  Run});
}

} // namespace fieldcore::cli
