#include "ui/planning/PlanSet.h"

#include "core/resources/StringTable.h"
#include "ui/controls/LabelSpin.h"
#include "ui/controls/SpinDouble.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanDrawing.h"
#include "ui/planning/SurveyPlan.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <initializer_list>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kDayH = 24;

void AddField(QVBoxLayout& layout, int textId, QWidget* field)
{
    auto* const label = new QLabel(UiText(textId));
    label->setBuddy(field);
    field->setAccessibleName(label->text());
    layout.addWidget(label);
    layout.addWidget(field);
    layout.addSpacing(kGrid);
}

} // namespace

void AddConditions(QVBoxLayout& layout, const CSurveyPlan& plan,
                   const std::function<void(const PlanSurroundings::Conditions&)>& take)
{
    const auto& read = plan.Surroundings().conditions;
    if (!read) {
        return;
    }
    const PlanSurroundings::Conditions now = read();
    auto* const button = new QPushButton(UiText(text::kPlanTakeConditions));
    button->setAutoDefault(false);
    button->setMinimumHeight(TouchStyle::kTarget);
    QObject::connect(button, &QPushButton::clicked, button, [take, now] { take(now); });
    auto* const words = new QLabel(ToQt(
        FormatText(text::kPlanConditionsTaken, now.elMaskDeg, now.minSatellites, now.maxPdop)));
    words->setWordWrap(true);
    layout.addWidget(button);
    layout.addWidget(words);
}

CPlanSet::CPlanSet(CSurveyPlan& plan, QWidget* parent)
    : PropertyPage(parent), m_plan(plan), m_mask(new CSpinDouble), m_start(new LabelSpin),
      m_hours(new LabelSpin), m_graph(new CTComboBox)
{
    m_mask->SetRange(0.0, 90.0);
    m_mask->SetUnit(UiText(text::kPlanDegrees));
    m_mask->SetName(UiText(text::kPlanMask));
    m_start->setRange(0, kDayH - 1);
    m_start->SetLabel(LabelSpin::HourLabel);
    m_hours->SetLabel([](int hours) { return ToQt(FormatText(text::kPlanHoursValue, hours)); });
    for (const PlanGraph graph :
         {PlanGraph::Count, PlanGraph::Azimuth, PlanGraph::Elevation, PlanGraph::SkyPlot,
          PlanGraph::Pdop, PlanGraph::Gdop, PlanGraph::Tdop}) {
        m_graph->AddEntry(GraphText(graph), static_cast<int>(graph));
    }
    auto* const layout = new QVBoxLayout(this);
    AddField(*layout, text::kPlanMask, m_mask);
    AddField(*layout, text::kPlanStart, m_start);
    AddField(*layout, text::kPlanHours, m_hours);
    AddField(*layout, text::kPlanGraphKind, m_graph);
    AddConditions(*layout, m_plan, [this](const PlanSurroundings::Conditions& conditions) {
        m_mask->SetValue(conditions.elMaskDeg);
    });
    layout->addStretch(1);
    connect(m_start, &QAbstractSlider::valueChanged, this, [this] { FitHours(); });
}

void CPlanSet::FitHours()
{
    m_hours->setRange(1, kDayH - m_start->value());
}

void CPlanSet::OnInitDialog()
{
    m_mask->SetValue(m_plan.GetElMaskData());
    m_start->setValue(m_plan.GetStartTimeData());
    FitHours();
    m_hours->setValue(m_plan.GetDispTimeData());
    m_graph->SelectCode(static_cast<int>(m_plan.Session().Graph()));
}

bool CPlanSet::OnOK()
{
    m_plan.SetElMaskData(static_cast<int>(m_mask->GetValue()));
    m_plan.SetStartTimeData(m_start->value()); // first: it decides how long the period may be
    m_plan.SetDispTimeData(m_hours->value());
    m_plan.Session().SetGraph(m_graph->GetCode());
    return true;
}

} // namespace fieldcore
