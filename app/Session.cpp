#include "app/Session.h"

#include "app/FilePictures.h"
#include "app/FramesDlg.h"
#include "app/MainWindow.h"
#include "app/SettingsSheet.h"
#include "app/TiltScreens.h"
#include "core/host/MesBox.h"
#include "simulator/Scenario.h"
#include "simulator/ShippedScenarios.h"
#include "ui/controls/FileChoice.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/Antenna.h"
#include "ui/link/ConnectDlg.h"
#include "ui/link/RecvForceInitDlg.h"
#include "ui/tilt/SetSignal.h"
#include "ui/tilt/TiltStatusChk.h"
#include "ui/tilt/TiltStatusDlg.h"
#include "ui/tilt/TrackingDlg.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFontDatabase>

#include <algorithm>
#include <cstdio>

namespace fieldcore {

Session::Session(Controller& controller)
    : m_controller(controller), m_window(std::make_unique<MainWindow>())
{
    connect(m_window.get(), &MainWindow::Chosen, this, &Session::Open);
    connect(&m_controller, &Controller::Changed, this,
            [this] { m_window->ShowState(m_controller.State(), m_controller.NowUtc()); });
    connect(&m_controller, &Controller::BatteryIsLow, this, &Session::WarnOfBattery,
            Qt::QueuedConnection); // not from inside of a round
    m_window->SetMayClose([this] { return MayEnd(); });
    ShowChosenTheme();
}

Session::~Session()
{
    TiltStatusChk::SetCheckCalib(nullptr, false);
}

void Session::Begin()
{
    constexpr QSize kHandheld(480, 640);
    m_window->resize(kHandheld);
    m_window->show();
    if (QFontDatabase::families(QFontDatabase::Japanese).isEmpty()) {
        CMesBox(m_controller.Host()).Warn(text::kAppNoJapaneseFont, text::kAppTitle);
    }
    if (const QString notice = m_controller.TakeNotice(); !notice.isEmpty()) {
        CMesBox(m_controller.Host()).Warn(notice.toStdWString(), text::kAppNotice);
    }
    constexpr int kWhenPainted = 50; // ms: connecting may take seconds
    QTimer::singleShot(kWhenPainted, this, &Session::ConnectAtStart);
}

void Session::ConnectAtStart()
{
    UseJapaneseTextsOfQt();
    // Only the simulator is there for certain: a real receiver is asked for when the user wants it.
    const PortNameResult port = m_controller.Ports().Parse(m_controller.Choice().port);
    if (port.port && port.port->kind == PortKind::Simulator) {
        Connect();
    }
}

bool Session::MayEnd()
{
    const bool isConnected = m_controller.Link().State() == LinkState::Connected;
    CPrgEndMes question(isConnected ? CPrgEndMes::Mode::Logging : CPrgEndMes::Mode::Normal,
                        m_window.get());
    const int answer = question.DoModal();
    if (answer == CPrgEndMes::kStay) {
        return false;
    }
    const ReceiverLink::Hold hold(m_controller.Link());
    if (answer != CPrgEndMes::kEnd && isConnected) {
        m_controller.Command().PowerOff();
    }
    m_controller.Disconnect();
    return true;
}

void Session::Open(int choice)
{
    switch (choice) {
    case MainWindow::kConnect:
        ChoosePort();
        break;
    case MainWindow::kDisconnect:
        m_controller.Disconnect();
        break;
    case MainWindow::kPlan:
        CSurveyPlan(&m_controller.Command(), 0, PlanWorld(), m_window.get()).DoModal();
        break;
    case MainWindow::kSkyPlot:
        CSkyPlot(&m_controller.Command(), 0, SkyWorld(), m_window.get()).DoModal();
        break;
    case MainWindow::kFiles:
        ShowFiles();
        break;
    case MainWindow::kFrames:
        FramesDlg(m_controller.Frames(), m_window.get()).DoModal();
        break;
    case MainWindow::kPorts:
        ChangePorts();
        break;
    case MainWindow::kSettings:
        ChangeSettings();
        break;
    case MainWindow::kAntenna:
        ChangeAntenna();
        break;
    case MainWindow::kStatus:
        ShowStatus();
        break;
    case MainWindow::kVersion:
        ShowVersion(m_window.get());
        break;
    case MainWindow::kForceInit:
        ForceInit();
        break;
    case MainWindow::kThemeDaylight:
    case MainWindow::kThemeDark:
    case MainWindow::kThemeSystem:
        m_controller.UseTheme(static_cast<Theme::Kind>(choice - MainWindow::kThemeDaylight));
        ShowChosenTheme();
        break;
    case MainWindow::kAbout:
        ShowAbout();
        break;
    case MainWindow::kSignals:
        SetSignal(&m_controller.Command(), m_controller.Reg(), m_window.get()).DoModal();
        break;
    case MainWindow::kTilt:
        TiltStatusDlg(&m_controller.Command(), m_controller.Reg(), m_window.get()).DoModal();
        break;
    case MainWindow::kTracking:
        TrackingDlg(m_controller.Roots(), m_window.get()).DoModal();
        break;
    default:
        break;
    }
}

PlanSurroundings Session::PlanWorld()
{
    PlanSurroundings world;
    world.folder = m_controller.ProgramFolder();
    world.roots = &m_controller.Roots();
    world.clock = &m_controller.GetClock();
    world.makeConnect = [this](CCommand& command) -> std::unique_ptr<CConnect> {
        std::wstring fault;
        const std::optional<ConnectTarget> target = m_controller.Target(fault);
        return std::make_unique<ConnectDlg>(command, 0, target.value_or(ConnectTarget{}),
                                            m_window.get());
    };
    return world;
}

CSkyPlot::Surroundings Session::SkyWorld() const
{
    return {&m_controller.Reg(), &m_controller.GetClock(), m_controller.ProgramFolder()};
}

CRecvFileMan::Surroundings Session::FilesWorld()
{
    CRecvFileMan::Surroundings world;
    world.makeConnect = PlanWorld().makeConnect;
    return world;
}

void Session::ShowFiles()
{
    const ReceiverLink::Hold hold(m_controller.Link());
    CRecvFileMan sheet(&m_controller.Command(), 0, nullptr, FilesWorld(), m_window.get());
    sheet.resize(m_window->size());
    sheet.DoModal();
}

std::vector<ScenarioChoice> Session::Scenarios()
{
    std::vector<ScenarioChoice> choices;
    for (const simulator::ShippedScenario& shipped : simulator::AllShippedScenarios()) {
        std::string error;
        const auto scenario = simulator::LoadScenario(std::string(shipped.name), error);
        choices.push_back({std::string(shipped.name),
                           scenario ? QString::fromStdString(scenario->titleJa) : QString()});
    }
    return choices;
}

void Session::ChoosePort()
{
    const ReceiverLink::Hold hold(m_controller.Link());
    PortChooserDlg chooser(m_controller.Ports(), Scenarios(), m_controller.Choice(), {},
                           m_window.get());
    if (chooser.DoModal() == Dialog::kOk) {
        m_controller.Choose(chooser.Choice());
        Connect();
    }
}

void Session::ChangeSettings()
{
    SettingsSheet sheet(m_controller.Ports(), Scenarios(), m_controller.Choice(),
                        m_controller.MaySetClock(), m_window.get());
    if (sheet.DoModal() != Dialog::kOk) {
        return;
    }
    m_controller.UseTheme(sheet.ChosenTheme());
    if (sheet.MaySetClock() != m_controller.MaySetClock()) {
        m_controller.SetMaySetClock(sheet.MaySetClock());
    }
    ShowChosenTheme();
    const std::optional<ConnectChoice> port = sheet.ChosenPort();
    if (port && *port != m_controller.Choice()) {
        m_controller.Choose(*port);
        Connect();
    }
}

void Session::ChangeAntenna()
{
    const ReceiverLink::Hold hold(m_controller.Link());
    const AntennaSettings& antenna = m_controller.Antenna();
    CAntenna dialog(&m_controller.Command(), 0, 0,
                    {m_controller.ProgramFolder(), &m_controller.Roots()}, m_window.get());
    dialog.SetRole(antenna.Role());
    dialog.OfferRoles();
    const bool isStored = dialog.DoModal() == Dialog::kOk;
    m_controller.UseAntenna(isStored ? dialog.Role() : antenna.Role());
}

std::unique_ptr<QWidget> Session::AntennaScreen(int way, double heightM)
{
    auto dialog = std::make_unique<CAntenna>(
        &m_controller.Command(), 1, 0,
        AntennaSettings::Surroundings{m_controller.ProgramFolder(), &m_controller.Roots()});
    dialog->show(); // which reads the settings
    dialog->SetAntTypeFlag(std::min(3, dialog->GetMaxCount() - 1));
    dialog->SetAntWayFlag(way);
    dialog->SetAntInputH(heightM);
    dialog->ShowValues();
    return dialog;
}

CComPort::Surroundings Session::PortsWorld()
{
    const auto target = [this] {
        std::wstring fault;
        return m_controller.Target(fault);
    };
    return {&m_controller.Roots(), m_controller.ReceiverPorts(), target};
}

void Session::ChangePorts()
{
    const ReceiverLink::Hold hold(m_controller.Link());
    CComPort sheet(&m_controller.Command(), m_controller.ReceiverPort(), UiText(text::kComTitle),
                   m_window.get(), CComPort::kLastPage, PortsWorld());
    if (sheet.DoModal() != Dialog::kOk || !sheet.IsLinkChanged()) {
        return;
    }
    if (const int told = m_controller.FollowLink(sheet.Edit()); told != 0) {
        CMesBox(m_controller.Host()).Warn(told, text::kComLinkCaption);
    }
}

void Session::Connect()
{
    std::wstring fault;
    if (m_controller.Connect(m_window.get(), fault)) {
        CheckTiltSoon();
    } else if (!fault.empty()) {
        CMesBox(m_controller.Host()).Fail(fault, text::kConnectFailedCaption);
    }
}

void Session::CheckTiltSoon()
{
    constexpr int kTimer = 1;
    constexpr int kDelayMs = 1000; // a sensor that has just been switched on is not ready at once
    TiltStatusChk::SetCheckCalib(&m_controller.Command(), m_controller.HasTilt());
    TiltStatusChk::SttCheckCalib(m_window.get(), kTimer, kDelayMs);
}

void Session::ForceInit()
{
    std::wstring fault;
    const std::optional<ConnectTarget> target = m_controller.Target(fault);
    if (!target) {
        CMesBox(m_controller.Host()).Fail(fault, text::kConnectFailedCaption);
        return;
    }
    const ReceiverLink::Hold hold(m_controller.Link());
    RecvForceInitDlg(m_controller.Command(), *target, m_window.get()).DoModal();
}

void Session::ShowAbout()
{
    const QString words = UiText(text::kAppAboutText).arg(QStringLiteral(FIELDCORE_VERSION));
    CMesBox(m_controller.Host())
        .Show(words.toStdWString(), text::kAppTitle, {BoxButtons::Ok, BoxIcon::Information});
}

void Session::ShowChosenTheme()
{
    m_window->CheckTheme(MainWindow::kThemeDaylight + static_cast<int>(Theme::Used()));
}

std::vector<Session::Screen> Session::Screens()
{
    const auto plan = [this](int drawType) {
        return [this, drawType]() -> std::unique_ptr<QWidget> {
            auto dialog = std::make_unique<CSurveyPlan>(&m_controller.Command(), 0, PlanWorld());
            dialog->show();
            for (QAction* action : dialog->findChildren<QAction*>()) {
                if (action->data().toInt() == CSurveyPlan::GetMenuID(drawType)) {
                    action->trigger();
                }
            }
            return dialog;
        };
    };
    const auto files = std::make_shared<FilePictures>(m_controller.Host(), m_controller.GetClock());
    const auto ports = [this](int count) {
        return [this, count]() -> std::unique_ptr<QWidget> {
            CComPort::Surroundings world = PortsWorld();
            world.ports = count;
            return std::make_unique<CComPort>(&m_controller.Command(), m_controller.ReceiverPort(),
                                              UiText(text::kComTitle), nullptr, count - 1, world);
        };
    };
    std::vector<Screen> screens{
        {QStringLiteral("com-1"), ports(1)},
        {QStringLiteral("com-2"), ports(2)},
        {QStringLiteral("com-3"), ports(3)},
        {QStringLiteral("files"), [files] { return files->Sheet(0); }},
        {QStringLiteral("files-bin"), [files] { return files->Sheet(1); }},
        {QStringLiteral("files-progress"), [files] { return files->Progress(); }},
        {QStringLiteral("files-destination"), [files] { return files->Destination(); }},
        {QStringLiteral("files-error"), &FilePictures::Error},
        {QStringLiteral("plan-count"), plan(0)},
        {QStringLiteral("plan-skyplot"), plan(1)},
        {QStringLiteral("plan-azimuth"), plan(2)},
        {QStringLiteral("plan-elevation"), plan(3)},
        {QStringLiteral("plan-pdop"), plan(4)},
        {QStringLiteral("skyplot"),
         [this]() -> std::unique_ptr<QWidget> {
             return std::make_unique<CSkyPlot>(&m_controller.Command(), 0, SkyWorld());
         }},
        {QStringLiteral("antenna-vertical"), [this] { return AntennaScreen(0, 1.543); }},
        {QStringLiteral("antenna-slant"), [this] { return AntennaScreen(1, 1.543); }},
        {QStringLiteral("antenna-base"), [this] { return AntennaScreen(2, 1.543); }},
        {QStringLiteral("antenna-too-short"), [this] { return AntennaScreen(1, 0.05); }},
        {QStringLiteral("frames"),
         [this]() -> std::unique_ptr<QWidget> {
             return std::make_unique<FramesDlg>(m_controller.Frames());
         }},
        {QStringLiteral("settings"),
         [this]() -> std::unique_ptr<QWidget> {
             return std::make_unique<SettingsSheet>(m_controller.Ports(), Scenarios(),
                                                    m_controller.Choice(),
                                                    m_controller.MaySetClock());
         }},
        {QStringLiteral("port"),
         [this]() -> std::unique_ptr<QWidget> {
             return std::make_unique<PortChooserDlg>(m_controller.Ports(), Scenarios(),
                                                     m_controller.Choice());
         }},
    };
    AddStatusScreens(screens);
    for (TiltScreen& screen : TiltScreens(m_controller)) {
        screens.push_back({screen.name, screen.make});
    }
    return screens;
}

int Session::WriteScreenshots(const QString& folder)
{
    constexpr int kLocalFile = 8;
    struct Look
    {
        const char* name;
        QSize size;
        Theme::Kind theme;
    };
    constexpr Look kLooks[] = {
        {"480x640-daylight", {480, 640}, Theme::Kind::Daylight},
        {"480x640-dark", {480, 640}, Theme::Kind::Dark},
        {"1280x800-daylight", {1280, 800}, Theme::Kind::Daylight},
        {"1280x800-dark", {1280, 800}, Theme::Kind::Dark},
    };
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "fieldcore: %s cannot be made.\n", qPrintable(folder));
        return kLocalFile;
    }
    std::wstring fault;
    m_controller.ConnectQuietly(fault);
    m_controller.Link().Tick(); // which asks for the status
    m_window->ShowState(m_controller.State(), m_controller.NowUtc());
    bool written = true;
    const auto grab = [&](QWidget& window, const QString& name, const Look& look) {
        window.resize(look.size);
        window.show();
        QCoreApplication::processEvents();
        const QString file = QDir(folder).filePath(
            name + QLatin1Char('-') + QLatin1String(look.name) + QStringLiteral(".png"));
        const bool saved = window.grab().save(file);
        std::printf("%s\n", qPrintable(saved ? file : file + QStringLiteral(": not written")));
        written = written && saved;
    };
    for (const Look& look : kLooks) {
        Theme::Use(look.theme);
        m_window->ShowState(m_controller.State(), m_controller.NowUtc()); // in its colours
        grab(*m_window, QStringLiteral("home"), look);
        for (const Screen& screen : Screens()) {
            const std::unique_ptr<QWidget> window = screen.make();
            grab(*window, screen.name, look);
            window->hide();
        }
    }
    m_controller.Disconnect();
    return written ? 0 : kLocalFile;
}

} // namespace fieldcore
