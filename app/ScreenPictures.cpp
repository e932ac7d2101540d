#include "app/ScreenPictures.h"

#include "app/Controller.h"
#include "app/FilePictures.h"
#include "app/FramesDlg.h"
#include "app/MainWindow.h"
#include "app/SettingsSheet.h"
#include "app/SimulatedHour.h"
#include "app/TiltScreens.h"
#include "app/Worlds.h"
#include "core/orbits/NavigationFile.h"
#include "core/orbits/SystemTime.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/Degrees.h"
#include "core/planning/NominalConstellation.h"
#include "core/platform/Utf8.h"
#include "simulator/Scenario.h"
#include "simulator/Sky.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/Antenna.h"
#include "ui/equipment/StatusHistoryView.h"
#include "ui/equipment/StatusPage.h"
#include "ui/equipment/Version.h"
#include "ui/planning/CurtainEditor.h"
#include "ui/planning/LiveSkyStyle.h"
#include "ui/planning/PlanSearchDlg.h"
#include "ui/planning/PlanSheet.h"
#include "ui/planning/SessionDlg.h"
#include "ui/planning/SessionSheet.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <optional>
#include <span>

namespace fieldcore {

namespace {

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

/// On the controller with the taller screen.
constexpr Look kTallLooks[] = {
    {"q77-480x800-daylight", {480, 800}, Theme::Kind::Daylight},
    {"q77-480x640-daylight", {480, 640}, Theme::Kind::Daylight},
};

bool Grab(QWidget& window, const QString& name, const Look& look, const QDir& folder)
{
    if (window.minimumWidth() != window.maximumWidth()) { // a message has its own size
        window.resize(look.size);
    }
    window.show();
    for (int i = 0; i < 3; ++i) { // some fill their lists behind the first painting
        QCoreApplication::processEvents();
    }
    const QString file = folder.filePath(name + QLatin1Char('-') + QLatin1String(look.name) +
                                         QStringLiteral(".png"));
    const bool saved = window.grab().save(file);
    if (!saved) {
        std::fprintf(stderr, "fieldcore: %s cannot be written.\n", qPrintable(file));
    }
    return saved;
}

/// Processes events until @p isDone, five seconds at most.
void WaitUntil(const std::function<bool()>& isDone)
{
    const QDeadlineTimer patience(std::chrono::seconds(5));
    while (!isDone() && !patience.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
}

void Press(QWidget& screen, int textId)
{
    for (QPushButton* const button : screen.findChildren<QPushButton*>()) {
        if (button->text() == UiText(textId)) {
            button->click();
            return;
        }
    }
}

/// The plan with all systems, from made-up messages, and what opens from it.
class PlanPictures
{
public:
    explicit PlanPictures(Controller& controller)
        : m_controller(controller), m_world(PlanWorld(controller, nullptr))
    {
        m_world.skyNotes = [this] {
            return SkyRecorder::Now{SkyRecorder::State::Noting, Noted(), {}, {}};
        };
    }

    std::unique_ptr<CSurveyPlan> Plan(PlanGraph graph)
    {
        const auto now = std::chrono::floor<std::chrono::seconds>(m_controller.GetClock().Utc());
        const double nowS = GpsSecondsOfUtc(now);
        static_cast<void>(KeepMessages(m_world.folder, NominalMessages(nowS), nowS));
        auto plan = std::make_unique<CSurveyPlan>(&m_controller.Command(), 0, m_world);
        plan->show();
        SystemSet all = SystemSet().set();
        plan->Session().SetSystems(all.reset(static_cast<std::size_t>(GnssSystem::Sbas)));
        plan->Session().SetGraph(static_cast<int>(graph));
        plan->DrawResults();
        return plan;
    }

    std::unique_ptr<QWidget> LargeGraph()
    {
        auto plan = Plan(PlanGraph::SkyPlot);
        for (auto* const button : plan->findChildren<QToolButton*>()) {
            if (button->accessibleName() == UiText(text::kPlanEnlarge)) {
                button->click();
            }
        }
        return plan;
    }

    /// What the user is told of a file that was read.
    std::unique_ptr<QWidget> Imported()
    {
        QStringList lines;
        for (std::size_t k = 0; k < kGnssSystems; ++k) {
            const auto system = static_cast<GnssSystem>(k);
            if (const SystemState state = Session().Plan().StateOf(system); state.satellites > 0) {
                lines += UiText(text::kOrbitsCame)
                             .arg(SystemText(system))
                             .arg(state.satellites)
                             .arg(DateText(UtcOfGpsSeconds(state.lastS)));
            }
        }
        return std::make_unique<MessageDlg>(lines.join(QLatin1Char('\n')),
                                            UiText(text::kOrbitsRead),
                                            BoxStyle{BoxButtons::Ok, BoxIcon::Information});
    }

    std::unique_ptr<QWidget> Search(bool isDone)
    {
        auto dialog = std::make_unique<PlanSearchDlg>(Session(), m_controller.Host());
        dialog->show();
        if (isDone) {
            Press(*dialog, text::kSearchStart);
            const auto* const pages = dialog->findChild<QStackedWidget*>();
            WaitUntil([pages] { return pages->currentIndex() == 1; });
        }
        return dialog;
    }

    std::unique_ptr<QWidget> Sites(bool isDone)
    {
        auto dialog = std::make_unique<SessionDlg>(Session(), m_world, m_controller.Host());
        dialog->show();
        auto* const list = dialog->findChild<QListWidget*>();
        for (const std::wstring& name : Names()) {
            for (QListWidgetItem* const item : list->findItems(ToQt(name), Qt::MatchExactly)) {
                item->setCheckState(Qt::Checked);
            }
        }
        if (isDone) {
            Press(*dialog, text::kSessionShow);
        }
        return dialog;
    }

    std::unique_ptr<QWidget> Sheet()
    {
        const std::vector<SiteSky> sites = SkiesOfSites(Session(), Names());
        const PlanPeriod& period = Session().Plan().Computed();
        PlanSearch search =
            SearchOf(Session().Plan(), std::span<const SiteSky>(sites),
                     {period.date, 1, period.startHour, period.hours, period.Interval()});
        while (search.Step()) {
        }
        QPixmap page(plan_sheet::kPage.toSize());
        page.fill(Qt::white);
        QPainter painter(&page);
        session_sheet::Paint(painter, Session(), sites, search, 0);
        painter.end();
        auto made = std::make_unique<QLabel>();
        made->setPixmap(page);
        made->setFixedSize(page.size());
        return made;
    }

    std::unique_ptr<QWidget> Curtain()
    {
        auto dialog = std::make_unique<CurtainEditor>(Session(), m_world, m_controller.Host());
        dialog->show();
        return dialog;
    }

private:
    PlanSession& Session()
    {
        if (!m_plan) {
            m_plan = Plan(PlanGraph::SkyPlot);
            m_plan->hide();
        }
        return m_plan->Session();
    }

    std::vector<std::wstring> Names()
    {
        return {Session().Settings().position, L"神奈川県横浜市", L"千葉県千葉市"};
    }

    /// What twelve hours of the simulated street show of it.
    SkyRecord Noted()
    {
        std::string error;
        const auto street = simulator::LoadScenario("street", error);
        CSurveyPlanCalc calc;
        SkyRecord record(Session().Site());
        if (!street || !calc.LoadAlmanac(AlmanacPath(m_world.folder))) {
            return record;
        }
        calc.SetObserver(Session().Site());
        const GpsEpoch start = ToEpoch(Session().Plan().Period().Start());
        constexpr int kRounds = 1440;
        for (int round = 0; round < kRounds; ++round) {
            record.BeginNotes(m_controller.GetClock().Utc());
            calc.SetTime(start.week, start.sowS + round * 30.0);
            for (int i = 0; i < kMaxPrn; ++i) {
                if (calc.TestVisibility(i) == 1) {
                    const CAlmanacSatellite& satellite = calc.GetSatellite(i);
                    const SkyDirection to{satellite.GetAzimuth(), satellite.GetElevation()};
                    const double skyline =
                        simulator::ObstructionDeg(*street, DegreesOf(to.azimuthRad));
                    DegreesOf(to.elevationRad) < std::max(skyline, street->maskDeg)
                        ? record.NoteMissed(to)
                        : record.NoteTracked(to);
                }
            }
        }
        return record;
    }

    Controller& m_controller;
    PlanSurroundings m_world;
    std::unique_ptr<CSurveyPlan> m_plan;
};

} // namespace

ScreenPictures::ScreenPictures(Controller& controller, MainWindow& window)
    : m_controller(controller), m_window(window)
{}

int ScreenPictures::Write(const QString& folder, const std::function<bool()>& stop)
{
    constexpr int kNoPort = 3; // as of the command line
    constexpr int kCancelled = 7;
    constexpr int kLocalFile = 8;
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "fieldcore: %s cannot be made.\n", qPrintable(folder));
        return kLocalFile;
    }
    std::wstring fault;
    if (!m_controller.ConnectQuietly(fault) && !m_controller.Target().target) {
        std::fprintf(stderr, "fieldcore: %s\n", ToUtf8(fault).c_str());
        return kNoPort;
    }
    WaitUntil([this] { return m_controller.Link().Heard().powerSource.has_value(); });
    int written = 0;
    int failed = 0;
    const bool isTall = m_controller.Host().IsQ77();
    const auto looks = isTall ? std::span<const Look>(kTallLooks) : std::span(kLooks);
    const auto grab = [&](QWidget& screen, const QString& name) {
        for (const Look& look : looks) {
            Theme::Use(look.theme);
            m_window.ShowState(m_controller.State()); // in its colours
            ++(Grab(screen, name, look, folder) ? written : failed);
        }
        screen.hide();
    };
    grab(m_window, QStringLiteral("home"));
    for (const Picture& picture : All()) {
        if (stop()) {
            m_controller.Disconnect();
            return kCancelled;
        }
        grab(*picture.make(), picture.name);
    }
    m_controller.Disconnect();
    std::printf("%d pictures in %s\n", written, qPrintable(folder));
    return failed == 0 ? 0 : kLocalFile;
}

ScreenPictures::Pictures ScreenPictures::All()
{
    Pictures all;
    for (const Pictures& group :
         {Own(), Ports(), Files(), Planning(), Antennas(), Status(), TiltScreens(m_controller)}) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

ScreenPictures::Pictures ScreenPictures::Own()
{
    return {{QStringLiteral("frames"),
             [this]() -> std::unique_ptr<QWidget> {
                 return std::make_unique<FramesDlg>(m_controller.Frames());
             }},
            {QStringLiteral("settings"),
             [this]() -> std::unique_ptr<QWidget> {
                 return std::make_unique<SettingsSheet>(m_controller.Ports(), Scenarios(),
                                                        m_controller.Choice(),
                                                        m_controller.MaySetClock());
             }},
            {QStringLiteral("port"), [this]() -> std::unique_ptr<QWidget> {
                 return std::make_unique<PortChooserDlg>(m_controller.Ports(), Scenarios(),
                                                         m_controller.Choice());
             }}};
}

ScreenPictures::Pictures ScreenPictures::Ports()
{
    Pictures made;
    for (int count = 1; count <= 3; ++count) {
        made.push_back(
            {QStringLiteral("com-%1").arg(count), [this, count]() -> std::unique_ptr<QWidget> {
                 CComPort::Surroundings world = PortsWorld(m_controller);
                 world.ports = count;
                 return std::make_unique<CComPort>(
                     &m_controller.Command(), m_controller.ReceiverPort(), UiText(text::kComTitle),
                     nullptr, count - 1, world);
             }});
    }
    return made;
}

ScreenPictures::Pictures ScreenPictures::Files()
{
    const auto files = std::make_shared<FilePictures>(m_controller.Host(), m_controller.GetClock());
    return {{QStringLiteral("files"), [files] { return files->Sheet(0); }},
            {QStringLiteral("files-bin"), [files] { return files->Sheet(1); }},
            {QStringLiteral("files-progress"), [files] { return files->Progress(); }},
            {QStringLiteral("files-destination"), [files] { return files->Destination(); }},
            {QStringLiteral("files-error"), &FilePictures::Error}};
}

ScreenPictures::Pictures ScreenPictures::Planning()
{
    Pictures made;
    const char* const names[] = {"count", "skyplot", "azimuth", "elevation", "pdop"};
    for (int drawType = 0; drawType < static_cast<int>(std::size(names)); ++drawType) {
        made.push_back({QStringLiteral("plan-") + QLatin1String(names[drawType]),
                        [this, drawType]() -> std::unique_ptr<QWidget> {
                            auto dialog = std::make_unique<CSurveyPlan>(
                                &m_controller.Command(), 0, PlanWorld(m_controller, nullptr));
                            dialog->show();
                            for (QAction* action : dialog->findChildren<QAction*>()) {
                                if (action->data().toInt() == CSurveyPlan::GetMenuID(drawType)) {
                                    action->trigger();
                                }
                            }
                            return dialog;
                        }});
    }
    made.push_back(
        {QStringLiteral("skyplot"), [this]() -> std::unique_ptr<QWidget> {
             auto dialog =
                 std::make_unique<CSkyPlot>(&m_controller.Command(), 0, SkyWorld(m_controller));
             dialog->show(); // which asks the receiver
             const auto* const list = dialog->findChild<QAbstractItemView*>();
             WaitUntil([list] { return list == nullptr || list->model()->rowCount() > 0; });
             return dialog;
         }});
    const auto pictures = std::make_shared<PlanPictures>(m_controller);
    const Pictures more{
        {QStringLiteral("plan-all-count"), [pictures] { return pictures->Plan(PlanGraph::Count); }},
        {QStringLiteral("plan-all-skyplot"),
         [pictures] { return pictures->Plan(PlanGraph::SkyPlot); }},
        {QStringLiteral("plan-all-elevation"),
         [pictures] { return pictures->Plan(PlanGraph::Elevation); }},
        {QStringLiteral("plan-all-large"), [pictures] { return pictures->LargeGraph(); }},
        {QStringLiteral("plan-import"), [pictures] { return pictures->Imported(); }},
        {QStringLiteral("plan-search"), [pictures] { return pictures->Search(false); }},
        {QStringLiteral("plan-search-calendar"), [pictures] { return pictures->Search(true); }},
        {QStringLiteral("plan-session-sites"), [pictures] { return pictures->Sites(false); }},
        {QStringLiteral("plan-session"), [pictures] { return pictures->Sites(true); }},
        {QStringLiteral("plan-session-sheet"), [pictures] { return pictures->Sheet(); }},
        {QStringLiteral("curtain-proposal"), [pictures] { return pictures->Curtain(); }},
    };
    made.insert(made.end(), more.begin(), more.end());
    return made;
}

ScreenPictures::Pictures ScreenPictures::Antennas()
{
    const auto antenna = [this](int way, double heightM) {
        return [this, way, heightM]() -> std::unique_ptr<QWidget> {
            auto dialog = std::make_unique<CAntenna>(
                &m_controller.Command(), 1, 0,
                AntennaSettings::Surroundings{m_controller.ProgramFolder(), &m_controller.Roots()});
            dialog->show(); // which reads the settings
            dialog->SetAntTypeFlag(std::min(3, dialog->GetMaxCount() - 1));
            dialog->SetAntWayFlag(way);
            dialog->SetAntInputH(heightM);
            dialog->ShowValues();
            return dialog;
        };
    };
    return {{QStringLiteral("antenna-vertical"), antenna(0, 1.543)},
            {QStringLiteral("antenna-slant"), antenna(1, 1.543)},
            {QStringLiteral("antenna-base"), antenna(2, 1.543)},
            {QStringLiteral("antenna-too-short"), antenna(1, 0.05)}};
}

ScreenPictures::Pictures ScreenPictures::Status()
{
    static const std::optional<SimulatedHour> hour = LiveAnHour(); // once for all pictures
    if (!hour) {
        return {};
    }
    const auto page = [](Clock::Duration later, LinkState link) {
        return [later, link]() -> std::unique_ptr<QWidget> {
            auto made = std::make_unique<StatusPage>();
            Receiver receiver = hour->receiver;
            receiver.link = link;
            made->Show(receiver, hour->history, {hour->now + later, hour->utc + later});
            return made;
        };
    };
    return {{QStringLiteral("status"), page({}, LinkState::Connected)},
            {QStringLiteral("status-stale"), page(std::chrono::minutes(3), LinkState::Connected)},
            {QStringLiteral("status-lost"), page(std::chrono::minutes(3), LinkState::Lost)},
            {QStringLiteral("status-empty"),
             []() -> std::unique_ptr<QWidget> { return std::make_unique<StatusPage>(); }},
            {QStringLiteral("status-history"),
             []() -> std::unique_ptr<QWidget> {
                 auto made = std::make_unique<StatusHistoryView>();
                 made->Show(hour->history, hour->now);
                 return made;
             }},
            {QStringLiteral("version"),
             [this]() -> std::unique_ptr<QWidget> {
                 return std::make_unique<CVersion>(&m_controller.Command());
             }},
            {QStringLiteral("battery-low"), []() -> std::unique_ptr<QWidget> {
                 return std::make_unique<MessageDlg>(
                     ToQt(FormatText(text::kBatteryLow, 20)), UiText(text::kBatteryCaption),
                     BoxStyle{BoxButtons::Ok, BoxIcon::Exclamation});
             }}};
}

} // namespace fieldcore
