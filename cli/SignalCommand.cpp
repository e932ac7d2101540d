#include "cli/Command.h"
#include "cli/PortSession.h"
#include "cli/TerminalHost.h"
#include "cli/Wording.h"

#include "core/resources/StringTable.h"
#include "core/settings/HostReg.h"
#include "core/settings/SettingsText.h"
#include "core/tilt/SignalChoice.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

struct SignalOptions
{
    PortOptions port;
    std::vector<std::string> names;
};

constexpr const char* kNone = "none";
/// In the order of Signal.
constexpr std::array<const char*, kAllSignals.size()> kNames{"l2c", "glonass", "qzss", "galileo",
                                                             "l5"};

const char* NameOf(Signal signal)
{
    return kNames[static_cast<std::size_t>(signal)];
}

void AddSignals(Report& report, const SignalSession& session)
{
    report.Add("typeNumber", text::kLabelTypeNumber, Value::Integer(session.TypeNumber()));
    report.Add("locked", text::kLabelFixedByTheReceiver, Value::YesNo(session.IsLocked()));
    Report::Table table{"signals",
                        "none",
                        {{"signal", text::kHeadSignal},
                         {"available", text::kHeadAvailable},
                         {"chosen", text::kHeadChosen}},
                        {}};
    for (const Signal signal : kAllSignals) {
        // A locked receiver is not asked what it has.
        table.rows.push_back(
            {Value::Text(std::string(NameOf(signal))),
             session.IsKnown() ? Value::YesNo(session.IsEnabled(signal)) : Value::Unknown(),
             Value::YesNo(session.IsChecked(signal))});
    }
    report.AddTable(std::move(table));
}

/// What keeps the choice from being made, if anything does.
std::optional<Failure> Apply(SignalSession& session, const std::vector<std::string>& names)
{
    if (session.IsLocked()) {
        return Failure{ExitCode::Failed, "signals-locked", Worded(text::kSaySignalsFixed),
                       Worded(text::kSaySignalsFixedHint)};
    }
    for (const Signal signal : kAllSignals) {
        const bool isWanted = std::find(names.begin(), names.end(), NameOf(signal)) != names.end();
        if (isWanted && !session.IsEnabled(signal)) {
            return Failure{ExitCode::Failed, "signal-absent",
                           Worded(text::kSaySignalAbsent, {NameOf(signal)}),
                           "fieldcore-cli signal show --port PORT"};
        }
        session.Check(signal, isWanted);
    }
    return std::nullopt;
}

ExitCode Set(const Context& context, const SignalOptions& options, SignalSession& session)
{
    Report report;
    if (const std::optional<Failure> failure = Apply(session, options.names)) {
        AddSignals(report, session);
        return context.output.Failed(*failure, &report);
    }
    AddSignals(report, session);
    const std::vector<std::uint8_t> data = session.CommandData();
    report.Add("data", text::kLabelDataOfTheCommand, Value::Text(FormatSettingBytes(data)));
    if (context.dryRun) {
        report.Add("sent", text::kLabelSent, Value::YesNo(false));
        report.Add("stored", text::kLabelStored, Value::YesNo(false));
        return context.output.Done(report);
    }
    std::optional<Failure> failure;
    const SignalSession::Outcome outcome = session.Confirm();
    if (outcome.boardTold == 0) {
        context.output.Note(Worded(text::kSayBoardSilent));
    }
    if (outcome.sent == 0) {
        failure = RequestFailure(outcome.fault, "");
    } else if (outcome.stored != 1) {
        failure = Failure{ExitCode::LocalFile, "local-file", Worded(text::kSaySignalsNotStored),
                          "fieldcore-cli doctor"};
    }
    report.Add("sent", text::kLabelSent, Value::YesNo(outcome.sent == 1));
    report.Add("stored", text::kLabelStored, Value::YesNo(outcome.stored == 1));
    return failure ? context.output.Failed(*failure, &report) : Kept(context, report);
}

ExitCode Run(const Context& context, const SignalOptions& options, bool isSet)
{
    if (isSet && options.names.size() > 1 &&
        std::find(options.names.begin(), options.names.end(), kNone) != options.names.end()) {
        return context.output.Failed(
            UsageFailure(Worded(text::kSayNoneAlone), "fieldcore-cli signal set none --port PORT"));
    }
    TerminalHost host(context.world, context.output);
    PortSession port(context.world, context.output, host, options.port);
    if (const std::optional<Failure> failure = port.Connect()) {
        return context.output.Failed(*failure);
    }
    SettingsRoots roots{Folders(context.world.folders)};
    const HostReg reg(roots);
    SignalSession session(&port.Command(), reg);
    session.Open();
    if (!session.IsLocked() && !session.IsKnown()) {
        return context.output.Failed(port.RequestFailed());
    }
    if (isSet) {
        return Set(context, options, session);
    }
    Report report;
    AddSignals(report, session);
    return context.output.Done(report);
}

} // namespace

Command AddSignalCommand(CLI::App& program)
{
    CLI::App& parser = AddParser(program, "signal", text::kHelpSignal);
    parser.require_subcommand(1);
    const auto options = std::make_shared<SignalOptions>();
    CLI::App& show = AddParser(parser, "show", text::kHelpSignalShow);
    options->port.AddTo(show);
    CLI::App& set = AddParser(parser, "set", text::kHelpSignalSet);
    set.add_option("SIGNAL", options->names, Worded(text::kOptSignals))
        ->required()
        ->check(CLI::IsMember({"l2c", "glonass", "qzss", "galileo", "l5", "none"}).description(""))
        ->type_name("");
    AddDryRun(set, text::kOptSignalDry);
    options->port.AddTo(set);
    return {&parser, [options, &set](const Context& context) {
                return Run(context, *options, set.parsed());
            }};
}

} // namespace fieldcore::cli
