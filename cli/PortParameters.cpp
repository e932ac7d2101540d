#include "cli/PortParameters.h"

#include "cli/PortSession.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/equipment/LinkSearch.h"
#include "core/equipment/PortEdit.h"
#include "core/link/ComBlueToothSet.h"
#include "core/link/RecvInfo.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <initializer_list>
#include <utility>

namespace fieldcore::cli {

namespace {

/// What a dry run would store, in place of what is stored.
struct Wanted
{
    int port;
    const CComPrmSet& set;
};

/// A parameter that is typed in English.
Value Shown(const std::wstring& parameter)
{
    return Value::Word(ToUtf8(parameter), Translated(ToUtf8(parameter)));
}

Report ReportOf(SettingsRoots& roots, std::initializer_list<Wanted> wanted = {})
{
    Report::Table table{"ports",
                        "",
                        {{"port", text::kHeadPort},
                         {"rate", text::kHeadRate},
                         {"dataBits", text::kHeadBits},
                         {"parity", text::kHeadParity},
                         {"stopBits", text::kHeadStop},
                         {"flow", text::kHeadFlow}},
                        {}};
    for (int port = CComPrmSet::kLinkPort; port <= CComPrmSet::kMostPorts; ++port) {
        CComPrmSet set(roots);
        set.ReadRegCommPrm(port); // what cannot be read is the default
        set.ConvData2Flag();
        for (const Wanted& each : wanted) {
            if (each.port == port) {
                set.SetPrmString(each.set.GetPrmString());
            }
        }
        table.rows.push_back(
            {port == CComPrmSet::kLinkPort
                 ? Value::Word("link", Worded(text::kWordLink))
                 : Value::Word("com" + std::to_string(port), "COM" + std::to_string(port)),
             Value::Text(set.GetStrBps()), Value::Text(set.GetStrDataBits()),
             Shown(set.GetStrParity()), Value::Text(set.GetStrStopBits()),
             Shown(set.GetStrFlowCtrl())});
    }
    CComBlueToothSet way(roots);
    way.ReadReg();
    Report report;
    report.AddTable(std::move(table));
    report.Add("way", text::kLabelTheReceiverIsReachedBy,
               way.GetComConnectWay() == CComBlueToothSet::Cable
                   ? Value::Word("cable", Worded(text::kWordCable))
                   : Value::Word("bluetooth", "Bluetooth"));
    report.Add("connectPort", text::kLabelOnCom, Value::Integer(way.GetConnectPort()));
    return report;
}

Failure BadParameters(const std::string& text)
{
    return UsageFailure(Worded(text::kSayNoParameters, {text}), Worded(text::kSayPortHint));
}

Failure NotStored(const SettingsRoots& roots, int id = text::kSayNothingStored,
                  const std::string& hint = "fieldcore-cli doctor")
{
    return FileFailure(Worded(id, {roots.File(RootKey::CurrentUser).string()}), hint);
}

/// The controller's own line is a setting of the controller: no receiver is asked.
ExitCode SetLink(const Context& context, const PortParameterOptions& options, SettingsRoots& roots)
{
    CComPrmSet link(roots);
    link.ReadRegCommPrm(CComPrmSet::kLinkPort);
    link.ConvData2Flag();
    if (link.SetPrmString(FromUtf8(options.parameters)) == 0) {
        return context.output.Failed(BadParameters(options.parameters));
    }
    if (context.dryRun) {
        return context.output.Done(ReportOf(roots, {{CComPrmSet::kLinkPort, link}}));
    }
    if (!roots.Store(RootKey::CurrentUser).IsKept() || StoreLink(link) == 0) {
        return context.output.Failed(NotStored(roots));
    }
    return Kept(context, ReportOf(roots));
}

/// After the receiver was told to change the port in use: finds it again and says where it is.
std::optional<Failure> Follow(PortSession& session, PortEdit& edit, const SettingsRoots& roots)
{
    ConnectTarget target = session.Target();
    target.settings = edit.LinkWanted();
    switch (FollowLink(session.Command(), target, edit.LinkBefore())) {
    case LinkFollowed::Moved:
        return std::nullopt;
    case LinkFollowed::Stayed:
        return edit.TakeLinkBack() == 1
                   ? Failure{ExitCode::Failed, "port-stayed", Worded(text::kSayPortStayed)}
                   : NotStored(roots, text::kSayNotTakenBack);
    case LinkFollowed::Cancelled:
        return RequestFailure(CommandFault::Cancelled, "");
    case LinkFollowed::Lost:
        break;
    }
    return RequestFailure(CommandFault::TimedOut, "after the parameters were changed");
}

/// Tells the receiver, stores, and follows it.
std::optional<Failure> SetPort(PortSession& session, int port, PortEdit& edit,
                               const SettingsRoots& roots)
{
    const PortSet outcome = edit.Set(port, &session.Command());
    if (outcome == PortSet::Refused || outcome == PortSet::NoAnswer) {
        return session.RequestFailed();
    }
    const bool moves = port == edit.LinkPort() && edit.MovesLink();
    const bool isStored = outcome == PortSet::Done && (!moves || edit.KeepLink() == 1);
    if (moves) {
        if (const std::optional<Failure> failure = Follow(session, edit, roots)) {
            return failure;
        }
    }
    return isStored ? std::nullopt
                    : std::optional(moves ? NotStored(roots, text::kSayToldNotStored,
                                                      Worded(text::kSayBaudReaches))
                                          : NotStored(roots, text::kSayToldNotStored));
}

} // namespace

ExitCode ShowPortParameters(const Context& context)
{
    SettingsRoots roots{Folders(context.world.folders)};
    return context.output.Done(ReportOf(roots));
}

ExitCode SetPortParameters(const Context& context, const PortParameterOptions& options)
{
    SettingsRoots roots{Folders(context.world.folders)};
    if (options.number == CComPrmSet::kLinkPort) {
        return SetLink(context, options, roots);
    }
    CComPrmSet probe(roots);
    if (probe.SetPrmString(FromUtf8(options.parameters)) == 0) { // before any port is opened
        return context.output.Failed(BadParameters(options.parameters));
    }
    if (!context.dryRun && !roots.Store(RootKey::CurrentUser).IsKept()) {
        return context.output.Failed(NotStored(roots)); // before the receiver is told
    }
    TerminalHost host(context.world, context.output);
    PortSession session(context.world, context.output, host, options.port);
    if (const std::optional<Failure> failure = session.Connect()) {
        return context.output.Failed(*failure);
    }
    CRecvInfo info;
    if (info.GetOptionData(session.Command()) == 0) {
        return context.output.Failed(session.RequestFailed());
    }
    // What it is reached with counts, not what is stored.
    PortEdit edit(info.GetCurrentPortID(), roots, session.Target().settings, info.GetRecvSNLong());
    CComPrmSet& set = edit.At(options.number);
    set.SetPrmString(FromUtf8(options.parameters));
    if (context.dryRun) {
        const bool moves = options.number == edit.LinkPort() && edit.MovesLink();
        return context.output.Done(ReportOf(
            roots, {{options.number, set}, {moves ? CComPrmSet::kLinkPort : options.number, set}}));
    }
    if (const std::optional<Failure> failure = SetPort(session, options.number, edit, roots)) {
        return context.output.Failed(*failure);
    }
    return Kept(context, ReportOf(roots));
}

} // namespace fieldcore::cli
