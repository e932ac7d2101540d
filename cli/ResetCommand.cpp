#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/equipment/PortEdit.h"
#include "core/link/RecvForceInit.h"
#include "core/link/RecvInfo.h"
#include "core/resources/StringTable.h"

#include <memory>

namespace fieldcore::cli {

namespace {

struct ResetOptions
{
    PortOptions port;
    bool yes = false;
};

ExitCode Finish(const Context& context, const CRecvInfo& info, bool isReset)
{
    Report report;
    report.Add("reset", text::kLabelReset, Value::YesNo(isReset));
    AddIdentity(report, info.Known());
    return context.output.Done(report);
}

ExitCode Run(const Context& context, const ResetOptions& options)
{
    if (!options.yes && !context.dryRun && !context.world.CanAsk()) {
        return context.output.Failed(
            UsageFailure(Worded(text::kSayResetNobody), Worded(text::kSayYesReset)));
    }
    TerminalHost host(context.world, context.output,
                      options.yes ? TerminalHost::Answers::AllYes : TerminalHost::Answers::Ask);
    PortSession session(context.world, context.output, host, options.port);
    if (const std::optional<Failure> failure = session.Connect()) {
        return context.output.Failed(*failure);
    }
    CRecvInfo info;
    if (info.GetOptionData(session.Command()) == 0) {
        return context.output.Failed(session.RequestFailed());
    }
    if (context.dryRun) {
        return Finish(context, info, false);
    }
    if (CRecvForceInit(session.Command()).stRecvForceInit() == 0) {
        return context.output.Failed(RequestFailure(CommandFault::Cancelled, ""));
    }
    SettingsRoots roots{Folders(context.world.folders)};
    ForgetPorts(roots);
    // The library does not look at the answer; whoever resets from a script wants to know.
    if (session.Command().Fault() != CommandFault::None) {
        return context.output.Failed(session.RequestFailed());
    }
    return Finish(context, info, true);
}

} // namespace

Command AddResetCommand(CLI::App& program)
{
    const auto options = std::make_shared<ResetOptions>();
    return AddCommand(program,
                      {"reset", text::kHelpReset,
                       [options](CLI::App& parser) {
                           AddConsent(parser, options->yes, text::kOptResetDry);
                           options->port.AddTo(parser);
                       },
                       [options](const Context& context) { return Run(context, *options); }});
}

} // namespace fieldcore::cli
