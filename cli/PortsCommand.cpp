#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"

#include "core/equipment/LinkSearch.h"
#include "core/equipment/PortEdit.h"
#include "core/link/ComBlueToothSet.h"
#include "core/link/ComPrmSet.h"
#include "core/link/RecvInfo.h"
#include "core/platform/PortList.h"
#include "core/platform/PortReport.h"
#include "core/platform/Utf8.h"

#include <initializer_list>
#include <utility>

namespace fieldcore::cli {

namespace {

struct PortsOptions
{
    PortOptions port;
    int number = 0;         ///< 0 the controller's own line, 1 to 3 a port of the receiver
    std::string parameters; ///< as CComPrmSet::SetPrmString() reads them
};

Value State(const PortReport& report)
{
    const bool isForbidden =
        report.trouble == PortTrouble::NotAllowed || report.trouble == PortTrouble::LoginNeeded;
    return report.trouble == PortTrouble::None
               ? Term("free", text::kWordFree)
               : Term(report.trouble == PortTrouble::InUse ? "in-use"
                      : isForbidden                        ? "not-allowed"
                                                           : "unusable",
                      Translated(report.text));
}

Ending Run(const Context& context, const PortsOptions& /*options*/)
{
    const SystemRoots& roots = context.world.system;
    Report::Table table{"ports", text::kSayNoSerial};
    for (const SerialPort& port :
         ListSerialPorts(KnownPortNames(context.world, context.output), roots)) {
        table.rows.push_back({{"path", text::kHeadPort, Value::Text(port.path)},
                              {"com", "COM", Value::Text(port.comName)},
                              {"description", text::kHeadWhatItIs,
                               Value::Word(port.description, Translated(port.description))},
                              {"stablePath", text::kHeadStableName, Value::Text(port.stablePath)},
                              {"state", text::kHeadState, State(ReportPort(port.path, 0, roots))}});
    }
    return context.output.Done(Report(std::move(table)));
}

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
    Report::Table table{"ports"};
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
            {{"port", text::kHeadPort,
              port == CComPrmSet::kLinkPort
                  ? Term("link", text::kWordLink)
                  : Value::Word("com" + std::to_string(port), "COM" + std::to_string(port))},
             {"rate", text::kHeadRate, Value::Text(set.GetStrBps())},
             {"dataBits", text::kHeadBits, Value::Text(set.GetStrDataBits())},
             {"parity", text::kHeadParity, Shown(set.GetStrParity())},
             {"stopBits", text::kHeadStop, Value::Text(set.GetStrStopBits())},
             {"flow", text::kHeadFlow, Shown(set.GetStrFlowCtrl())}});
    }
    CComBlueToothSet way(roots);
    way.ReadReg();
    Report report(std::move(table));
    report.Add("way", text::kLabelTheReceiverIsReachedBy,
               way.GetComConnectWay() == CComBlueToothSet::Cable
                   ? Term("cable", text::kWordCable)
                   : Value::Word("bluetooth", "Bluetooth"));
    report.Add("connectPort", text::kLabelOnCom, Value::Integer(way.GetConnectPort()));
    return report;
}

Failure BadParameters(const std::string& text)
{
    return UsageFailure({text::kSayNoParameters, {text}}, text::kSayPortHint);
}

Failure NotStored(const SettingsRoots& roots, int id = text::kSayNothingStored,
                  const Wording& hint = "fieldcore-cli doctor")
{
    return FileFailure({id, {roots.File(RootKey::CurrentUser).string()}}, hint);
}

/// The controller's own line is a setting of the controller: no receiver is asked.
Ending SetLink(const Context& context, const PortsOptions& options, SettingsRoots& roots)
{
    CComPrmSet link(roots);
    link.ReadRegCommPrm(CComPrmSet::kLinkPort);
    link.ConvData2Flag();
    if (link.SetPrmString(FromUtf8(options.parameters)) == 0) {
        return BadParameters(options.parameters);
    }
    if (context.dryRun) {
        return context.output.Done(ReportOf(roots, {{CComPrmSet::kLinkPort, link}}));
    }
    if (!roots.Store(RootKey::CurrentUser).IsKept() || StoreLink(link) == 0) {
        return NotStored(roots);
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
                   ? Failure{ExitCode::Failed, "port-stayed", text::kSayPortStayed}
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
        if (auto failure = Follow(session, edit, roots)) {
            return failure;
        }
    }
    return isStored ? std::nullopt
                    : std::optional(
                          moves ? NotStored(roots, text::kSayToldNotStored, text::kSayBaudReaches)
                                : NotStored(roots, text::kSayToldNotStored));
}

Ending Show(const Context& context, const PortsOptions& /*options*/)
{
    return context.output.Done(ReportOf(context.world.Roots()));
}

Ending Set(const Context& context, const PortsOptions& options)
{
    SettingsRoots& roots = context.world.Roots();
    if (options.number == CComPrmSet::kLinkPort) {
        return SetLink(context, options, roots);
    }
    CComPrmSet probe(roots);
    if (probe.SetPrmString(FromUtf8(options.parameters)) == 0) { // before any port is opened
        return BadParameters(options.parameters);
    }
    if (!context.dryRun && !roots.Store(RootKey::CurrentUser).IsKept()) {
        return NotStored(roots); // before the receiver is told
    }
    PortSession session(context, options.port);
    if (const auto failure = session.Connect()) {
        return *failure;
    }
    CRecvInfo info;
    if (info.GetOptionData(session.Command()) == 0) {
        return session.RequestFailed();
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
    if (const auto failure = SetPort(session, options.number, edit, roots)) {
        return *failure;
    }
    return Kept(context, ReportOf(roots));
}

} // namespace

Command AddPortsCommand(CLI::App& program)
{
    return AddCommand<PortsOptions>(
        program, {"ports", text::kHelpPorts, nullptr, Run},
        {{"show", text::kHelpPortsShow, nullptr, Show},
         {"set", text::kHelpPortsSet,
          [](CLI::App& parser, PortsOptions& options) {
              parser.add_option("NUMBER", options.number, Worded(text::kOptPortNumber))
                  ->check(CLI::Range(CComPrmSet::kLinkPort, CComPrmSet::kMostPorts).description(""))
                  ->type_name("")
                  ->required();
              AddText(parser, "PARAMETERS", options.parameters, "", text::kOptParameters)
                  ->required();
              AddDryRun(parser, text::kOptPortsDry);
              options.port.AddTo(parser);
          },
          Set}});
}

} // namespace fieldcore::cli
