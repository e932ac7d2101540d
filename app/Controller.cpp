#include "app/Controller.h"

#include "core/equipment/ComBlueToothSet.h"
#include "core/equipment/LinkFollow.h"
#include "core/link/Connect.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/NominalConstellation.h"
#include "core/planning/PlanSite.h"
#include "core/platform/FastClock.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "core/settings/StoredPorts.h"
#include "core/tilt/BubbleConfig.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "ui/controls/UiText.h"
#include "ui/link/ConnectDlg.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace fieldcore {

namespace {

constexpr const wchar_t* kAppKey = L"GPS\\App";
constexpr const wchar_t* kTheme = L"Theme";
constexpr const wchar_t* kAntennaRole = L"AntennaRole";
constexpr const wchar_t* kSetClock = L"SetClock";
constexpr const wchar_t* kPlaneZone = L"PlaneZone";

QDateTime ToQt(Clock::UtcTime time)
{
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(ms.count(), Qt::UTC);
}

ReceiverState::Link LampOf(LinkState state)
{
    switch (state) {
    case LinkState::Connecting:
        return ReceiverState::Link::Connecting;
    case LinkState::Connected:
        return ReceiverState::Link::Connected;
    case LinkState::Lost:
    case LinkState::Reconnecting:
        return ReceiverState::Link::Lost;
    case LinkState::NotConnected:
        break;
    }
    return ReceiverState::Link::None;
}

/// A nominal almanac of today, for a program that has never seen a receiver.
std::vector<AlmanacRecord> SampleAlmanac(Clock::UtcTime now)
{
    using namespace std::chrono_literals;
    constexpr std::chrono::sys_days kGpsEpoch = 1980y / std::chrono::January / 6;
    constexpr std::int64_t kWeekS = 604800;
    constexpr std::int64_t kStepS = 4096; // of reference times
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now - kGpsEpoch).count();
    const std::int64_t inWeek = seconds % kWeekS / kStepS * kStepS;
    return NominalConstellation(kNominalSatellites, static_cast<int>(seconds / kWeekS),
                                static_cast<std::uint32_t>(inWeek));
}

/// The port of a user who has chosen none: where the host suite has the receiver, if it says so.
ConnectChoice FirstChoice(SettingsRoots& roots)
{
    ConnectChoice choice;
    CComBlueToothSet way(roots);
    way.ReadReg();
    if (way.IsStored() && way.GetConnectPort() >= 1 && way.GetConnectPort() <= PortNames::kMaxCom) {
        choice.port = "COM" + std::to_string(way.GetConnectPort());
    }
    return choice;
}

} // namespace

Controller::Controller(const AppOptions& options)
    : m_options(options),
      m_fastClock(options.speed == 1.0 ? nullptr : std::make_unique<FastClock>(options.speed)),
      m_clock(m_fastClock ? static_cast<const Clock*>(m_fastClock.get())
                          : &SystemClock::Instance()),
      m_reg(m_roots), m_folder(Folders().Program()), m_frames(*m_clock)
{
    QtHost::Options hostOptions;
    if (m_fastClock) {
        hostOptions.clock = m_fastClock.get();
    }
    m_host = std::make_unique<QtHost>(hostOptions);
    SetDefaultHost(m_host.get());
    for (const std::wstring& setting : AssignStoredPorts(m_names, m_roots)) {
        m_notices += UiText(text::kNoticePort).arg(fieldcore::ToQt(setting));
    }
    m_command = std::make_unique<CCommand>(
        CommandChannel::Surroundings{m_host.get(), m_clock, &m_names, nullptr});
    m_command->SetFrameObserver(m_frames.Observer());
    m_link = std::make_unique<ReceiverLink>(*m_command);
    m_poll = std::make_unique<StatusPoll>(*m_command, *m_link);
    m_monitor = std::make_unique<LinkMonitor>(*m_link);
    connect(m_monitor.get(), &LinkMonitor::Changed, this, &Controller::Changed);
    connect(m_monitor.get(), &LinkMonitor::Aged, this, &Controller::AskReceiver);
    m_antenna = std::make_unique<AntennaSettings>(
        m_command.get(), 1, 0, AntennaSettings::Surroundings{m_folder, &m_roots});
    m_choice = LoadConnectChoice(m_reg, FirstChoice(m_roots));
    ReadLinkRate();
    if (!m_options.port.isEmpty()) {
        m_choice.port = m_options.port.toStdString();
    }
}

Controller::~Controller()
{
    m_monitor.reset();
    m_command->ClosePort();
    SetDefaultHost(nullptr);
}

void Controller::Begin()
{
    InstallSampleSites(m_folder);
    InstallSampleAntennas(m_folder);
    m_antenna->CheckReg();
    std::uint32_t role = 0;
    m_reg.ReadNumber(kAppKey, kAntennaRole, role, static_cast<std::uint32_t>(AntennaRole::Rover));
    m_antenna->SetRole(role <= static_cast<std::uint32_t>(AntennaRole::RoverSecond)
                           ? static_cast<AntennaRole>(role)
                           : AntennaRole::Rover);
    ReadAntenna();
    std::error_code unknown;
    if (!std::filesystem::exists(AlmanacPath(m_folder), unknown)) {
        AlmanacStore(m_folder).Import(SampleAlmanac(m_clock->Utc()));
    }
    eBubbleConfig::LoadBubbleData(m_reg);
    std::uint32_t theme = 0;
    m_reg.ReadNumber(kAppKey, kTheme, theme, 0);
    const auto kept = theme <= static_cast<std::uint32_t>(Theme::Kind::System)
                          ? static_cast<Theme::Kind>(theme)
                          : Theme::Kind::Daylight;
    Theme::Use(m_options.theme.value_or(kept));
    std::uint32_t maySet = 0;
    m_reg.ReadNumber(kAppKey, kSetClock, maySet, 0);
    m_maySetClock = maySet == 1;
    AllowClock();
}

bool Controller::ConnectQuietly(std::wstring& fault)
{
    const std::optional<ConnectTarget> target = Target(fault);
    if (!target) {
        return false;
    }
    if (m_command->IsPortOpen() == 0) {
        ConnectSequence sequence(*m_command, *target);
        if (sequence.Run() == 0) {
            const bool isCancelled = sequence.FailedFault() == CommandFault::Cancelled;
            fault = isCancelled ? std::wstring() : sequence.FailureMessage(); // he knows
            return false;
        }
    }
    CConnect connect(*m_command, 0, *target); // its port is open: it asks nothing
    connect.SupportAllTypes();
    if (m_link->Adopt(connect, *target) == 0) {
        return false; // the user has been told
    }
    ReadOptions();
    Q_EMIT Changed();
    return true;
}

bool Controller::Connect(QWidget* parent, std::wstring& fault)
{
    if (m_simulator || m_choice.port.starts_with("sim:")) {
        return ConnectQuietly(fault);
    }
    const std::optional<ConnectTarget> target = Target(fault);
    if (!target) {
        return false;
    }
    ConnectDlg dialog(*m_command, 0, *target, parent);
    dialog.SupportAllTypes();
    dialog.OfferSearch([this](std::uint32_t rate) {
        const int kept = SetLinkRate(rate, m_roots);
        ReadLinkRate();
        return kept;
    });
    if (m_link->Connect(dialog, *target) == 0) {
        return false; // the user has been told
    }
    ReadOptions();
    Q_EMIT Changed();
    return true;
}

void Controller::ReadOptions()
{
    CRecvInfo info;
    m_hasTilt = false;
    if (info.GetOptionData(*m_command) != 0) {
        m_hasTilt = info.GetTilt() != 0;
        m_receiverPort = info.GetCurrentPortID();
        m_receiverPorts = std::clamp(info.GetPortsAvailable(), 1, CComPrmSet::kMostPorts);
    }
}

void Controller::Disconnect()
{
    m_link->Disconnect();
    Q_EMIT Changed();
}

void Controller::Choose(const ConnectChoice& choice)
{
    m_choice = choice;
    SaveConnectChoice(m_reg, choice);
    SetLinkRate(choice.baudRate, m_roots);
    ReadLinkRate();
}

void Controller::ReadLinkRate()
{
    m_choice.baudRate = LinkSettings(m_roots).baudRate;
}

int Controller::FollowLink(PortEdit& edit)
{
    ReadLinkRate();
    if (m_command->IsPortOpen() == 0) {
        return 0; // the next connection will have them
    }
    std::wstring fault;
    const std::optional<ConnectTarget> target = Target(fault);
    if (!target) {
        return text::kComLinkLost;
    }
    const LinkFollowed followed = fieldcore::FollowLink(*m_command, *target, edit.LinkBefore());
    if (followed == LinkFollowed::Stayed) {
        edit.TakeLinkBack();
        ReadLinkRate();
    }
    const bool isOpen = followed == LinkFollowed::Moved || followed == LinkFollowed::Stayed;
    if (!isOpen || !ConnectQuietly(fault)) {
        Disconnect();
    }
    switch (followed) {
    case LinkFollowed::Stayed:
        return text::kComLinkStayed;
    case LinkFollowed::Lost:
        return text::kComLinkLost;
    case LinkFollowed::Moved:
    case LinkFollowed::Cancelled:
        break;
    }
    return 0;
}

std::optional<ConnectTarget> Controller::Target(std::wstring& fault)
{
    const PortNameResult named = m_names.Parse(m_choice.port);
    if (!named.port) {
        fault = FromUtf8(named.fault);
        return std::nullopt;
    }
    if (named.port->kind == PortKind::Device) {
        m_simulator.reset();
        m_scenario.clear();
        AllowClock();
        return TargetOf(named.port->path, LinkSettings(m_roots), m_names);
    }
    if (!StartSimulator(named.port->scenario.empty() ? "lark" : named.port->scenario, fault)) {
        return std::nullopt;
    }
    return TargetOf(m_simulator->PortPath(), LinkSettings(m_roots), m_names);
}

bool Controller::StartSimulator(const std::string& scenario, std::wstring& fault)
{
    if (m_simulator && scenario == m_scenario) {
        return true;
    }
    std::string error;
    const std::optional<simulator::Scenario> loaded = simulator::LoadScenario(scenario, error);
    auto started = loaded ? std::make_unique<simulator::Simulator>(*loaded, *m_clock) : nullptr;
    if (!started || !started->Start(error)) {
        fault = FromUtf8(error);
        return false;
    }
    m_command->ClosePort();
    m_simulator = std::move(started);
    AllowClock();
    m_scenario = scenario;
    return true;
}

void Controller::UseTheme(Theme::Kind kind)
{
    Theme::Use(kind);
    m_reg.WriteNumber(kAppKey, kTheme, static_cast<std::uint32_t>(kind));
}

void Controller::UseAntenna(AntennaRole role)
{
    m_antenna->SetRole(role);
    m_reg.WriteNumber(kAppKey, kAntennaRole, static_cast<std::uint32_t>(role));
    ReadAntenna();
}

void Controller::ReadAntenna()
{
    m_antenna->ReadRegAnt();
    m_antennaLine = fieldcore::ToQt(m_antenna->GetAntLine());
}

void Controller::SetMaySetClock(bool maySet)
{
    m_maySetClock = maySet;
    m_reg.WriteNumber(kAppKey, kSetClock, maySet ? 1 : 0);
    AllowClock();
}

/// A simulated receiver takes its time from this clock, or makes one up.
void Controller::AllowClock()
{
    SystemClock::Instance().AllowSetting(m_maySetClock && !m_simulator &&
                                         m_options.screenshots.isEmpty());
}

StatusView Controller::View() const
{
    constexpr std::uint32_t kLast = 19;
    std::uint32_t zone = 0; // the nearest one
    m_reg.ReadNumber(kAppKey, kPlaneZone, zone, 0);
    return {m_clock->Steady(), m_clock->Utc(), m_link->State() == LinkState::Connected,
            zone <= kLast ? static_cast<int>(zone) : 0, m_maySetClock};
}

void Controller::AskReceiver()
{
    m_poll->Tick();
    const BatteryWatch::Warning warning = m_poll->TakeWarning();
    if (warning != BatteryWatch::Warning::None) {
        const int id =
            warning == BatteryWatch::Warning::Low ? text::kBatteryLow : text::kBatteryVeryLow;
        const int percent = m_poll->Now().battery->value.percent.value_or(0);
        Q_EMIT BatteryIsLow(fieldcore::ToQt(FormatText(id, percent)));
    }
    Q_EMIT Changed();
}

ReceiverState Controller::State() const
{
    ReceiverState state;
    state.link = LampOf(m_link->State());
    if (const auto& receiver = m_link->Receiver();
        receiver && state.link != ReceiverState::Link::None) {
        state.receiver = fieldcore::ToQt(receiver->model);
    }
    state.antenna = m_antennaLine;
    state.simulator = m_simulator ? QString::fromStdString(m_scenario) : QString();
    if (const auto& status = m_link->Status()) {
        constexpr double kNoPdop = 99.0;
        const auto age = m_link->StatusAge().value_or(Clock::Duration{});
        state.receivedUtc =
            ToQt(m_clock->Utc() - std::chrono::duration_cast<std::chrono::milliseconds>(age));
        state.batteryPercent = status->value.batteryPercent;
        const auto& battery = m_poll->Now().battery;
        state.batteryFailed = battery && !battery->value.percent;
        state.satellites = status->value.satellitesTracked;
        if (std::isfinite(status->value.pdop) && status->value.pdop < kNoPdop) {
            state.pdop = status->value.pdop;
        }
    }
    return state;
}

QDateTime Controller::NowUtc() const
{
    return ToQt(m_clock->Utc());
}

QString Controller::TakeNotice()
{
    for (const SettingsNotice& notice : m_roots.TakeNotices()) {
        const QString file = QString::fromStdString(notice.file);
        m_notices +=
            notice.kind == SettingsNotice::Kind::SetAside
                ? UiText(text::kNoticeSetAside).arg(file)
                : UiText(text::kNoticeNotKept).arg(file, QString::fromStdString(notice.reason));
    }
    return std::exchange(m_notices, {}).join(QStringLiteral("\n\n"));
}

} // namespace fieldcore
