#include "app/ScreenPictures.h"

#include "app/Controller.h"
#include "core/orbits/NavigationFile.h"
#include "core/orbits/SystemTime.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/NominalConstellation.h"
#include "core/platform/Degrees.h"
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

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QStackedWidget>

#include <algorithm>
#include <chrono>
#include <span>

namespace fieldcore {

namespace {

void Press(QWidget& screen, int textId)
{
    for (QAbstractButton* const button : screen.findChildren<QAbstractButton*>()) {
        if (button->text() == UiText(textId) || button->accessibleName() == UiText(textId)) {
            button->click();
            return;
        }
    }
}

std::unique_ptr<QWidget> SkyNow(Controller& controller)
{
    auto dialog = std::make_unique<CSkyPlot>(&controller.Command());
    dialog->show(); // which asks the receiver
    const auto* const list = dialog->findChild<QAbstractItemView*>();
    WaitUntil([list] { return list == nullptr || list->model()->rowCount() > 0; });
    return dialog;
}

/// The plan, with all systems from made-up messages too, and what opens from that.
class Plans
{
public:
    explicit Plans(Controller& controller)
        : m_controller(controller), m_world(controller.PlanWorld(nullptr))
    {
        m_world.skyNotes = [this] {
            return SkyRecorder::Now{SkyRecorder::State::Noting, Noted(), {}, {}};
        };
    }

    std::unique_ptr<CSurveyPlan> Gps(PlanGraph graph)
    {
        auto plan = std::make_unique<CSurveyPlan>(&m_controller.Command(), 0, m_world);
        plan->show();
        plan->Session().SetGraph(static_cast<int>(graph));
        plan->DrawResults();
        return plan;
    }

    std::unique_ptr<CSurveyPlan> All(PlanGraph graph)
    {
        const auto now = std::chrono::floor<std::chrono::seconds>(m_controller.GetClock().Utc());
        const double nowS = GpsSecondsOfUtc(now);
        static_cast<void>(KeepMessages(m_controller.ProgramFolder(), NominalMessages(nowS), nowS));
        auto plan = Gps(graph);
        SystemSet all = SystemSet().set();
        plan->Session().SetSystems(all.reset(static_cast<std::size_t>(GnssSystem::Sbas)));
        plan->DrawResults();
        return plan;
    }

    std::unique_ptr<QWidget> LargeGraph()
    {
        auto plan = All(PlanGraph::SkyPlot);
        Press(*plan, text::kPlanEnlarge);
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
            m_plan = All(PlanGraph::SkyPlot);
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
    const auto plans = std::make_shared<Plans>(controller);
    return {
        {"plan-count", [plans] { return plans->Gps(PlanGraph::Count); }},
        {"plan-skyplot", [plans] { return plans->Gps(PlanGraph::SkyPlot); }},
        {"plan-azimuth", [plans] { return plans->Gps(PlanGraph::Azimuth); }},
        {"plan-elevation", [plans] { return plans->Gps(PlanGraph::Elevation); }},
        {"plan-pdop", [plans] { return plans->Gps(PlanGraph::Pdop); }},
        {"skyplot", [&controller] { return SkyNow(controller); }},
        {"plan-all-count", [plans] { return plans->All(PlanGraph::Count); }},
        {"plan-all-skyplot", [plans] { return plans->All(PlanGraph::SkyPlot); }},
        {"plan-all-elevation", [plans] { return plans->All(PlanGraph::Elevation); }},
        {"plan-all-large", [plans] { return plans->LargeGraph(); }},
        {"plan-import", [plans] { return plans->Imported(); }},
        {"plan-search", [plans] { return plans->Search(false); }},
        {"plan-search-calendar", [plans] { return plans->Search(true); }},
        {"plan-session-sites", [plans] { return plans->Sites(false); }},
        {"plan-session", [plans] { return plans->Sites(true); }},
        {"plan-session-sheet", [plans] { return plans->Sheet(); }},
        {"curtain-proposal", [plans] { return plans->Curtain(); }},
    };
}

} // namespace fieldcore
