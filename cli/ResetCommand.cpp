#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"
#include "cli/StatusReading.h"

#include "core/equipment/PortEdit.h"
#include "core/link/RecvForceInit.h"
#include "core/link/RecvInfo.h"

namespace fieldcore::cli {

namespace {

struct ResetOptions
{
    PortOptions port;
    bool yes = false;
};

Ending Finish(const Context& context, const CRecvInfo& info, bool isReset)
{
    Report report;
    report.Add("reset", text::kLabelReset, Value::YesNo(isReset));
    AddIdentity(report, info.Known());
    return context.output.Done(report);
}

Ending Run(const Context& context, const ResetOptions& options)
{
    if (!options.yes && !context.dryRun && !context.world.CanAsk()) {
        return UsageFailure(text::kSayResetNobody, text::kSayYesReset);
    }
    PortSession session(context, options.port, options.yes);
    if (const auto failure = session.Connect()) {
        return *failure;
    }
    CRecvInfo info;
    if (info.GetOptionData(session.Command()) == 0) {
        return session.RequestFailed();
    }
    if (context.dryRun) {
        return Finish(context, info, false);
    }
    if (CRecvForceInit(session.Command()).stRecvForceInit() == 0) {
        return RequestFailure(CommandFault::Cancelled, "");
    }
    ForgetPorts(context.world.Roots());
    // The library does not look at the answer; whoever resets from a script wants to know.
    if (session.Command().Fault() != CommandFault::None) {
        return session.RequestFailed();
    }
    return Finish(context, info, true);
}

} // namespace

Command AddResetCommand(CLI::App& program)
{
    return AddCommand<ResetOptions>(program, {"reset", text::kHelpReset,
                                              [](CLI::App& parser, ResetOptions& options) {
                                                  AddConsent(parser, options.yes,
                                                             text::kOptResetDry);
                                                  options.port.AddTo(parser);
                                              },
                                              Run});
}

} // namespace fieldcore::cli
