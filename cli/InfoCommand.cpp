#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"
#include "cli/Wording.h"

#include "core/link/Connect.h"
#include "core/link/ReceiverTypes.h"
#include "core/link/RecvInfo.h"
#include "core/resources/StringTable.h"

namespace fieldcore::cli {

namespace {

Failure NotAccepted(const CRecvInfo& info)
{
    const std::uint32_t number = info.GetRecvTypeNum();
    const ReceiverType* const type = FindReceiverType(number);
    if (type == nullptr || !type->canBeSupported) {
        return {
            ExitCode::Refused, "type-refused", {text::kSayTypeRefused, {std::to_string(number)}}};
    }
    return {ExitCode::Refused,
            "firmware-refused",
            Worded(text::kSayFirmwareRefused,
                   {Value::Real(info.GetNavVer(), 2).Words(), std::to_string(number),
                    Value::Real(MinimumNavVersion(number), 2).Words()}),
            text::kSayUpdateFirmware,
            "",
            ""};
}

Ending Run(const Context& context, const PortOptions& options)
{
    PortSession session(context, options);
    if (const std::optional<Failure> failure = session.Connect()) {
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
                  [](CLI::App& parser, PortOptions& options) { options.AddTo(parser); }, Run});
}

} // namespace fieldcore::cli
