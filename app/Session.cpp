#include "app/Session.h"

#include "app/FramesDlg.h"
#include "app/MainWindow.h"
#include "app/SettingsSheet.h"
#include "core/host/MesBox.h"
#include "simulator/Scenario.h"
#include "simulator/ShippedScenarios.h"
#include "ui/controls/FileChoice.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/UiText.h"
#include "ui/link/ConnectDlg.h"
#include "ui/link/RecvForceInitDlg.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFontDatabase>

#include <cstdio>

namespace fieldcore {

Session::Session(Controller& controller)
    : m_controller(controller), m_window(std::make_unique<MainWindow>())
{
    connect(m_window.get(), &MainWindow::Chosen, this, &Session::Open);
    connect(&m_controller, &Controller::Changed, this,
            [this] { m_window->ShowState(m_controller.State(), m_controller.NowUtc()); });
    m_window->SetMayClose([this] { return MayEnd(); });
    ShowChosenTheme();
}

Session::~Session() = default;

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
    case MainWindow::kFrames:
        FramesDlg(m_controller.Frames(), m_window.get()).DoModal();
        break;
    case MainWindow::kSettings:
        ChangeSettings();
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
    SettingsSheet sheet(m_controller.Ports(), Scenarios(), m_controller.Choice(), m_window.get());
    if (sheet.DoModal() != Dialog::kOk) {
        return;
    }
    m_controller.UseTheme(sheet.ChosenTheme());
    ShowChosenTheme();
    const std::optional<ConnectChoice> port = sheet.ChosenPort();
    if (port && *port != m_controller.Choice()) {
        m_controller.Choose(*port);
        Connect();
    }
}

void Session::Connect()
{
    std::wstring fault;
    if (!m_controller.Connect(m_window.get(), fault) && !fault.empty()) {
        CMesBox(m_controller.Host()).Fail(fault, text::kConnectFailedCaption);
    }
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
    return {
        {QStringLiteral("plan-count"), plan(0)},
        {QStringLiteral("plan-skyplot"), plan(1)},
        {QStringLiteral("plan-azimuth"), plan(2)},
        {QStringLiteral("plan-elevation"), plan(3)},
        {QStringLiteral("plan-pdop"), plan(4)},
        {QStringLiteral("skyplot"),
         [this]() -> std::unique_ptr<QWidget> {
             return std::make_unique<CSkyPlot>(&m_controller.Command(), 0, SkyWorld());
         }},
        {QStringLiteral("frames"),
         [this]() -> std::unique_ptr<QWidget> {
             return std::make_unique<FramesDlg>(m_controller.Frames());
         }},
        {QStringLiteral("settings"),
         [this]() -> std::unique_ptr<QWidget> {
             return std::make_unique<SettingsSheet>(m_controller.Ports(), Scenarios(),
                                                    m_controller.Choice());
         }},
        {QStringLiteral("port"),
         [this]() -> std::unique_ptr<QWidget> {
             return std::make_unique<PortChooserDlg>(m_controller.Ports(), Scenarios(),
                                                     m_controller.Choice());
         }},
    };
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
