#include "cli/Command.h"
#include "cli/Options.h"
#include "cli/PortSession.h"

#include "core/settings/HostReg.h"
#include "core/settings/SettingsText.h"
#include "core/tilt/SignalChoice.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

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
    Report::Table table{"signals", "none"};
    for (const Signal signal : kAllSignals) {
        // A locked receiver is not asked what it has.
        table.rows.push_back(
            {{"signal", text::kHeadSignal, Value::Text(std::string(NameOf(signal)))},
             {"available", text::kHeadAvailable,
              session.IsKnown() ? Value::YesNo(session.IsEnabled(signal)) : Value::Unknown()},
             {"chosen", text::kHeadChosen, Value::YesNo(session.IsChecked(signal))}});
    }
    report.AddTable(std::move(table));
}

/// What keeps the choice from being made, if anything does.
std::optional<Failure> Apply(SignalSession& session, const std::vector<std::string>& names)
{
    if (session.IsLocked()) {
        return Failure{ExitCode::Failed, "signals-locked", text::kSaySignalsFixed,
                       text::kSaySignalsFixedHint};
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

Ending Show(const Context& context, const SignalOptions& /*options*/, SignalSession& session)
{
    Report report;
    AddSignals(report, session);
    return context.output.Done(report);
}

Ending Set(const Context& context, const SignalOptions& options, SignalSession& session)
{
    const std::optional<Failure> unfit = Apply(session, options.names);
    Report report;
    AddSignals(report, session);
    if (unfit) {
        return context.output.Failed(*unfit, &report);
    }
    const std::vector<std::uint8_t> data = session.CommandData();
    report.Add("data", text::kLabelDataOfTheCommand, Value::Text(FormatSettingBytes(data)));
    std::optional<Failure> failure;
    SignalSession::Outcome outcome{};
    if (!context.dryRun) {
        outcome = session.Confirm();
        if (outcome.boardTold == 0) {
            context.output.Note(text::kSayBoardSilent);
        }
        if (outcome.sent == 0) {
            failure = RequestFailure(outcome.fault, "");
        } else if (outcome.stored != 1) {
            failure = FileFailure(text::kSaySignalsNotStored, "fieldcore-cli doctor");
        }
    }
    report.Add("sent", text::kLabelSent, Value::YesNo(outcome.sent == 1));
    report.Add("stored", text::kLabelStored, Value::YesNo(outcome.stored == 1));
    return failure ? context.output.Failed(*failure, &report) : Kept(context, report);
}

/// Connects, and looks which signals there are.
template <auto Act>
Ending WithSignals(const Context& context, const SignalOptions& options)
{
    PortSession port(context, options.port);
    if (const auto failure = port.Connect()) {
        return *failure;
    }
    SignalSession session(&port.Command());
    session.Open();
    return session.IsLocked() || session.IsKnown() ? Act(context, options, session)
                                                   : port.RequestFailed();
}

Ending RunSet(const Context& context, const SignalOptions& options)
{
    if (options.names.size() > 1 &&
        std::find(options.names.begin(), options.names.end(), kNone) != options.names.end()) {
        return UsageFailure(text::kSayNoneAlone, "fieldcore-cli signal set none --port PORT");
    }
    return WithSignals<Set>(context, options);
}

} // namespace

Command AddSignalCommand(CLI::App& program)
{
    return AddCommand<SignalOptions>(
        program, {"signal", text::kHelpSignal},
        {{"show", text::kHelpSignalShow,
          [](CLI::App& parser, SignalOptions& options) { options.port.AddTo(parser); },
          WithSignals<Show>},
         {"set", text::kHelpSignalSet,
          [](CLI::App& parser, SignalOptions& options) {
              std::vector<std::string> words(kNames.begin(), kNames.end());
              words.emplace_back(kNone);
              AddText(parser, "SIGNAL", options.names, "", text::kOptSignals)
                  ->required()
                  ->check(CLI::IsMember(words).description(""));
              AddDryRun(parser, text::kOptSignalDry);
              options.port.AddTo(parser);
          },
          RunSet}});
}

} // namespace fieldcore::cli
