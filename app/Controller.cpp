#include "app/Controller.h"

#include "core/equipment/AntennaCatalogue.h"
#include "core/equipment/LinkSearch.h"
#include "core/equipment/StatusRows.h"
#include "core/host/MesBox.h"
#include "core/link/Questions.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/PlanSession.h"
#include "core/planning/PlanSite.h"
#include "core/platform/Calendar.h"
#include "core/platform/FastClock.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "core/settings/Setting.h"
#include "core/settings/StoredPorts.h"
#include "core/tilt/BubbleConfig.h"
#include "core/tilt/TrackingSettings.h"
#include "simulator/Scenario.h"
#include "simulator/ShippedScenarios.h"
#include "simulator/Simulator.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanWindowList.h"
#include "ui/tilt/TiltSensorDlg.h"

#include <QApplication>
#include <QIcon>

#include <algorithm>
#include <iterator>

namespace fieldcore {

std::vector<ScenarioChoice> Scenarios()
{
    std::vector<ScenarioChoice> choices;
    for (const simulator::ShippedScenario& shipped : simulator::AllShippedScenarios()) {
        std::string error;
        const auto scenario = simulator::LoadScenario(std::string(shipped.name), error);
        const bool isJapanese = CurrentLanguage() == Language::Japanese;
        choices.push_back(
            {std::string(shipped.name),
             scenario ? QString::fromStdString(isJapanese ? scenario->titleJa : scenario->title)
                      : QString()});
    }
    return choices;
}

Controller::Controller(const AppOptions& options)
    : m_options(options),
      m_fastClock(options.speed == 1.0 ? nullptr : std::make_unique<FastClock>(options.speed)),
      m_clock(m_fastClock ? static_cast<const Clock*>(m_fastClock.get())
                          : &SystemClock::Instance()),
      m_ownReg(m_ownRoots), m_reg(m_roots), m_frames(*m_clock)
{
    QtHost::Options hostOptions;
    hostOptions.isQ77 = m_options.isQ77 || StoredNumber(m_ownReg, L"GPS\\App\\Q77") == 1;
    hostOptions.clock = m_clock;
    hostOptions.icon = QStringLiteral(":/fieldcore/icons/receiver.svg");
    QApplication::setWindowIcon(QIcon(hostOptions.icon));
    m_host = std::make_unique<QtHost>(hostOptions);
    SetDefaultHost(m_host.get());
    for (const std::wstring& setting : AssignStoredPorts(m_names, m_ownRoots)) {
        m_notices += UiText(text::kNoticePort).arg(fieldcore::ToQt(setting));
    }
    m_command =
        std::make_unique<CCommand>(Environment{m_host.get(), m_clock, &m_names, nullptr, &m_roots});
    m_command->SetLineObserver(m_frames.Observer());
    m_link = std::make_unique<ReceiverLink>(*m_command);
    m_poll = std::make_unique<StatusPoll>(m_command->Background().Face(), *m_link);
    m_sky = std::make_unique<SkyRecorder>(*m_clock);
    m_link->SetObserver([this] { QMetaObject::invokeMethod(this, &Controller::Changed); });
    constexpr std::chrono::milliseconds kInterval{250};
    m_rounds = std::make_unique<BackgroundQuestion>(
        *m_command, Rhythm{kInterval, kInterval}, // the link has a patience of its own
        [this](CCommand& asking) {
            m_link->Tick(asking);
            if (m_poll->Tick()) {
                m_sky->Take(m_link->Heard(), m_link->Connections());
            }
            return std::pair(true, 0);
        },
        [](int) {});
    connect(&m_timer, &QTimer::timeout, this, &Controller::LookAtReceiver);
    connect(&m_timer, &QTimer::timeout, this, &Controller::AskUser,
            Qt::QueuedConnection); // or time would stand still while he is asked
    m_timer.start(kInterval);
    m_choice.port = StoredPort(m_ownRoots).value_or(m_choice.port);
    if (!m_options.port.isEmpty()) {
        m_choice.port = m_options.port.toStdString();
    }
}

Controller::~Controller()
{
    m_rounds.reset();
    m_link->SetObserver({});
    m_command->ClosePort();
    SetDefaultHost(nullptr);
}

void Controller::Begin()
{
    UseStore();
    const auto theme = static_cast<Theme::Kind>(StoredNumber(m_ownReg, L"GPS\\App\\Theme"));
    Theme::Use(m_options.theme.value_or(theme));
    m_maySetClock = StoredNumber(m_ownReg, L"GPS\\App\\SetClock") == 1;
    AllowClock();
}

void Controller::UseStore()
{
    FolderSources sources = FolderSources::System();
    sources.isSimulated = IsSimulatorChosen();
    const Folders folders(sources);
    const std::filesystem::path folder = folders.Program();
    if (m_antenna && ProgramFolder() == folder) {
        return;
    }
    m_roots.Use(folders);
    m_sky->Use(folder, m_link->Connections());
    InstallSampleSites(folder); // what is there stays
    InstallSampleAntennas(folder);
    AlmanacStore(folder).PutNominal(m_clock->Utc());
    m_antenna = std::make_unique<AntennaSettings>(m_command.get(), 1, 0);
    m_antenna->CheckReg();
    m_antenna->SetRole(static_cast<AntennaRole>(StoredNumber(m_reg, L"GPS\\App\\AntennaRole")));
    ReadAntenna();
    ReadLimits();
    eBubbleConfig::LoadBubbleData(m_reg);
    ReadLinkRate();
}

bool Controller::ConnectQuietly(const FoundTarget& found, std::wstring& fault)
{
    Tell(LinkState::Connecting);
    const LinkState reached = TryQuietly(found, fault);
    Tell(reached);
    return reached == LinkState::Connected;
}

LinkState Controller::TryQuietly(const FoundTarget& found, std::wstring& fault)
{
    const std::optional<ConnectTarget>& target = found.target;
    if (!target) {
        fault = found.fault;
        return LinkState::Failed;
    }
    CConnect connect(*m_command, 0, *target); // its port is open: it asks nothing
    connect.SupportAllTypes();
    if (m_command->IsPortOpen() == 0) {
        ConnectSequence sequence(*m_command, *target);
        if (sequence.Run() == 0) {
            const bool isCancelled = sequence.FailedFault() == CommandFault::Cancelled;
            fault = isCancelled ? std::wstring() : sequence.FailureMessage(); // he knows
            return isCancelled ? LinkState::NotConnected : LinkState::Failed;
        }
        connect.Take(sequence);
    }
    // Where it is not acceptable the user has been told.
    return m_link->Adopt(connect) == 0 ? LinkState::Refused : LinkState::Connected;
}

void Controller::Tell(LinkState reached)
{
    m_attempt = reached == LinkState::Connected ? LinkState::NotConnected : reached;
    Q_EMIT Changed();
}

bool Controller::Connect(QWidget* parent, std::wstring& fault)
{
    const FoundTarget found = Target();
    if (!found.target || m_simulator) { // there is nothing to plug in
        return ConnectQuietly(found, fault);
    }
    const auto dialog = MakeConnect(parent, 0, found);
    Tell(LinkState::Connecting);
    const bool isConnected = m_link->Connect(*dialog) != 0;
    Tell(isConnected || dialog->Reached() != LinkState::Connected ? dialog->Reached()
                                                                  : LinkState::Refused);
    return isConnected; // if not, the user has been told
}

std::unique_ptr<ConnectDlg> Controller::MakeConnect(QWidget* parent, int reconnect,
                                                    const FoundTarget& found)
{
    auto dialog = std::make_unique<ConnectDlg>(*m_command, reconnect, found, parent);
    dialog->SupportAllTypes();
    dialog->OfferSearch([this](std::uint32_t rate) {
        const int kept = SetLinkRate(rate, m_roots);
        ReadLinkRate();
        return kept;
    });
    return dialog;
}

void Controller::AskUser()
{
    if (m_link->Question() == LinkQuestion::None || m_command->Background().IsQuiet() ||
        m_command->IsBusy()) {
        return; // if it is not the time, it comes round again
    }
    QWidget* const modal = QApplication::activeModalWidget();
    const auto dialog = MakeConnect(modal != nullptr ? modal : QApplication::activeWindow(), 1,
                                    {m_link->Target(), {}, {}, {}});
    m_link->AskUser(*dialog);
    Q_EMIT Changed();
}

CComPort::Surroundings Controller::PortsWorld()
{
    const CRecvInfo info = Info();
    const wchar_t* const serial = info.GetRecvSNLong();
    return {info.Known().options ? std::clamp(info.GetPortsAvailable(), 1, CComPrmSet::kMostPorts)
                                 : CComPrmSet::kMostPorts,
            [this] { return Target().target; }, serial != nullptr ? serial : L""};
}

PlanSurroundings Controller::PlanWorld(QWidget* parent)
{
    PlanSurroundings world;
    world.makeConnect = MakesConnect(parent);
    world.conditions = [this] {
        return PlanSurroundings::Conditions{m_limits.maskDeg, m_limits.satellites, m_limits.pdop};
    };
    world.skyNotes = [this] { return m_sky->GetNow(); };
    return world;
}

void Controller::Disconnect()
{
    m_link->Disconnect();
    Tell(LinkState::NotConnected);
}

bool Controller::Choose(const ConnectChoice& choice)
{
    m_choice = choice;
    const bool isPortKept = SaveConnectChoice(m_ownReg, choice) == 1;
    UseStore();
    const bool isRateKept = SetLinkRate(choice.baudRate, m_roots) == 1;
    ReadLinkRate();
    return isPortKept && isRateKept;
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
    FoundTarget found = Target();
    if (!found.target) {
        return text::kComLinkLost;
    }
    const Questions::Quiet quiet(*m_command);
    found.target->settings = edit.LinkWanted();
    const LinkFollowed followed =
        fieldcore::FollowLink(*m_command, *found.target, edit.LinkBefore());
    bool isBack = true;
    if (followed == LinkFollowed::Stayed) {
        found.target->settings = edit.LinkBefore();
        isBack = edit.TakeLinkBack() == 1;
        ReadLinkRate();
    }
    const bool isOpen = followed == LinkFollowed::Moved || followed == LinkFollowed::Stayed;
    std::wstring fault;
    if (!isOpen || !ConnectQuietly(found, fault)) {
        Disconnect();
    }
    if (followed == LinkFollowed::Stayed) {
        return isBack ? text::kComLinkStayed : text::kComLinkNotTakenBack;
    }
    return followed == LinkFollowed::Lost ? text::kComLinkLost : 0;
}

bool Controller::IsSimulatorChosen() const
{
    const PortNameResult port = m_names.Parse(m_choice.port);
    return port.port && port.port->kind == PortKind::Simulator;
}

FoundTarget Controller::Target()
{
    FoundTarget found = FindTarget(m_roots, m_choice.port);
    if (found.target && m_simulator) {
        m_command->ClosePort(); // or the port would pass for that of the device
        m_simulator.reset();
        m_scenario.clear();
    }
    if (found.scenario) {
        const int cause =
            StartSimulator(found.scenario->empty() ? "lark" : *found.scenario, found.detail);
        found.fault.clear();
        if (cause == 0) {
            found.target = TargetOf(m_simulator->PortPath(), LinkSettings(m_roots), m_names);
            found.detail.clear();
        } else {
            found.fault = FormatText(text::kPortUnusableTarget,
                                     FromUtf8(m_choice.port).substr(0, 40).c_str(), Text(cause));
        }
    }
    AllowClock();
    return found;
}

int Controller::StartSimulator(const std::string& scenario, std::string& error)
{
    if (m_simulator && scenario == m_scenario) {
        return 0;
    }
    std::optional<simulator::Scenario> loaded = simulator::LoadScenario(scenario, error);
    if (!loaded) {
        std::error_code unknown;
        return std::filesystem::exists(scenario, unknown) ? text::kScenarioDamaged
                                                          : text::kScenarioUnknown;
    }
    constexpr int kThinkingMs = 60; // at least, as in the field: what is slow there shows here
    loaded->latencyMs = std::max(loaded->latencyMs, kThinkingMs);
    auto started = std::make_unique<simulator::Simulator>(*loaded, *m_clock);
    if (!started->Start(error)) {
        return text::kScenarioNotStarted;
    }
    m_command->ClosePort();
    m_simulator = std::move(started);
    m_scenario = scenario;
    return 0;
}

void Controller::UseTheme(Theme::Kind kind)
{
    Theme::Use(kind);
    Store(m_ownReg, L"GPS\\App\\Theme", static_cast<std::uint32_t>(kind));
}

void Controller::UseAntenna(AntennaRole role)
{
    m_antenna->SetRole(role);
    Store(m_reg, L"GPS\\App\\AntennaRole", static_cast<std::uint32_t>(role));
    ReadAntenna();
}

void Controller::ReadAntenna()
{
    const bool isStored = m_antenna->ReadRegAnt() != 0;
    m_antennaHeightM = isStored ? m_antenna->GetAntCalcH() : 0.0;
    TiltSensorDlg::SetAntH(m_antennaHeightM);
    m_antennaLine = fieldcore::ToQt(m_antenna->GetAntLine());
}

void Controller::ReadLimits()
{
    CGPSPrm parameters(m_roots);
    LoadTracking(m_reg, AllSurveys()[LoadSurvey(m_reg)], 0, parameters);
    m_limits = {parameters.GetElMaskData(), parameters.GetMinSVsData(),
                parameters.GetPDOPMaskData(1)};
}

void Controller::SetMaySetClock(bool maySet)
{
    m_maySetClock = maySet;
    Store(m_ownReg, L"GPS\\App\\SetClock", maySet ? 1U : 0U);
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
    const auto zone = static_cast<int>(StoredNumber(m_ownReg, L"GPS\\App\\PlaneZone"));
    return {m_clock->Steady(), m_clock->Utc(), zone, m_maySetClock, m_limits, m_antennaHeightM};
}

void Controller::LookAtReceiver()
{
    PlanAhead();
    const BatteryWatch::Warning warning = m_poll->TakeWarning();
    if (warning != BatteryWatch::Warning::None) {
        const int id =
            warning == BatteryWatch::Warning::Low ? text::kBatteryLow : text::kBatteryVeryLow;
        const int percent = BatteryPercent(m_link->Heard()).value_or(0);
        const std::wstring words = FormatText(id, percent);
        QMetaObject::invokeMethod(
            this, [this, words] { CMesBox(*m_host).Warn(words, text::kBatteryCaption); },
            Qt::QueuedConnection); // or time would stand still until it is read
    }
    Q_EMIT Changed();
}

/// What is left of today, else tomorrow, with the site, the mask and the conditions of the plan's
/// page.
void Controller::PlanAhead()
{
    constexpr std::chrono::minutes kSeldom(1);
    const Clock::Duration now = m_clock->Steady();
    if (m_plannedAt && now - *m_plannedAt < kSeldom) {
        return;
    }
    m_plannedAt = now;
    m_nextWindow.clear();
    PlanSession session(m_command->GetEnvironment());
    session.Begin();
    if (!session.CanPlan()) {
        return;
    }
    const std::chrono::sys_days day = JapanDay(m_clock->Utc());
    const Clock::UtcTime::duration passed = m_clock->Utc() + kJst - day;
    PlanSettings settings = session.Settings();
    settings.startHour = static_cast<int>(passed / std::chrono::hours(1));
    for (const std::chrono::days ahead : {std::chrono::days(0), std::chrono::days(1)}) {
        settings.hours = 24 - settings.startHour;
        session.SetSettings(settings);
        session.SetDate(day + ahead);
        session.Compute();
        const PlanPeriod& period = session.Plan().Computed();
        const auto windows = FindWindows(session.Plan(), session.Limits());
        const auto next = std::ranges::find_if(windows, [&](const PlanWindow& window) {
            return ahead + std::chrono::hours(period.startHour) + window.last * period.Interval() >
                   passed;
        });
        if (next != windows.end()) {
            const QString when =
                ahead.count() == 0 ? QString() : UiText(text::kDayTomorrow) + QLatin1Char(' ');
            m_nextWindow = when + WindowText(session.Plan(), *next);
            break;
        }
        m_nextWindow = UiText(text::kSheetNoWindow);
        settings.startHour = 0;
    }
    const AlmanacSource& source = session.Plan().Calc().Source();
    if (source.origin == AlmanacOrigin::Nominal) {
        m_nextWindow += QLatin1Char('\n') + fieldcore::ToQt(SourceText(source));
    }
}

HomeState Controller::State() const
{
    HomeState state{m_link->Heard(), View(), m_antennaLine, m_nextWindow, {}};
    if (state.receiver.link == LinkState::NotConnected) {
        state.receiver.link = m_attempt;
    }
    if (IsSimulatorChosen()) {
        state.simulator = QString::fromStdString(m_scenario.empty() ? m_choice.port : m_scenario);
    }
    return state;
}

QString Controller::TakeNotice()
{
    std::vector<SettingsNotice> notices = m_ownRoots.TakeNotices();
    if (m_roots.File(RootKey::CurrentUser) != m_ownRoots.File(RootKey::CurrentUser)) {
        std::ranges::move(m_roots.TakeNotices(), std::back_inserter(notices));
    }
    for (const SettingsNotice& notice : notices) {
        const QString file = QString::fromStdString(notice.file);
        const QString reason = QString::fromStdString(notice.reason);
        m_notices += notice.kind == SettingsNotice::Kind::SetAside
                         ? UiText(text::kNoticeSetAside).arg(file)
                     : notice.kind == SettingsNotice::Kind::NotRead
                         ? UiText(text::kNoticeNotRead).arg(file, reason)
                         : UiText(text::kNoticeNotKept).arg(file, reason);
    }
    return std::exchange(m_notices, {}).join(QStringLiteral("\n\n"));
}

} // namespace fieldcore
