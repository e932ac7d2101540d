#include "app/Session.h"

#include "app/MainWindow.h"
#include "app/SettingsSheet.h"
#include "core/host/MesBox.h"
#include "core/link/Questions.h"
#include "core/link/RecvForceInit.h"
#include "core/platform/Version.h"
#include "ui/controls/FileChoice.h"
#include "ui/controls/Icon.h"
#include "ui/controls/PageAction.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/Antenna.h"
#include "ui/equipment/RecvFileMan.h"
#include "ui/equipment/StatusPage.h"
#include "ui/equipment/Version.h"
#include "ui/link/FramesView.h"
#include "ui/planning/SkyPlotDlg.h"
#include "ui/tilt/SetSignal.h"
#include "ui/tilt/TiltSensorDlg.h"
#include "ui/tilt/TiltStatusChk.h"
#include "ui/tilt/TiltStatusDlg.h"
#include "ui/tilt/TrackingDlg.h"

#include <QApplication>
#include <QScreen>

#include <functional>
#include <map>

namespace fieldcore {

Session::Session(Controller& controller)
    : m_controller(controller),
      m_bubble(ThemeIcon(QStringLiteral("tilt")), UiText(text::kBubbleTitle)),
      m_window(std::make_unique<MainWindow>())
{
    m_bubble.setCheckable(true);
    m_bubble.setShortcut(Qt::Key_F9);
    m_bubble.setShortcutContext(Qt::ApplicationShortcut);
    m_window->addAction(&m_bubble);
    SetPageAction(&m_bubble);
    SetPageHead([this](Dialog& page) { return MakeHead(page); });
    connect(&m_bubble, &QAction::triggered, this, &Session::SwitchBubble);
    TiltSensorDlg::SetObserver([this](TiltSensorDlg::Event event) {
        const bool isShown = event == TiltSensorDlg::Event::Shown;
        m_isBubbleWanted = m_isBubbleWanted && event != TiltSensorDlg::Event::Closed;
        m_bubble.setChecked(isShown);
        m_window->ShowBubble(isShown);
    });
    connect(m_window.get(), &MainWindow::Chosen, this, &Session::Open);
    connect(&m_controller, &Controller::Changed, this,
            [this] { m_window->ShowState(m_controller.State()); });
    connect(&m_controller, &Controller::Changed, this, &Session::CheckTiltWhenKnown);
    m_window->SetMayClose([this] { return MayEnd(); });
    m_window->CheckTheme(Theme::Used());
}

Session::~Session()
{
    TiltStatusChk::SetCheckCalib(nullptr, false);
    TiltSensorDlg::SetObserver({});
    TiltSensorDlg::ShutDown();
    SetPageAction(nullptr);
    SetPageHead({});
}

/// As long as the page lives: the state, and on one that wants a receiver a way to have one.
QWidget* Session::MakeHead(Dialog& page)
{
    auto* const head = new StatusStrip(&page, StatusStrip::Place::Page);
    const auto show = [this, head] { head->Show(m_controller.State()); };
    connect(&m_controller, &Controller::Changed, head, show);
    if (page.OffersConnection()) {
        head->OfferConnection();
        connect(head, &StatusStrip::ConnectionWanted, &page, [this, &page] {
            if (Connect(&page)) {
                page.Connected();
            }
        });
    }
    show();
    return head;
}

void Session::Begin()
{
    constexpr QSize kHandheld(480, 640);
    constexpr QSize kTall(480, 800);
    const QSize whole = m_controller.Host().IsQ77() ? kTall : kHandheld;
    m_window->resize(whole);
    FitOnScreen(*m_window);
    const QSize screen = m_window->screen()->size();
    // A screen that is no larger has no room for a frame.
    screen.boundedTo(whole) == screen ? m_window->showFullScreen() : m_window->show();
    if (m_controller.Options().language == Language::Japanese && !TouchStyle::CanDrawJapanese()) {
        CMesBox(m_controller.Host()).Warn(text::kAppNoJapaneseFont, text::kNoFontCaption);
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
    FitOnScreen(*m_window); // with its frame
    // Only the simulator is there for certain: a real receiver is asked for when the user wants it.
    // A name that is none of a port is told at once.
    const PortNameResult port = m_controller.Ports().Parse(m_controller.Choice().port);
    if (!port.port || port.port->kind == PortKind::Simulator) {
        Connect(m_window.get());
    }
}

bool Session::MayEnd()
{
    const bool isConnected = m_controller.Link().State() == LinkState::Connected;
    if (!CPrgEndMes::MayEnd(isConnected ? &m_controller.Command() : nullptr, m_window.get())) {
        return false;
    }
    m_controller.Disconnect();
    return true;
}

void Session::Open(int entry)
{
    QWidget* const window = m_window.get();
    CCommand* const command = &m_controller.Command();
    const std::map<int, std::function<void()>> entries{
        {text::kAppConnect, [this] { ChoosePort(); }},
        {text::kAppDisconnect, [this] { m_controller.Disconnect(); }},
        {text::kAppPlan,
         [&] {
             CSurveyPlan(command, 0, m_controller.PlanWorld(window), window).DoModal();
             TakeLinkOver();
         }},
        {text::kAppSatellites, [&] { CSkyPlot(command, 0, window).DoModal(); }},
        {text::kAppFiles, [this] { ShowFiles(); }},
        {text::kAppFrames, [&] { FramesView(m_controller.Frames(), window).DoModal(); }},
        {text::kComTitle, [this] { ChangePorts(); }},
        {text::kAppSettings, [this] { ChangeSettings(); }},
        {text::kAppAntenna, [this] { ChangeAntenna(); }},
        {text::kAppStatusButton, [this] { ShowStatus(); }},
        {text::kVersionTitle, [&] { ShowVersion(window); }},
        {text::kAppForceInit, [this] { ForceInit(); }},
        {text::kAppThemeDaylight, [this] { UseTheme(Theme::Kind::Daylight); }},
        {text::kAppThemeDark, [this] { UseTheme(Theme::Kind::Dark); }},
        {text::kAppThemeSystem, [this] { UseTheme(Theme::Kind::System); }},
        {text::kAppAbout, [this] { ShowAbout(); }},
        {text::kAppSignals, [&] { SetSignal(command, window).DoModal(); }},
        {text::kAppTilt,
         [&] {
             TiltStatusDlg(command, window).DoModal();
             if (m_isBubbleWanted) { // which the page shuts down at its end
                 StartBubble();
             }
         }},
        {text::kBubbleTitle, [this] { m_bubble.trigger(); }},
        {text::kAppTracking,
         [&] {
             TrackingDlg(command, window).DoModal();
             m_controller.ReadLimits();
         }},
    };
    entries.at(entry)();
}

void Session::ShowFiles()
{
    const bool isOpen = m_controller.Command().IsPortOpen() != 0;
    if (!isOpen && !Connect(m_window.get())) {
        return; // there is nothing to list
    }
    CRecvFileMan sheet(&m_controller.Command(), 0, nullptr,
                       {m_controller.MakesConnect(m_window.get())}, m_window.get());
    sheet.DoModal();
    TakeLinkOver();
}

void Session::ChoosePort()
{
    PortChooserDlg chooser(m_controller.Ports(), Scenarios(), m_controller.Choice(), {},
                           m_window.get());
    if (chooser.DoModal() == Dialog::kOk) {
        Use(chooser.Choice());
    }
}

void Session::ChangeSettings()
{
    SettingsSheet sheet(m_controller, m_window.get());
    if (sheet.DoModal() != Dialog::kOk) {
        return;
    }
    m_window->CheckTheme(Theme::Used());
    const std::optional<ConnectChoice> port = sheet.ChosenPort();
    if (port && *port != m_controller.Choice()) {
        Use(*port);
    }
}

/// Connects to where the user wants to from now on.
void Session::Use(const ConnectChoice& choice)
{
    if (!m_controller.Choose(choice)) {
        CMesBox(m_controller.Host()).Fail(text::kAppPortNotStored, text::kComFailedCaption);
    }
    Connect(m_window.get());
}

void Session::ChangeAntenna()
{
    const AntennaSettings& antenna = m_controller.Antenna();
    CAntenna dialog(&m_controller.Command(), 0, 0, m_window.get());
    dialog.SetRole(antenna.Role());
    dialog.OfferRoles();
    const bool isStored = dialog.DoModal() == Dialog::kOk;
    m_controller.UseAntenna(isStored ? dialog.Role() : antenna.Role());
}

void Session::ChangePorts()
{
    CComPort sheet(&m_controller.Command(), m_controller.ReceiverPort(), UiText(text::kComTitle),
                   m_window.get(), CComPort::kLastPage, m_controller.PortsWorld());
    const int result = sheet.DoModal();
    if (result == CComPort::kConnected) {
        ChangePorts();
    }
    if (result != Dialog::kOk || !sheet.IsLinkChanged()) {
        return;
    }
    if (const int told = m_controller.FollowLink(sheet.Edit()); told != 0) {
        CMesBox(m_controller.Host()).Warn(told, text::kComLinkCaption);
    }
}

bool Session::Connect(QWidget* page)
{
    std::wstring fault;
    const bool isConnected = m_controller.Connect(page, fault);
    if (isConnected) {
        CheckTiltSoon();
    } else if (!fault.empty()) {
        CMesBox(m_controller.Host()).Fail(fault, text::kConnectFailedCaption);
    }
    return isConnected;
}

void Session::TakeLinkOver()
{
    std::wstring unused; // the port is open: nothing is left that could fail without being told
    if (m_controller.Command().IsPortOpen() != 0 &&
        m_controller.Link().State() != LinkState::Connected &&
        m_controller.ConnectQuietly(unused)) {
        CheckTiltSoon();
    }
}

void Session::CheckTiltSoon()
{
    m_isTiltOpen = true;
    CheckTiltWhenKnown();
}

void Session::CheckTiltWhenKnown()
{
    if (!m_isTiltOpen || !m_controller.HasTilt() || QApplication::activeModalWidget() != nullptr) {
        return; // a page that has connected by itself is not interrupted
    }
    m_isTiltOpen = false;
    constexpr int kTimer = 1;
    constexpr int kDelayMs = 1000; // a sensor that has just been switched on is not ready at once
    TiltStatusChk::SetCheckCalib(&m_controller.Command(), true);
    TiltStatusChk::SttCheckCalib(m_window.get(), kTimer, kDelayMs);
}

void Session::SwitchBubble(bool isWanted)
{
    m_isBubbleWanted = isWanted;
    if (isWanted) {
        StartBubble();
    } else if (TiltSensorDlg* const bubble = TiltSensorDlg::Instance()) {
        bubble->Close(Dialog::kCancelled);
    }
}

void Session::StartBubble()
{
    QWidget* const page = QApplication::activeModalWidget();
    if (page == nullptr) {
        m_window->ShowBubble(true); // which makes its place
    }
    TiltSensorDlg::StartUp(&m_controller.Command(), m_window.get(),
                           page != nullptr ? page : m_window->BubbleAnchor());
}

void Session::ForceInit()
{
    const Questions::Quiet quiet(m_controller.Command());
    CRecvForceInit reset(m_controller.Command());
    if (reset.DoModal(*m_controller.MakesConnect(m_window.get())(m_controller.Command())) ==
        CRecvForceInit::Done) {
        ForgetPorts(m_controller.Roots());
    }
}

void Session::ShowAbout()
{
    const QString words = UiText(text::kAppAboutText).arg(QString::fromLatin1(Version()));
    CMesBox(m_controller.Host())
        .Show(words.toStdWString(), text::kAppTitle, {BoxButtons::Ok, BoxIcon::Information});
}

void Session::ShowStatus()
{
    StatusPage page(m_window.get());
    const auto show = [this, &page] {
        page.Show(m_controller.State().receiver, m_controller.Poll().History(),
                  m_controller.View());
    };
    connect(&m_controller, &Controller::Changed, &page, show);
    connect(&page, &StatusPage::VersionRequested, this, [this, &page] { ShowVersion(&page); });
    show();
    page.DoModal();
}

void Session::ShowVersion(QWidget* parent)
{
    CVersion(&m_controller.Command(), parent, m_controller.Link().Heard().identity).DoModal();
}

void Session::UseTheme(Theme::Kind kind)
{
    m_controller.UseTheme(kind);
    m_window->CheckTheme(Theme::Used());
}

} // namespace fieldcore
