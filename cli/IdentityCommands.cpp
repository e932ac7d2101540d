#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"

#include "core/link/ComPrmSet.h"
#include "core/link/Connect.h"
#include "core/link/ReceiverTypes.h"
#include "core/link/RecvInfo.h"

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

Ending Identify(const Context& context, const Options& options)
{
    PortSession session(context, options);
    if (const auto failure = options.search ? session.Search() : session.Open()) {
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
        SettingsRoots& roots = context.world.Roots();
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

Failure NotAccepted(const CRecvInfo& info)
{
    const std::uint32_t number = info.GetRecvTypeNum();
    const ReceiverType* const type = FindReceiverType(number);
    if (type == nullptr || !type->canBeSupported) {
        return {
            ExitCode::Refused, "type-refused", {text::kSayTypeRefused, {std::to_string(number)}}};
    }
    return {ExitCode::Refused, "firmware-refused",
            Worded(text::kSayFirmwareRefused,
                   {Value::Real(info.GetNavVer(), 2).Words(), std::to_string(number),
                    Value::Real(MinimumNavVersion(number), 2).Words()}),
            text::kSayUpdateFirmware};
}

Ending Info(const Context& context, const PortOptions& options)
{
    PortSession session(context, options);
    if (const auto failure = session.Connect()) {
        return *failure;
    }
    CConnect connect(session.Command(), 0); // its port is open: it asks nothing
    connect.SupportAllTypes();
    const bool accepted = connect.CheckRecvType() == 1;

    CRecvInfo info(connect.Identity());
    if (info.ReadMissing(session.Command()) == 0) {
        return session.RequestFailed();
    }
    Report report;
    AddIdentity(report, info.Known());
    return accepted ? context.output.Done(report)
                    : context.output.Failed(NotAccepted(info), &report);
}

} // namespace

Command AddInfoCommand(CLI::App& program)
{
    return AddCommand<PortOptions>(
        program, {"info", text::kHelpInfo,
                  [](CLI::App& parser, PortOptions& options) { options.AddTo(parser); }, Info});
}

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
                  Identify});
}

} // namespace fieldcore::cli
