#include "app/Controller.h"
#include "app/Picture.h"
#include "app/Worlds.h"
#include "core/orbits/NavigationFile.h"
#include "core/orbits/SystemTime.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/Degrees.h"
#include "core/planning/NominalConstellation.h"
#include "simulator/Scenario.h"
#include "simulator/Sky.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/UiText.h"
#include "ui/planning/CurtainEditor.h"
#include "ui/planning/LiveSkyStyle.h"
#include "ui/planning/PlanSearchDlg.h"
#include "ui/planning/PlanSheet.h"
#include "ui/planning/SessionDlg.h"
#include "ui/planning/SessionSheet.h"
#include "ui/planning/SkyPlotDlg.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <span>

namespace fieldcore {

namespace {

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
class AllSystems
{
public:
    explicit AllSystems(Controller& controller)
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
        static_cast<void>(KeepMessages(m_controller.ProgramFolder(), NominalMessages(nowS), nowS));
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
        auto dialog = std::make_unique<PlanSearchDlg>(Session());
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
        auto dialog = std::make_unique<SessionDlg>(Session(), m_world);
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
        auto dialog = std::make_unique<CurtainEditor>(Session(), m_world);
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
        if (!street || !calc.LoadAlmanac(AlmanacPath(m_controller.ProgramFolder()))) {
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

Pictures PlanPictures(Controller& controller)
{
    Pictures made;
    const char* const names[] = {"count", "skyplot", "azimuth", "elevation", "pdop"};
    for (int drawType = 0; drawType < static_cast<int>(std::size(names)); ++drawType) {
        made.push_back(
            {QStringLiteral("plan-") + QLatin1String(names[drawType]), [&controller, drawType] {
                 auto dialog = std::make_unique<CSurveyPlan>(&controller.Command(), 0,
                                                             PlanWorld(controller, nullptr));
                 dialog->show();
                 for (QAction* action : dialog->findChildren<QAction*>()) {
                     if (action->data().toInt() == CSurveyPlan::GetMenuID(drawType)) {
                         action->trigger();
                     }
                 }
                 return dialog;
             }});
    }
    made.push_back({QStringLiteral("skyplot"), [&controller] {
                        auto dialog = std::make_unique<CSkyPlot>(&controller.Command());
                        dialog->show(); // which asks the receiver
                        const auto* const list = dialog->findChild<QAbstractItemView*>();
                        WaitUntil(
                            [list] { return list == nullptr || list->model()->rowCount() > 0; });
                        return dialog;
                    }});
    const auto pictures = std::make_shared<AllSystems>(controller);
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

} // namespace fieldcore
