#include "ui/planning/SurveyPlan.h"

#include "core/host/Host.h"
#include "core/host/MesBox.h"
#include "core/link/Command.h"
#include "core/orbits/NavigationFile.h"
#include "core/orbits/SystemTime.h"
#include "core/planning/OrbitImport.h"
#include "core/resources/StringTable.h"
#include "core/settings/NotKept.h"
#include "ui/controls/DoAside.h"
#include "ui/controls/LabelSpin.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/PropertySheet.h"
#include "ui/controls/TableDlg.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/UiText.h"
#include "ui/planning/CurtainEditor.h"
#include "ui/planning/LiveSkyStyle.h"
#include "ui/planning/PlanDet.h"
#include "ui/planning/PlanExport.h"
#include "ui/planning/PlanGraphView.h"
#include "ui/planning/PlanHeader.h"
#include "ui/planning/PlanPos.h"
#include "ui/planning/PlanSearchDlg.h"
#include "ui/planning/PlanSet.h"
#include "ui/planning/PlanSystemsBar.h"
#include "ui/planning/PlanWindowList.h"
#include "ui/planning/SessionDlg.h"
#include "ui/planning/TextErrorText.h"

#include <array>

namespace fieldcore {

namespace {

/// The items of the graphs in the order of the menu.
struct GraphItem
{
    int id;
    PlanGraph graph;
};
constexpr std::array kGraphItems{
    GraphItem{text::kGraphCount, PlanGraph::Count},
    GraphItem{text::kGraphAzimuth, PlanGraph::Azimuth},
    GraphItem{text::kGraphElevation, PlanGraph::Elevation},
    GraphItem{text::kGraphSkyPlot, PlanGraph::SkyPlot},
    GraphItem{text::kGraphPdop, PlanGraph::Pdop},
    GraphItem{text::kGraphGdop, PlanGraph::Gdop},
    GraphItem{text::kGraphTdop, PlanGraph::Tdop},
};
static_assert(kGraphItems.front().id == CSurveyPlan::kFirstGraph);
static_assert(kGraphItems.back().id == CSurveyPlan::kLastGraph);

/// What came of a file, system by system.
std::wstring WordsOf(const OrbitImport& import)
{
    QStringList lines;
    for (std::size_t k = 0; k < kGnssSystems; ++k) {
        const SystemState& state = import.came[k];
        if (state.satellites == 0) {
            continue;
        }
        const auto day = DateText(UtcOfGpsSeconds(state.lastS));
        const bool isAlmanac = import.isAlmanac && k == 0;
        lines += UiText(isAlmanac ? text::kOrbitsAlmanac : text::kOrbitsCame)
                     .arg(SystemText(static_cast<GnssSystem>(k)))
                     .arg(state.satellites)
                     .arg(day);
    }
    if (import.leftOut > 0) {
        lines += UiText(text::kOrbitsLeftOut).arg(import.leftOut);
    }
    return lines.join(QLatin1Char('\n')).toStdWString();
}

} // namespace

CSurveyPlan::CSurveyPlan(CCommand* command, int loadWay, QWidget* parent)
    : CSurveyPlan(command, loadWay, PlanSurroundings{}, parent)
{}

CSurveyPlan::CSurveyPlan(CCommand* command, int loadWay, const PlanSurroundings& surroundings,
                         QWidget* parent)
    : Dialog(parent, Extent::Whole), m_command(command), m_loadWay(loadWay),
      m_surroundings(PlanSurroundings::Completed(surroundings, this)),
      m_session(EnvironmentOf(command)), m_isTall(GetHost().IsQ77())
{
    setWindowTitle(UiText(text::kPlanTitle));
    setAccessibleName(windowTitle());
    SetControlId(this, m_isTall ? kTemplateQ77Id : kTemplateId);
    BuildControls();
    OfferConnection(); // for the almanac, and the place
}

CSurveyPlan::~CSurveyPlan()
{
    Destroy();
}

std::chrono::sys_days CSurveyPlan::Today() const
{
    return JapanDay(m_session.GetEnvironment().GetClock().Utc());
}

bool CSurveyPlan::OnInitDialog()
{
    const AlmanacMessage almanac = m_session.Begin();
    const std::optional<TextError> messages = m_session.ReloadMessages();
    BuildMenu();
    SetGround();
    DoDataExchange(false);
    ShowSite();
    ShowGraph();
    m_windowList->Show(Drawing());
    ShowSlider();
    Tell(almanac);
    if (messages) {
        CMesBox(GetHost()).Warn(TextErrorText(NavigationPath(m_session.Folder()), *messages),
                                text::kOrbitsRead);
    }
    ShowDates();
    if (m_session.CanPlan()) {
        DrawResults();
    }
    SetTimer(kDayTimer, kDayMs);
    m_graph->setFocus();
    return false;
}

void CSurveyPlan::DoDataExchange(bool fromControls)
{
    if (fromControls) {
        m_session.MoveStart(m_start->value());
        ShowSpins(m_session.MoveEnd(m_end->value()));
    } else {
        ShowSpins(m_session.ResetSpins());
    }
}

void CSurveyPlan::ShowSpins(const PlanSession::Spins& spins)
{
    m_start->setValue(spins.start);
    m_end->setValue(spins.end);
}

void CSurveyPlan::Tell(const AlmanacMessage& message) const
{
    if (message.text != 0) {
        const BoxText words = message.words.empty() ? BoxText(message.text) : message.words;
        CMesBox(GetHost()).Show(words, message.caption, {BoxButtons::Ok, message.icon});
    }
}

PlanDrawing CSurveyPlan::Drawing() const
{
    PlanDrawing drawing = m_graph->Drawing(); // the slider's time, and from where it is seen
    drawing.hasHeader = false;
    drawing.plan = &m_session.Plan();
    drawing.graph = m_session.Graph();
    drawing.site = GetPositionStr();
    drawing.isPlaceKnown = m_session.IsSiteKnown();
    drawing.maskDeg = GetElMaskData();
    drawing.limits = m_session.Limits();
    return drawing;
}

void CSurveyPlan::DrawResults()
{
    const WaitCursor wait(GetHost());
    m_session.Compute();
    m_intervalMin = static_cast<int>(m_session.Plan().Computed().Interval().count());
    ShowGraph();
    ShowDates(); // only now: the age of the almanac follows the start
    ShowSlider();
    ShowWindows();
}

void CSurveyPlan::ShowSite()
{
    m_header->ShowSite(ToQt(GetPositionStr()), m_session.IsSiteKnown());
}

void CSurveyPlan::ShowDates()
{
    m_header->ShowDates(Drawing(), Today());
    m_systems->Show(m_session.Plan());
}

int CSurveyPlan::GetMenuID(int drawType)
{
    for (const GraphItem& item : kGraphItems) {
        if (static_cast<int>(item.graph) == drawType) {
            return item.id;
        }
    }
    return kFirstGraph;
}

void CSurveyPlan::SetDrawType(int drawType)
{
    m_session.SetGraph(drawType);
    DrawResults();
    m_menu->CheckRadioItem(kFirstGraph, kLastGraph, GetMenuID(drawType));
}

void CSurveyPlan::OnMenu(int id)
{
    switch (id) {
    case kDetailItem:
        OnPlanSetDetail();
        return;
    case kCurtainItem:
        OnPlanSetCurtain();
        return;
    case kSearchItem:
        SearchDays();
        return;
    case kSessionItem:
        SessionDlg(m_session, m_surroundings, this).DoModal();
        return;
    case kTableItem:
        if (m_graph->Drawing().HasPlan()) {
            const PlanFigures figures = FiguresOf(m_graph->Drawing());
            TableDlg(windowTitle(), figures.heads, figures.rows, this).DoModal();
        }
        return;
    case kImportItem:
        Import();
        return;
    case kAlmanacItem:
        OnPlanSetAlm();
        return;
    default:
        break;
    }
    for (const GraphItem& item : kGraphItems) {
        if (item.id == id) {
            SetDrawType(static_cast<int>(item.graph));
        }
    }
}

void CSurveyPlan::OnHScroll(bool isEnd, bool isStartSpin)
{
    if (isEnd) {
        SetTimer(kRefreshTimer, kRefreshMs); // anew, if it runs
        return;
    }
    KillTimer(kRefreshTimer);
    if (!isStartSpin) {
        ShowSpins(m_session.MoveEnd(m_end->value()));
        return;
    }
    // A key or a wheel may move it by several hours. Each on the way takes an hour off a period
    // that would end behind midnight.
    const int wanted = m_start->value();
    int hour = m_session.GetSpins().start;
    do {
        hour = hour < wanted ? hour + 1 : wanted;
        m_session.MoveStart(hour);
    } while (hour != wanted);
    ShowSpins(m_session.GetSpins());
}

void CSurveyPlan::OnTimer(int id)
{
    if (id == kRefreshTimer) {
        KillTimer(kRefreshTimer);
        DrawResults();
    } else if (id == kDayTimer) {
        ShowDates();
    }
}

void CSurveyPlan::Import()
{
    const Environment& environment = m_session.GetEnvironment();
    const std::filesystem::path file =
        m_surroundings.chooseFile(this, false, environment.GetFolders().Documents(),
                                  UiText(text::kOrbitsRead) + QStringLiteral(" (*)"));
    if (file.empty()) {
        return;
    }
    m_progress->SetRange(0, 0);
    m_progress->SetText(UiText(text::kOrbitsReading));
    m_progress->show();
    OrbitImport import;
    DoAside(*this,
            [&] { import = ImportOrbits(m_session.Folder(), file, environment.GetClock().Utc()); });
    m_progress->hide();
    const CMesBox box(GetHost());
    if (import.error) {
        box.Fail(TextErrorText(file, *import.error), text::kOrbitsRead);
    } else if (import.isTooFew) {
        box.Fail(text::kOrbitsTooFew, text::kOrbitsRead);
    } else if (import.notKept) {
        box.Fail(ExportFailureText(m_session.Folder(), import.notKept).toStdWString(),
                 text::kOrbitsRead);
    }
    m_session.ReloadMessages();
    const AlmanacMessage almanac = m_session.ReloadAlmanac();
    DrawResults();
    if (import.IsDone()) {
        box.Show(WordsOf(import), text::kOrbitsRead, {BoxButtons::Ok, BoxIcon::Information});
        Tell(almanac);
    }
}

void CSurveyPlan::SearchDays()
{
    PlanSearchDlg dialog(m_session, this);
    if (dialog.DoModal() == kOk && dialog.Chosen()) {
        const PlanHours& hours = *dialog.Chosen();
        SetStartTimeData(hours.startHour); // first: it decides how long the period may be
        SetDispTimeData(hours.hours);
        SetSystemTime(hours.date);
        DoDataExchange(false);
    }
    DrawResults();
}

void CSurveyPlan::OnPlanSetDetail()
{
    PropertySheet sheet(UiText(text::kPlanDetail), this);
    sheet.AddPage(new CPlanSet(*this), UiText(text::kPlanPageConditions));
    sheet.AddPage(new CPlanPos(*this), UiText(text::kPlanPageSite));
    sheet.AddPage(new CPlanDet(*this), UiText(text::kPlanPageDetail));
    sheet.resize(size());
    if (sheet.DoModal() == kOk) {
        m_oldMaskDeg.reset();
        DoDataExchange(false);
        m_menu->CheckRadioItem(kFirstGraph, kLastGraph, GetMenuID(m_session.Settings().drawType));
    }
    // The page of sites stores at once: the plan's own may be another, whatever ended the sheet.
    ShowSite();
    DrawResults();
}

void CSurveyPlan::OnPlanSetCurtain()
{
    CurtainEditor editor(m_session, m_surroundings, this);
    if (editor.DoModal() == kOk) {
        DrawResults();
    }
}

bool CSurveyPlan::OnClose(int result)
{
    return m_loadWay == 0 || result != kCancelled || CPrgEndMes::MayEnd(m_command, this);
}

void CSurveyPlan::OnDestroy()
{
    KeptOrTold(m_session.SaveSettings(), text::kPlanNotKept, GetHost(),
               HostReg(m_session.GetEnvironment().Roots()));
    KillTimer(kRefreshTimer);
}

template <typename Change>
int CSurveyPlan::ChangeSettings(Change change)
{
    PlanSettings settings = m_session.Settings();
    change(settings);
    return m_session.SetSettings(settings);
}

int CSurveyPlan::SetElMaskData(int maskDeg)
{
    const int before = GetElMaskData();
    m_session.SetMask(maskDeg);
    return GetElMaskData() != before ? 1 : 0;
}

int CSurveyPlan::SetSystemTime(std::chrono::year_month_day date)
{
    const std::chrono::year_month_day before = GetSystemTime();
    m_session.SetDate(date);
    return GetSystemTime() != before ? 1 : 0;
}

int CSurveyPlan::SetStartTimeData(int hour)
{
    return ChangeSettings([hour](PlanSettings& settings) { settings.startHour = hour; });
}

int CSurveyPlan::SetDispTimeData(int hours)
{
    return ChangeSettings([hours](PlanSettings& settings) { settings.hours = hours; });
}

int CSurveyPlan::SetListCoordData(int choice)
{
    return ChangeSettings([choice](PlanSettings& settings) { settings.listCoord = choice; });
}

int CSurveyPlan::SetPositionData(int number)
{
    return ChangeSettings([number](PlanSettings& settings) { settings.positionNo = number; });
}

const std::wstring& CSurveyPlan::GetPositionStr() const
{
    return m_session.Settings().position;
}

int CSurveyPlan::SetPositionStr(const std::wstring& name)
{
    return ChangeSettings([&name](PlanSettings& settings) { settings.position = name; });
}

int CSurveyPlan::SetPositionID(int id)
{
    return ChangeSettings([id](PlanSettings& settings) { settings.positionId = id; });
}

} // namespace fieldcore
