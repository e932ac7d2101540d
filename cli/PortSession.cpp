#include "cli/PortSession.h"

#include "cli/Utf8.h"
#include "cli/Wording.h"

#include "core/equipment/LinkSearch.h"
#include "core/link/ComPrmSet.h"
#include "core/link/FrameLog.h"
#include "core/link/PortOutput.h"
#include "core/platform/PortList.h"
#include "core/resources/StringTable.h"
#include "core/settings/StoredPorts.h"

#include <utility>

namespace fieldcore::cli {

namespace {

/// Shows the steps of connecting as they come.
class StepPrinter final : public ConnectObserver
{
public:
    explicit StepPrinter(Output& output) : m_output(output) {}

    void OnStep(ConnectStep step, int done, int total) override
    {
        m_output.Progress("[" + std::to_string(done + 1) + "/" + std::to_string(total) + "] " +
                          ToUtf8(StepText(step)));
    }

private:
    Output& m_output;
};

/// Shows the rates of a search as they are tried.
class RatePrinter final : public RateObserver
{
public:
    explicit RatePrinter(Output& output) : m_output(output) {}

    void OnRate(std::uint32_t rate, int done, int total) override
    {
        m_output.Progress("[" + std::to_string(done + 1) + "/" + std::to_string(total) + "] " +
                          std::to_string(rate) + " bit/s");
    }

private:
    Output& m_output;
};

} // namespace

Folders RealFolders(const World& world)
{
    FolderSources sources = world.folders;
    sources.isSimulated = false;
    return Folders(std::move(sources));
}

std::string NamedPort(const World& world, const std::string& named)
{
    return !named.empty() ? named : world.variable("FIELDCORE_PORT").value_or("");
}

bool IsSimulated(const World& world, const std::string& port)
{
    SettingsRoots roots{RealFolders(world)};
    const std::string name = !port.empty() ? port : StoredPort(roots).value_or("");
    const PortNameResult parsed = PortNames(world.roots).Parse(name);
    return parsed.port && (parsed.port->kind == PortKind::Simulator ||
                           parsed.port->path == world.variable(kSimulatedPort));
}

PortNames KnownPortNames(const World& world, Output& output)
{
    PortNames names(world.roots);
    SettingsRoots roots{RealFolders(world)};
    for (const std::wstring& setting : AssignStoredPorts(names, roots)) {
        output.Message("warning", "",
                       Worded(text::kSayPortSetting, {ToUtf8(setting), ToUtf8(kPortsKey)}),
                       Colour::Yellow);
    }
    for (const SettingsNotice& notice : roots.TakeNotices()) {
        output.Message("warning", "", Translated(notice.Words()), Colour::Yellow);
    }
    return names;
}

PortSession::PortSession(const World& world, Output& output, Host& host, const PortOptions& options)
    : m_world(world), m_output(output), m_host(host), m_options(options), m_names(world.roots)
{}

PortSession::~PortSession() = default;

const Clock& PortSession::GetClock() const
{
    return m_fastClock ? *m_fastClock : *m_world.clock;
}

std::optional<Failure> PortSession::Prepare()
{
    if (std::optional<Failure> failure = FindPort()) {
        return failure;
    }
    m_target.settings = m_options.Settings(m_target.settings);
    if (std::optional<Failure> failure = OpenLog()) {
        return failure;
    }
    m_command =
        std::make_unique<CCommand>(CCommand::Surroundings{&m_host, &GetClock(), &m_names, nullptr});
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
    SettingsRoots roots{RealFolders(m_world)};
    const std::string named = NamedPort(m_world, m_options.port);
    if (named.empty() && !StoredPort(roots)) {
        return NoPortNamed();
    }
    const FoundTarget found = FindTarget(roots, named, m_world.roots);
    if (found.scenario) {
        return StartSimulator(*found.scenario);
    }
    if (!found.target) {
        const std::string detail = Translated(found.detail);
        return named.empty() ? Failure{ExitCode::NoPort, "port-unusable",
                                       Worded(text::kSayPortOfSettings, {detail}),
                                       Worded(text::kSayPortOfSettingsHint)}
                             : UsageFailure(detail, "fieldcore-cli ports");
    }
    m_names = KnownPortNames(m_world, m_output);
    if (m_options.speed != 1.0) {
        return UsageFailure(Worded(text::kSayOnlySimFast), Worded(text::kSayOnlySimFastHint));
    }
    m_target = *found.target;
    return std::nullopt;
}

Failure PortSession::NoPortNamed() const
{
    std::string hint;
    for (const SerialPort& port : ListSerialPorts(m_names, m_world.roots)) {
        hint += "--port " + port.path + "  " + Translated(port.description) + "\n         ";
    }
    return UsageFailure(Worded(text::kSayNoPort), hint + Worded(text::kSaySimPort));
}

std::optional<Failure> PortSession::StartSimulator(const std::string& scenario)
{
    std::string error;
    const std::optional<simulator::Scenario> loaded = simulator::LoadScenario(scenario, error);
    if (!loaded) {
        return ScenarioFailure(error);
    }
    if (m_options.speed != 1.0) {
        m_fastClock = std::make_unique<FastClock>(m_options.speed, m_world.clock->Utc());
    }
    m_simulator = std::make_unique<simulator::Simulator>(*loaded, GetClock());
    if (!m_simulator->Start(error)) {
        return SimulatorFailure(ExitCode::Failed, error);
    }
    SettingsRoots roots{Folders(m_world.folders)};
    m_target = TargetOf(m_simulator->PortPath(), LinkSettings(roots), m_names);
    return std::nullopt;
}

std::optional<Failure> PortSession::OpenLog()
{
    if (m_options.log.empty()) {
        return std::nullopt;
    }
    if (const std::error_code error = m_log.Open(m_options.log, LogFile::Start::Append)) {
        return FileFailure(Worded(text::kSayNotWritten, {m_options.log.string(), Reason(error)}),
                           Worded(text::kSayLogHint));
    }
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
    if (std::optional<Failure> failure = Prepare()) {
        return failure;
    }
    return OpenTarget(*m_command, m_target) == 1
               ? std::nullopt
               : std::optional(NotOpened(m_command->FaultDetail()));
}

Failure PortSession::NotOpened(std::string detail) const
{
    return PortFailure(m_target.devicePath, m_command->SystemError(), std::move(detail),
                       m_world.roots);
}

std::optional<Failure> PortSession::Connect()
{
    if (std::optional<Failure> failure = Prepare()) {
        return failure;
    }
    ConnectSequence sequence(*m_command, m_target);
    StepPrinter printer(m_output);
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
    if (std::optional<Failure> failure = Prepare()) {
        return failure;
    }
    RatePrinter printer(m_output);
    const std::optional<std::uint32_t> rate = SearchRate(*m_command, m_target, &printer);
    m_output.Progress("");
    if (rate) {
        m_target.settings.baudRate = *rate;
        return OpenTarget(*m_command, m_target) == 1
                   ? std::nullopt
                   : std::optional(NotOpened(m_command->FaultDetail()));
    }
    switch (m_command->Fault()) {
    case CommandFault::OpenFailed:
        return NotOpened(m_command->FaultDetail());
    case CommandFault::Cancelled:
    case CommandFault::LinkLost:
        return RequestFailure(m_command->Fault(), m_command->FaultDetail());
    default:
        return Failure{ExitCode::NoAnswer,           "no-answer", Worded(text::kSayNoRate),
                       Worded(text::kSayNoRateHint), "",          m_command->FaultDetail()};
    }
}

Failure PortSession::RequestFailed() const
{
    return LooksLikeOutput(m_command->RecentNoise())
               ? SendingFailure(m_command->FaultDetail())
               : RequestFailure(m_command->Fault(), m_command->FaultDetail());
}

} // namespace fieldcore::cli
