#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/link/Connect.h"
#include "core/link/ReceiverTypes.h"
#include "core/link/RecvInfo.h"
#include "core/resources/StringTable.h"

#include <memory>

namespace fieldcore::cli {

namespace {

Failure NotAccepted(const CRecvInfo& info)
{
    const std::uint32_t number = info.GetRecvTypeNum();
    const ReceiverType* const type = FindReceiverType(number);
    if (type == nullptr || !type->canBeSupported) {
        return {ExitCode::Refused, "type-refused",
                Worded(text::kSayTypeRefused, {std::to_string(number)})};
    }
    return {ExitCode::Refused,
            "firmware-refused",
            Worded(text::kSayFirmwareRefused,
                   {Value::Real(info.GetNavVer(), 2).Words(), std::to_string(number),
                    Value::Real(MinimumNavVersion(number), 2).Words()}),
            Worded(text::kSayUpdateFirmware),
            "",
            ""};
}

ExitCode Run(const Context& context, const PortOptions& options)
{
    TerminalHost host(context.world, context.output);
    PortSession session(context.world, context.output, host, options);
    if (const std::optional<Failure> failure = session.Connect()) {
        return context.output.Failed(*failure);
    }
    CConnect connect(session.Command(), 0); // its port is open: it asks nothing
    connect.SupportAllTypes();
    const bool accepted = connect.CheckRecvType() == 1;

    CRecvInfo info(connect.Identity());
    if (info.ReadMissing(session.Command()) == 0) {
        return context.output.Failed(session.RequestFailed());
    }
    Report report;
    AddIdentity(report, info.Known());
    return accepted ? context.output.Done(report)
                    : context.output.Failed(NotAccepted(info), &report);
}

} // namespace

Command AddInfoCommand(CLI::App& program)
{
    const auto options = std::make_shared<PortOptions>();
    return AddCommand(
        program, {"info", text::kHelpInfo, [options](CLI::App& parser) { options->AddTo(parser); },
                  [options](const Context& context) { return Run(context, *options); }});
}

} // namespace fieldcore::cli
