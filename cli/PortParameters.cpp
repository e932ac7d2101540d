#include "cli/PortParameters.h"

#include "cli/PortSession.h"
#include "cli/TerminalHost.h"

#include "core/equipment/LinkFollow.h"
#include "core/equipment/PortEdit.h"
#include "core/link/ComBlueToothSet.h"
#include "core/link/RecvInfo.h"
#include "core/platform/Utf8.h"

#include <cstdint>
#include <utility>

namespace fieldcore::cli {

namespace {

Report ReportOf(SettingsRoots& roots)
{
    Report::Table table{"ports",
                        "",
                        {{"port", "PORT"},
                         {"rate", "RATE"},
                         {"dataBits", "BITS"},
                         {"parity", "PARITY"},
                         {"stopBits", "STOP"},
                         {"flow", "FLOW"}},
                        {}};
    for (int port = CComPrmSet::kLinkPort; port <= CComPrmSet::kMostPorts; ++port) {
        CComPrmSet set(roots);
        set.ReadRegCommPrm(port); // what cannot be read is the default
        set.ConvData2Flag();
        table.rows.push_back(
            {port == CComPrmSet::kLinkPort
                 ? Value::Word("link", "link")
                 : Value::Word("com" + std::to_string(port), "COM" + std::to_string(port)),
             Value::Text(set.GetStrBps()), Value::Text(set.GetStrDataBits()),
             Value::Text(set.GetStrParity()), Value::Text(set.GetStrStopBits()),
             Value::Text(set.GetStrFlowCtrl())});
    }
    CComBlueToothSet way(roots);
    way.ReadReg();
    Report report;
    report.AddTable(std::move(table));
    report.Add("way", "the receiver is reached by",
               way.GetComConnectWay() == CComBlueToothSet::Cable
                   ? Value::Word("cable", "cable")
                   : Value::Word("bluetooth", "Bluetooth"));
    report.Add("connectPort", "on COM", Value::Integer(way.GetConnectPort()));
    return report;
}

Failure BadParameters(const std::string& text)
{
    return UsageFailure("\"" + text + "\" are no parameters of a port.",
                        "such as 9600, 38400-8-None-1-None or 115200-7-Even-2-Xon/Xoff");
}

Failure NotStored(const SettingsRoots& roots)
{
    return FileFailure("Nothing was stored: " + roots.File(RootKey::CurrentUser).string() +
                           " cannot be written.",
                       "fieldcore-cli doctor");
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
    if (!roots.Store(RootKey::CurrentUser).IsKept() ||
        link.WriteRegCommPrm(CComPrmSet::kLinkPort) == 0) {
        return context.output.Failed(NotStored(roots));
    }
    return context.output.Done(ReportOf(roots));
}

/// After the receiver was told to change the port in use: finds it again and says where it is.
std::optional<Failure> Follow(PortSession& session, PortEdit& edit, SettingsRoots& roots)
{
    ConnectTarget target = session.Target();
    target.settings = LinkSettings(roots);
    switch (FollowLink(session.Command(), target, session.Target().settings)) {
    case LinkFollowed::Moved:
        return std::nullopt;
    case LinkFollowed::Stayed:
        edit.TakeLinkBack();
        return Failure{ExitCode::Failed, "port-stayed",
                       "The receiver still answers with the parameters that it had."};
    case LinkFollowed::Cancelled:
        return RequestFailure(CommandFault::Cancelled, "");
    case LinkFollowed::Lost:
        break;
    }
    return RequestFailure(CommandFault::TimedOut, "after the parameters were changed");
}

std::optional<Failure> SetPort(PortSession& session, const PortParameterOptions& options,
                               SettingsRoots& roots)
{
    CRecvInfo info;
    if (info.GetOptionData(session.Command()) == 0) {
        return session.RequestFailed();
    }
    // What it is reached with counts, not what is stored.
    PortEdit edit(info.GetCurrentPortID(), roots, session.Target().settings);
    CComPrmSet& set = edit.At(options.number);
    if (set.SetPrmString(FromUtf8(options.parameters)) == 0) {
        return BadParameters(options.parameters);
    }
    switch (edit.Set(options.number, &session.Command())) {
    case PortSet::Done:
        break;
    case PortSet::Refused:
    case PortSet::NoAnswer:
        return session.RequestFailed();
    case PortSet::NotStored:
        return NotStored(roots);
    }
    if (options.number != edit.LinkPort() || !edit.MovesLink()) {
        return std::nullopt;
    }
    if (edit.KeepLink() == 0) {
        return NotStored(roots);
    }
    return Follow(session, edit, roots);
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
    TerminalHost host(context.world, context.output);
    PortSession session(context.world, context.output, host, options.port);
    if (const std::optional<Failure> failure = session.Connect()) {
        return context.output.Failed(*failure);
    }
    if (const std::optional<Failure> failure = SetPort(session, options, roots)) {
        return context.output.Failed(*failure);
    }
    return context.output.Done(ReportOf(roots));
}

} // namespace fieldcore::cli
