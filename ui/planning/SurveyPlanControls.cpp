// How the controls of the plan's screen stand, and what follows them without a rule of its own.

#include "ui/planning/SurveyPlan.h"

#include "core/host/Host.h"
#include "core/link/Command.h"
#include "core/planning/PlanSeries.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/LabelSpin.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/NToolBar.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/ChoiceButton.h"
#include "ui/planning/DateDlg.h"
#include "ui/planning/PlanExport.h"
#include "ui/planning/PlanGraphView.h"
#include "ui/planning/PlanHeader.h"
#include "ui/planning/PlanSystemsBar.h"
#include "ui/planning/PlanWindowList.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QResizeEvent>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

#include <QMenu>
#include <algorithm>
#include <system_error>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
/// From this width on the panel stands beside the graph.
constexpr int kWide = 900;

constexpr int kExportTool = 1;
constexpr int kFromBelowTool = 2;

/// What a plan can be saved as.
struct ExportForm
{
    int textId;
    const char* icon;
    const char* suffix;
    std::error_code (*save)(const std::filesystem::path& file, const PlanDrawing& drawing);
};
constexpr ExportForm kExportForms[] = {
    {text::kPlanExportPdf, "plan", ".pdf", &ExportPdf},
    {text::kPlanExportPng, "chart", ".png",
     [](const std::filesystem::path& file, const PlanDrawing& drawing) {
         return ExportPng(file, drawing, {1600, 1200}, 192.0);
     }},
    {text::kPlanExportSvg, "chart", ".svg",
     [](const std::filesystem::path& file, const PlanDrawing& drawing) {
         return ExportSvg(file, drawing, {800, 600});
     }},
    {text::kPlanExportCsv, "file", ".csv", &ExportCsv},
};

LabelSpin* MakeHourSpin(int id, int labelId, int nameId, int first, int last)
{
    auto* const spin = new LabelSpin;
    spin->setRange(first, last);
    spin->SetLabel(LabelSpin::HourLabel);
    spin->setAccessibleName(UiText(nameId));
    Dialog::SetControlId(spin, id);
    Dialog::SetControlId(spin->LabelControl(), labelId);
    return spin;
}

/// How far the almanac has come, and how long the rest will take.
/// @param done  satellites of kMaxPrn
QString UpdatingText(int done, Clock::Duration lasted)
{
    constexpr int kToJudgeBy = 3; // satellites, before a time is told
    if (done < kToJudgeBy) {
        return ToQt(FormatText(text::kPlanUpdating, done, kMaxPrn));
    }
    const auto left = std::chrono::ceil<std::chrono::seconds>(lasted * (kMaxPrn - done) / done);
    return ToQt(FormatText(text::kPlanUpdatingLeft, done, kMaxPrn, static_cast<int>(left.count())));
}

} // namespace

void CSurveyPlan::BuildControls()
{
    m_graph = new PlanGraphView;
    SetControlId(m_graph, kGraphId);
    m_graph->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_systems = new PlanSystemsBar;
    m_panel = BuildPanel();
    m_time = new QSlider(Qt::Horizontal);
    m_time->setAccessibleName(UiText(text::kPlanTime));
    m_time->setMinimumHeight(TouchStyle::kTarget);
    m_maskUndo = new QPushButton;
    m_maskUndo->setMinimumHeight(TouchStyle::kTarget);
    m_maskUndo->setAutoDefault(false);
    m_maskUndo->hide();
    m_enlarge = new QToolButton;
    m_enlarge->setCheckable(true);
    m_enlarge->setIcon(ThemeIcon(QStringLiteral("enlarge")));
    m_enlarge->setIconSize({3 * kGrid, 3 * kGrid});
    m_enlarge->setMinimumSize(TouchStyle::kTarget, TouchStyle::kTarget);
    m_enlarge->setToolTip(UiText(text::kPlanEnlarge));
    m_enlarge->setAccessibleName(UiText(text::kPlanEnlarge));
    m_windows = new QLabel;
    m_windows->setWordWrap(true);
    m_progress = new CTextProgressCtrl;
    m_progress->hide();

    auto* const right = new QVBoxLayout;
    right->setSpacing(kGrid / 2);
    right->addWidget(m_systems);
    right->addWidget(m_graph, 1);
    m_below = new QGridLayout; // one row of buttons: the sky does not shrink under the finger
    m_below->setHorizontalSpacing(kGrid);
    m_below->setVerticalSpacing(0);
    m_below->setColumnStretch(0, 1);
    m_below->addWidget(m_time, 0, 0);
    m_below->addWidget(m_maskUndo, 0, 1);
    m_below->addWidget(m_systems->FoldButton(), 0, 2);
    m_below->addWidget(m_enlarge, 0, 3);
    right->addLayout(m_below);
    if (m_isTall) {
        right->addWidget(m_windowList);
    }
    right->addWidget(m_progress);
    m_body = new QBoxLayout(QBoxLayout::TopToBottom);
    m_body->setContentsMargins(12, kGrid, 12, kGrid);
    m_body->setSpacing(kGrid);
    m_body->addWidget(m_panel);
    m_body->addLayout(right, 1);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(m_body, 1);

    connect(m_systems, &PlanSystemsBar::Chosen, this, &CSurveyPlan::ChooseSystem);
    connect(m_time, &QSlider::valueChanged, m_graph,
            [this](int minutes) { m_graph->SetTime(minutes); });
    connect(m_graph, &PlanGraphView::timeChanged, this, [this] { ShowSlider(); });
    connect(m_graph, &PlanGraphView::maskChanged, this, &CSurveyPlan::DragMask);
    connect(m_graph, &PlanGraphView::maskDropped, this, &CSurveyPlan::OfferOldMask);
    connect(m_maskUndo, &QPushButton::clicked, this, &CSurveyPlan::UndoMask);
    connect(m_enlarge, &QToolButton::toggled, this, [this](bool isLarge) {
        m_panel->setHidden(isLarge);
        ShowGraph();
    });
}

QWidget* CSurveyPlan::BuildPanel()
{
    m_header = new PlanHeader;
    m_start = MakeHourSpin(kStartSpinId, kStartLabelId, text::kPlanStart, 0, 23);
    m_end = MakeHourSpin(kEndSpinId, kEndLabelId, text::kPlanEnd, 1, 24);
    m_tools = new CnToolBar;
    m_tools->AddButton(kExportTool, QStringLiteral("download"), UiText(text::kPlanExport));
    m_tools->AddButton(kFromBelowTool, QStringLiteral("skyplot"), UiText(text::kPlanFromBelow));
    m_tools->CheckItem(kFromBelowTool, false);

    auto* const panel = new QWidget;
    auto* const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kGrid / 2);
    layout->addWidget(m_header);
    auto* const spins = new QHBoxLayout;
    spins->setSpacing(kGrid);
    spins->addWidget(m_start, 1);
    spins->addWidget(m_end, 1);
    layout->addLayout(spins);
    m_windowList = new PlanWindowList;
    m_windowList->hide();
    if (!m_isTall) {
        layout->addWidget(m_windowList);
    }
    layout->addStretch(1);
    m_header->AddTools(m_tools);

    connect(m_header, &PlanHeader::DayStepped, this, [this](int days) {
        SetDay(std::chrono::sys_days(GetSystemTime()) + std::chrono::days(days));
    });
    connect(m_header, &PlanHeader::CalendarRequested, this, [this] {
        DateDlg calendar(GetSystemTime(), Today(), this);
        if (const auto date = calendar.Ask()) {
            SetDay(*date);
        }
    });
    connect(m_header, &PlanHeader::TodayRequested, this, [this] { SetDay(Today()); });
    for (const bool isStart : {true, false}) {
        const LabelSpin* const spin = isStart ? m_start : m_end;
        connect(spin, &LabelSpin::SpinMoved, this, [this, isStart] { OnHScroll(false, isStart); });
        connect(spin, &LabelSpin::ScrollEnded, this, [this, isStart] { OnHScroll(true, isStart); });
    }
    connect(m_tools, &CnToolBar::ItemChosen, this, [this](int id) {
        if (id == kExportTool) {
            Export();
        } else {
            m_graph->SetFromBelow(m_tools->IsItemChecked(kFromBelowTool));
        }
    });
    return panel;
}

void CSurveyPlan::BuildMenu()
{
    delete m_menu; // of an earlier showing
    m_menu = new CnMenuBar(m_loadWay);
    SetControlId(m_menu, kMenuBarId);
    const int settings = m_menu->AddPopup(UiText(text::kPlanMenuSettings));
    m_menu->AddItem(settings, kDetailItem, UiText(text::kPlanDetail));
    m_menu->AddItem(settings, kCurtainItem, UiText(text::kPlanCurtain));
    m_menu->AddSeparator(settings);
    m_menu->AddItem(settings, kAlmanacItem, UiText(text::kPlanUpdate));
    m_menu->EnableItem(kAlmanacItem, m_command != nullptr);
    const int graphs = m_menu->AddPopup(UiText(text::kPlanMenuGraph));
    for (int id = kFirstGraph; id <= kLastGraph; ++id) {
        m_menu->AddItem(graphs, id, UiText(id));
        if (id == text::kGraphCount || id == text::kGraphElevation || id == text::kGraphSkyPlot) {
            m_menu->AddSeparator(graphs);
        }
    }
    const int more = m_menu->AddPopup(UiText(text::kPlanMenuMore));
    m_menu->AddItem(more, kTableItem, UiText(text::kSkyList));
    m_menu->AddSeparator(more);
    m_menu->AddItem(more, kSearchItem, UiText(text::kSearchDays));
    m_menu->AddItem(more, kSessionItem, UiText(text::kSessionTitle));
    m_menu->AddSeparator(more);
    m_menu->AddItem(more, kImportItem, UiText(text::kOrbitsRead));
    m_menu->CheckRadioItem(kFirstGraph, kLastGraph, GetMenuID(m_session.Settings().drawType));
    layout()->addWidget(m_menu);
    connect(m_menu, &CnMenuBar::ItemChosen, this, &CSurveyPlan::OnMenu);
    connect(m_menu, &CnMenuBar::CloseRequested, this, [this] { Close(kCancelled); });
}

void CSurveyPlan::SetGround()
{
    m_graph->SetGround(Theme::Current().isDark ? QColor() : PlanGraphView::ControllerGround());
}

void CSurveyPlan::SetDay(std::chrono::year_month_day date)
{
    SetSystemTime(date);
    DrawResults();
}

void CSurveyPlan::ChooseSystem(GnssSystem system)
{
    ToggleSystem(m_session, system);
    DrawResults();
}

void CSurveyPlan::ShowGraph()
{
    PlanDrawing drawing = Drawing();
    drawing.hasHeader = !m_enlarge->isChecked();
    m_graph->SetDrawing(drawing);
}

void CSurveyPlan::DragMask(int maskDeg)
{
    m_oldMaskDeg = m_oldMaskDeg.value_or(GetElMaskData());
    m_session.SetMask(maskDeg);
    m_session.ComputeMask();
    m_graph->Refresh(maskDeg);
    ShowWindows();
}

void CSurveyPlan::OfferOldMask()
{
    if (m_oldMaskDeg == GetElMaskData()) {
        m_oldMaskDeg.reset();
    }
    const QString words = ToQt(FormatText(text::kPlanMaskUndo, m_oldMaskDeg.value_or(0)));
    m_maskUndo->setText(words);
    m_maskUndo->setMinimumWidth(m_maskUndo->fontMetrics().horizontalAdvance(words) + 4 * kGrid);
    m_maskUndo->setVisible(m_oldMaskDeg && m_session.Graph() == PlanGraph::SkyPlot);
}

void CSurveyPlan::UndoMask()
{
    SetElMaskData(m_oldMaskDeg.value_or(GetElMaskData()));
    m_graph->setFocus();
    DrawResults();
}

void CSurveyPlan::ShowWindows()
{
    m_windowList->Show(Drawing());
    constexpr std::size_t kShown = 2;
    const ObservationPlan& plan = m_session.Plan();
    const std::vector<PlanWindow> windows = FindWindows(plan, m_session.Limits());
    QStringList list;
    for (std::size_t i = 0; i < windows.size() && i < kShown; ++i) {
        const auto clock = [&](int epoch) {
            return QString::fromStdString(plan.Computed().ClockText(epoch));
        };
        list += UiText(text::kPlotWindow).arg(clock(windows[i].first), clock(windows[i].last));
    }
    if (windows.empty()) {
        m_windows->setText(UiText(text::kPlanNoWindow));
        return;
    }
    const QString shown = list.join(UiText(text::kPlanListSeparator));
    const int more = static_cast<int>(windows.size() - std::min(windows.size(), kShown));
    m_windows->setText(more == 0 ? UiText(text::kPlanBestWindows).arg(shown)
                                 : UiText(text::kPlanMoreWindows).arg(shown).arg(more));
}

void CSurveyPlan::ShowSlider()
{
    const PlanDrawing& drawing = m_graph->Drawing();
    const QSignalBlocker quiet(m_time);
    const bool isSky = drawing.graph == PlanGraph::SkyPlot;
    const bool hasSlider = IsTracks(drawing.graph) && drawing.HasPlan();
    m_time->setVisible(hasSlider);
    m_below->addWidget(m_windows, hasSlider ? 1 : 0, 0, 1, hasSlider ? 4 : 1);
    m_tools->EnableItem(kFromBelowTool, isSky);
    OfferOldMask();
    m_time->setRange(0, static_cast<int>(drawing.LengthMin()));
    m_time->setPageStep(static_cast<int>(drawing.IntervalMin()));
    m_time->setValue(static_cast<int>(drawing.minutes));
    // The graph itself writes it in its corner.
    m_time->setAccessibleDescription(drawing.HasPlan() ? ReadingOfTime(drawing, drawing.minutes)
                                                       : QString());
}

void CSurveyPlan::Export()
{
    const PlanDrawing drawing = Drawing();
    QMenu menu(this);
    menu.setStyle(TouchStyle::Shared());
    menu.setAccessibleName(UiText(text::kPlanExport));
    for (const ExportForm& form : kExportForms) {
        QAction* const item =
            menu.addAction(ThemeIcon(QString::fromLatin1(form.icon)), UiText(form.textId));
        item->setEnabled(drawing.Obstacle().isEmpty());
        connect(item, &QAction::triggered, this, [this, &drawing, &form] {
            const QString day = PlanDateText(drawing).remove(QLatin1Char('/'));
            m_surroundings.SaveAndTell(
                this, m_session.GetEnvironment(), form.textId,
                ToQt(FormatText(text::kPlanExportFile, day.toStdWString().c_str())),
                QString::fromLatin1(form.suffix),
                [&](const std::filesystem::path& file) { return form.save(file, drawing); });
        });
    }
    menu.exec(m_tools->mapToGlobal(QPoint(0, m_tools->height())));
}

void CSurveyPlan::OnPlanSetAlm()
{
    if (m_command == nullptr ||
        m_surroundings.makeConnect(*m_command)->DoModal() != CConnect::Connected) {
        return;
    }
    std::vector<AlmanacMessage> messages;
    {
        const WaitCursor wait(GetHost());
        const Clock::Duration began = m_command->GetClock().Steady();
        m_progress->SetRange(0, kMaxPrn);
        m_progress->SetPos(0);
        m_progress->show();
        messages = m_session.UpdateAlmanac(*m_command, [&](int prn) {
            m_progress->SetPos(prn - 1);
            m_progress->SetText(UpdatingText(prn - 1, m_command->GetClock().Steady() - began));
            return m_command->GetHost().Breathe(); // its strip has the button that ends it
        });
        m_progress->hide();
    }
    for (const AlmanacMessage& message : messages) {
        Tell(message);
    }
    DrawResults();
}

void CSurveyPlan::resizeEvent(QResizeEvent* event)
{
    Dialog::resizeEvent(event);
    const bool isWide = event->size().width() >= kWide;
    m_body->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    if (isWide) {
        m_enlarge->setChecked(false);
    }
    m_enlarge->setHidden(isWide);
    m_systems->SetFoldable(!isWide);
    m_panel->setMinimumWidth(isWide ? kWide / 2
                                    : 0); // or the times would stand against their frames
    m_panel->setMaximumWidth(isWide ? kWide / 2 : QWIDGETSIZE_MAX);
    m_windowList->setVisible(isWide || m_isTall);
    m_windows->setHidden(isWide || m_isTall);
}

void CSurveyPlan::changeEvent(QEvent* event)
{
    Dialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        SetGround();
    }
}

} // namespace fieldcore
