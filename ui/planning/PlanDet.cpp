#include "ui/planning/PlanDet.h"

#include "core/host/MesBox.h"
#include "core/resources/StringTable.h"
#include "ui/controls/SpinDouble.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanSet.h"
#include "ui/planning/SurveyPlan.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

QLabel* Heading(int textId)
{
    auto* const label = new QLabel(UiText(textId));
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

} // namespace

CPlanDet::CPlanDet(CSurveyPlan& plan, QWidget* parent)
    : PropertyPage(parent), m_plan(plan), m_satellites{}, m_legend(new QLabel),
      m_fewest(new CSpinDouble), m_pdop(new CSpinDouble), m_minutes(new CSpinDouble),
      m_clocks(new QCheckBox(UiText(text::kPlanClockPerSystem)))
{
    constexpr int kColumns = 5;
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(Heading(text::kPlanUsedSatellites));
    auto* const grid = new QGridLayout;
    grid->setSpacing(kGrid);
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        auto* const button = new QCheckBox;
        button->setMinimumSize(TouchStyle::kTarget, TouchStyle::kTarget);
        grid->addWidget(button, index / kColumns, index % kColumns);
        m_satellites[static_cast<std::size_t>(index)] = button;
    }
    layout->addLayout(grid);
    layout->addWidget(m_legend);
    auto* const all = new QHBoxLayout;
    for (const bool checked : {true, false}) {
        auto* const button =
            new QPushButton(UiText(checked ? text::kPlanUseAll : text::kPlanUseNone));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, checked] { CheckAll(checked); });
        all->addWidget(button);
    }
    layout->addLayout(all);
    layout->addSpacing(kGrid);
    layout->addWidget(Heading(text::kPlanDilution));
    m_clocks->setMinimumHeight(TouchStyle::kTarget);
    layout->addWidget(m_clocks);
    layout->addSpacing(kGrid);
    layout->addWidget(Heading(text::kPlanWindowLimits));
    const auto add = [&](int textId, CSpinDouble* spin) {
        auto* const label = new QLabel(UiText(textId));
        label->setBuddy(spin);
        spin->SetName(label->text());
        layout->addWidget(label);
        layout->addWidget(spin);
    };
    m_fewest->SetRange(WindowLimits::kFewestSatellites, WindowLimits::kMostSatellites);
    m_pdop->SetRange(WindowLimits::kLowestPdop, WindowLimits::kHighestPdop);
    m_pdop->SetDecimals(1);
    m_pdop->SetStep(0.5);
    m_minutes->SetRange(WindowLimits::kShortest.count(), WindowLimits::kLongest.count());
    m_minutes->SetStep(5.0);
    m_minutes->SetUnit(UiText(text::kPlanMinutes));
    add(text::kPlanFewestSatellites, m_fewest);
    add(text::kPlanHighestPdop, m_pdop);
    add(text::kPlanShortestWindow, m_minutes);
    AddConditions(*layout, m_plan, [this](const PlanSurroundings::Conditions& conditions) {
        m_fewest->SetValue(conditions.minSatellites);
        m_pdop->SetValue(conditions.maxPdop);
    });
    layout->addStretch(1);
}

void CPlanDet::OnInitDialog()
{
    const CSurveyPlanCalc& calc = *m_plan.GetSurveyPlanCalc();
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        const CAlmanacSatellite& satellite = calc.GetSatellite(index);
        QAbstractButton* const button = m_satellites[static_cast<std::size_t>(index)];
        const bool isGood = satellite.IsHealthy() != 0;
        const int state = satellite.IsLoaded() == 0 ? text::kPlanSatelliteMissing
                          : isGood                  ? text::kPlanSatelliteGood
                                                    : text::kPlanSatelliteBad;
        const char* const mark = satellite.IsLoaded() == 0 ? "--" : isGood ? "" : "!";
        button->setText(QString::number(index + 1) + QLatin1String(mark));
        button->setAccessibleName(ToQt(FormatText(state, index + 1)));
        button->setToolTip(button->accessibleName());
        button->setChecked(satellite.GetUse() != 0);
    }
    const AlmanacSource& source = calc.Source();
    m_legend->setText(UiText(text::kPlanSatelliteLegend) +
                      (source.origin == AlmanacOrigin::Nominal
                           ? QStringLiteral("　") + ToQt(SourceText(source))
                           : QString()));
    const WindowLimits& limits = m_plan.Session().Limits();
    m_clocks->setChecked(m_plan.Session().Settings().clockPerSystem);
    m_fewest->SetValue(limits.minSatellites);
    m_pdop->SetValue(limits.maxPdop);
    m_minutes->SetValue(static_cast<double>(limits.minLength.count()));
}

void CPlanDet::CheckAll(bool checked)
{
    for (QAbstractButton* const button : m_satellites) {
        button->setChecked(checked);
    }
}

bool CPlanDet::OnKillActive()
{
    const bool any = std::any_of(m_satellites.begin(), m_satellites.end(),
                                 [](const QAbstractButton* button) { return button->isChecked(); });
    if (!any) {
        CMesBox(m_plan.GetHost()).Warn(text::kPlanNoSatellite, text::kPlanUsedSatellites);
    }
    return any;
}

bool CPlanDet::OnOK()
{
    for (std::size_t index = 0; index < m_satellites.size(); ++index) {
        m_plan.GetSurveyPlanCalc()->SetUse(static_cast<int>(index),
                                           m_satellites[index]->isChecked() ? 1 : 0);
    }
    WindowLimits limits;
    limits.minSatellites = static_cast<int>(m_fewest->GetValue());
    limits.maxPdop = m_pdop->GetValue();
    limits.minLength = std::chrono::minutes(std::lround(m_minutes->GetValue()));
    m_plan.Session().SetLimits(limits);
    PlanSettings settings = m_plan.Session().Settings();
    settings.clockPerSystem = m_clocks->isChecked();
    m_plan.Session().SetSettings(settings);
    return true;
}

} // namespace fieldcore
