#include "cli/PortSession.h"

#include "cli/Options.h"

#include "core/equipment/LinkSearch.h"
#include "core/link/ComPrmSet.h"
#include "core/link/FrameLog.h"
#include "core/link/PortOutput.h"
#include "core/platform/PortList.h"
#include "core/platform/Utf8.h"
#include "core/settings/StoredPorts.h"

#include <chrono>
#include <cmath>
#include <map>
#include <set>
#include <utility>

namespace fieldcore::cli {

namespace {

/// The port talks by itself: NMEA or corrections come where an answer should.
Failure SendingFailure(std::string detail)
{
    return {ExitCode::Failed, "port-sending", text::kSayPortSending, text::kSayPortSendingHint, "",
            std::move(detail)};
}

/// Shows the steps of connecting as they come.
class ProgressPrinter final : public ConnectObserver
{
public:
    explicit ProgressPrinter(Output& output) : m_output(output) {}

    void OnStep(ConnectStep step, int done, int total) override
    {
        m_output.ProgressOf(done + 1, total, ToUtf8(StepText(step)));
    }

private:
    Output& m_output;
};

} // namespace

SettingsRoots RealSettings(const World& world)
{
    FolderSources sources = world.folders;
    sources.isSimulated = false;
    return SettingsRoots{Folders(std::move(sources))};
}

std::string NamedPort(const World& world, const std::string& named)
{
    return !named.empty() ? named : world.variable("FIELDCORE_PORT").value_or("");
}

bool IsSimulated(const World& world, const std::string& port)
{
    SettingsRoots roots = RealSettings(world);
    const std::string name = !port.empty() ? port : StoredPort(roots).value_or("");
    const PortNameResult parsed = PortNames(world.system).Parse(name);
    return parsed.port && (parsed.port->kind == PortKind::Simulator ||
                           parsed.port->path == world.variable(kSimulatedPort));
}

PortNames KnownPortNames(const World& world, Output& output)
{
    PortNames names(world.system);
    SettingsRoots roots = RealSettings(world);
    for (const std::wstring& setting : AssignStoredPorts(names, roots)) {
        output.Warn({text::kSayPortSetting, {ToUtf8(setting), ToUtf8(kPortsKey)}});
    }
    for (const SettingsNotice& notice : roots.TakeNotices()) {
        output.Warn(Translated(notice.Words()));
    }
    return names;
}

PortSettings PortOptions::Settings(const PortSettings& stored) const
{
    PortSettings settings = stored;
    settings.baudRate = baudRate.value_or(stored.baudRate);
    settings.byteSize = static_cast<std::uint8_t>(dataBits.value_or(stored.byteSize));
    settings.parity = static_cast<std::uint8_t>(parity.value_or(stored.parity));
    if (stopBits) {
        settings.stopBits = *stopBits == 2 ? 2 : 0;
    }
    settings.flowControl = flow.value_or(stored.flowControl);
    settings.replyTimeout = std::chrono::milliseconds(std::lround(timeoutS * 1000.0));
    return settings;
}

void PortOptions::AddTo(CLI::App& command)
{
    const std::set<std::uint32_t> rates{1200,  2400,  4800,   9600,  19200,
                                        38400, 57600, 115200, 230400};
    const std::map<std::string, FlowControl> flows{{"none", FlowControl::None},
                                                   {"xonxoff", FlowControl::Software},
                                                   {"rtscts", FlowControl::RtsCts},
                                                   {"dsrdtr", FlowControl::DsrDtr}};
    const std::map<std::string, int> parities{{"none", 0}, {"odd", 1}, {"even", 2}};

    command.option_defaults()->group(kPortGroup);
    // What there is to choose from is told by the texts; the parser's own description of it is hard
    // to read.
    const auto add = [&command](const char* name, auto& value, const char* type, int purpose,
                                CLI::Validator choices) {
        command.add_option(name, value, Worded(purpose))
            ->transform(choices.description(""))
            ->type_name(type);
    };
    AddText(command, "-p,--port", port, "PORT", text::kOptPort);
    add("--baud", baudRate, "RATE", text::kOptBaud, CLI::IsMember(rates));
    add("--bits", dataBits, "N", text::kOptBits, CLI::IsMember(std::set<int>{7, 8}));
    add("--parity", parity, "PARITY", text::kOptParity,
        CLI::CheckedTransformer(parities, CLI::ignore_case));
    add("--stop-bits", stopBits, "N", text::kOptStopBits, CLI::IsMember(std::set<int>{1, 2}));
    add("--flow", flow, "FLOW", text::kOptFlow, CLI::CheckedTransformer(flows, CLI::ignore_case));
    AddSessionTo(command);
}

void PortOptions::AddSessionTo(CLI::App& command)
{
    command.option_defaults()->group(kPortGroup);
    AddNumber(command, "--timeout", timeoutS, {0.05, 600.0, "s", "2"}, "SECONDS",
              text::kOptTimeout);
    AddText(command, "--log", log, "FILE", text::kOptLog);
    AddNumber(command, "--speed", speed,
              {FastClock::kLowestSpeed, FastClock::kHighestSpeed, Worded(text::kUnitTimes), "1"},
              "N", text::kOptSpeed);
    command.option_defaults()->group("Options");
}

PortSession::PortSession(const Context& context, const PortOptions& options, bool hasAgreed)
    : m_world(context.world), m_output(context.output), m_host(context, hasAgreed),
      m_options(options), m_names(context.world.system)
{}

PortSession::~PortSession() = default;

const Clock& PortSession::GetClock() const
{
    return m_fastClock ? *m_fastClock : m_world.GetClock();
}

std::optional<Failure> PortSession::Prepare()
{
    if (auto failure = FindPort()) {
        return failure;
    }
    m_target.settings = m_options.Settings(m_target.settings);
    if (!m_options.log.empty()) {
        if (const std::error_code error = m_log.Open(m_options.log, LogFile::Start::Append)) {
            return FileFailure({text::kSayNotWritten, {m_options.log.string(), Reason(error)}},
                               text::kSayLogHint);
        }
    }
    m_command = std::make_unique<CCommand>(
        Environment{&m_host, &GetClock(), &m_names, m_world.makeDevice, &m_world.Roots()});
    if (!m_options.log.empty()) {
        m_command->SetLineObserver(
            [this](Direction direction, LineUnit, std::span<const std::uint8_t> bytes) {
                Keep(direction, bytes);
            });
    }
    return std::nullopt;
}

std::optional<Failure> PortSession::FindPort()
{
    SettingsRoots roots = RealSettings(m_world);
    const std::string named = NamedPort(m_world, m_options.port);
    if (named.empty() && !StoredPort(roots)) {
        std::string hint;
        for (const SerialPort& port : ListSerialPorts(m_names, m_world.system)) {
            hint += "--port " + port.path + "  " + Translated(port.description) + "\n         ";
        }
        return UsageFailure(text::kSayNoPort, hint + Worded(text::kSaySimPort));
    }
    const FoundTarget found = FindTarget(roots, named, m_world.system);
    if (found.scenario) {
        return StartSimulator(*found.scenario);
    }
    if (!found.target) {
        const std::string detail = Translated(found.detail);
        return named.empty() ? Failure{ExitCode::NoPort, "port-unusable",
                                       Worded(text::kSayPortOfSettings, {detail}),
                                       text::kSayPortOfSettingsHint}
                             : UsageFailure(detail, "fieldcore-cli ports");
    }
    m_names = KnownPortNames(m_world, m_output);
    if (m_options.speed != 1.0) {
        return UsageFailure(text::kSayOnlySimFast, text::kSayOnlySimFastHint);
    }
    m_target = *found.target;
    return std::nullopt;
}

std::optional<Failure> PortSession::StartSimulator(const std::string& scenario)
{
    std::string error;
    const std::optional<simulator::Scenario> loaded = simulator::LoadScenario(scenario, error);
    if (!loaded) {
        return ScenarioFailure(error);
    }
    if (m_options.speed != 1.0) {
        m_fastClock = std::make_unique<FastClock>(m_options.speed, m_world.GetClock().Utc());
    }
    m_simulator = std::make_unique<simulator::Simulator>(*loaded, GetClock());
    if (!m_simulator->Start(error)) {
        return SimulatorFailure(ExitCode::Failed, error);
    }
    m_target = TargetOf(m_simulator->PortPath(), LinkSettings(m_world.Roots()), m_names);
    return std::nullopt;
}

/// On the thread that sends, and on that which reads the port; never on both at once.
void PortSession::Keep(Direction direction, std::span<const std::uint8_t> bytes)
{
    if (m_logFailed) {
        return; // once is enough to know
    }
    if (m_log.Write(FrameLogLine(direction, bytes, GetClock().Utc()))) {
        m_logFailed = true;
        m_output.Post(Worded(text::kSayLogEnds, {m_options.log.string()}));
    }
}

std::optional<Failure> PortSession::Open()
{
    if (auto failure = Prepare()) {
        return failure;
    }
    return OpenFound();
}

std::optional<Failure> PortSession::OpenFound()
{
    return OpenTarget(*m_command, m_target) == 1
               ? std::nullopt
               : std::optional(NotOpened(m_command->FaultDetail()));
}

Failure PortSession::NotOpened(std::string detail) const
{
    return PortFailure(m_target.devicePath, m_command->SystemError(), std::move(detail),
                       m_world.system);
}

std::optional<Failure> PortSession::Connect()
{
    if (auto failure = Prepare()) {
        return failure;
    }
    ConnectSequence sequence(*m_command, m_target);
    ProgressPrinter printer(m_output);
    if (sequence.Run(&printer) == 1) {
        m_output.Progress("");
        return std::nullopt;
    }
    const CommandFault fault = sequence.FailedFault();
    if (fault != CommandFault::Cancelled) {
        m_host.ShowMessage(sequence.FailureMessage(), sequence.FailureCaption(),
                           {BoxButtons::Ok, BoxIcon::Stop});
    }
    Failure failure = fault == CommandFault::OpenFailed ? NotOpened(sequence.FailureDetail())
                      : sequence.IsPortSending()        ? SendingFailure(sequence.FailureDetail())
                                                 : RequestFailure(fault, sequence.FailureDetail());
    failure.step = ToUtf8(StepText(sequence.FailedStep()));
    return failure;
}

std::optional<Failure> PortSession::Search()
{
    if (auto failure = Prepare()) {
        return failure;
    }
    const std::optional<std::uint32_t> rate =
        SearchRate(*m_command, m_target, [this](std::uint32_t tried, int done, int total) {
            m_output.ProgressOf(done + 1, total, std::to_string(tried) + " bit/s");
        });
    m_output.Progress("");
    if (rate) {
        m_target.settings.baudRate = *rate;
        return OpenFound();
    }
    switch (m_command->Fault()) {
    case CommandFault::OpenFailed:
        return NotOpened(m_command->FaultDetail());
    case CommandFault::Cancelled:
    case CommandFault::LinkLost:
        return RequestFailure(m_command->Fault(), m_command->FaultDetail());
    default:
        return Failure{ExitCode::NoAnswer,   "no-answer", text::kSayNoRate,
                       text::kSayNoRateHint, "",          m_command->FaultDetail()};
    }
}

Failure PortSession::RequestFailed() const
{
    return LooksLikeOutput(m_command->RecentNoise())
               ? SendingFailure(m_command->FaultDetail())
               : RequestFailure(m_command->Fault(), m_command->FaultDetail());
}

} // namespace fieldcore::cli
