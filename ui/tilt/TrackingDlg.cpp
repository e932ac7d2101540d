#include "ui/tilt/TrackingDlg.h"

#include "core/input/Parts.h"
#include "core/link/Command.h"
#include "core/settings/NotKept.h"
#include "ui/controls/SpinDouble.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"
#include "ui/input/ComboEntries.h"
#include "ui/tilt/SetSignal.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace fieldcore {

TrackingDlg::TrackingDlg(CCommand* command, QWidget* parent)
    : Dialog(parent, Extent::Form), m_command(command), m_reg(EnvironmentOf(command).Roots()),
      m_sets(AllSurveys().size(), CGPSPrm(EnvironmentOf(command).Roots())),
      m_survey(new CTComboBox), m_interval(new CTComboBox), m_mask(new CTComboBox),
      m_satellites(new CTComboBox), m_epochs(new CSpinDouble), m_pdop(new CSpinDouble),
      m_signals(new QLabel), m_msas(new QCheckBox(UiText(text::kTrackingMsas)))
{
    constexpr int kGrid = TouchStyle::kGrid;
    setWindowTitle(UiText(text::kTrackingTitle));
    SetControlId(m_survey, kSurvey);
    auto* const inside = new QWidget;
    auto* const column = new QVBoxLayout(inside);
    column->setContentsMargins(12, kGrid, 12, kGrid);
    auto* const form = new QFormLayout;
    form->setVerticalSpacing(kGrid);
    form->setLabelAlignment(Qt::AlignVCenter);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    BuildFields(*form);
    column->addLayout(form);
    auto* const hint = new QLabel(UiText(text::kTrackingHint));
    hint->setWordWrap(true);
    column->addWidget(hint);
    column->addStretch(1);
    auto* const window = new QVBoxLayout(this);
    window->setContentsMargins(0, 0, 0, kGrid);
    window->addWidget(MakeScroll(inside), 1);
    window->addLayout(MakeOkCancel());
    connect(m_survey, &QComboBox::currentIndexChanged, this, [this](int index) {
        Keep();
        Show(index);
    });
}

TrackingDlg::~TrackingDlg()
{
    Destroy();
}

void TrackingDlg::BuildFields(QFormLayout& form)
{
    for (const SurveyKind& kind : AllSurveys()) {
        m_survey->AddEntry(UiText(kind.textId), m_survey->count());
    }
    ComboEntries intervals(*m_interval);
    CParts::SetIntervalStr(intervals, 0);
    ComboEntries masks(*m_mask);
    CParts::SetElMaskStr(masks);
    ComboEntries satellites(*m_satellites);
    CParts::SetMinSVsStr(satellites, kLeastSatellites);
    m_epochs->SetRange(1, kMostEpochs);
    m_epochs->SetName(UiText(text::kTrackingEpochs));
    m_pdop->SetRange(kLeastPdop, kMostPdop);
    m_pdop->SetDecimals(1);
    m_pdop->SetStep(0.5);
    m_pdop->SetName(UiText(text::kTrackingPdop));
    auto* const signal = new QWidget;
    auto* const row = new QHBoxLayout(signal);
    row->setContentsMargins({});
    auto* const others = new QPushButton(UiText(text::kSignalOthers));
    others->setAutoDefault(false);
    others->setMinimumHeight(TouchStyle::kTarget);
    others->setEnabled(m_command != nullptr);
    connect(others, &QPushButton::clicked, this, &TrackingDlg::ChooseSignals);
    m_signals->setWordWrap(true);
    SetControlId(m_signals, kSignals);
    m_msas->setMinimumHeight(TouchStyle::kTarget);
    row->addWidget(m_signals, 1);
    row->addWidget(m_msas);
    row->addWidget(others);
    const std::pair<int, QWidget*> rows[] = {
        {text::kTrackingSurvey, m_survey}, {text::kTrackingInterval, m_interval},
        {text::kTrackingMask, m_mask},     {text::kTrackingMinSatellites, m_satellites},
        {text::kTrackingPdop, m_pdop},     {text::kTrackingEpochs, m_epochs},
        {text::kTrackingSignals, signal},
    };
    for (const auto& [textId, field] : rows) {
        AddFormRow(form, UiText(textId), field);
        field->setAccessibleName(UiText(textId));
    }
}

bool TrackingDlg::OnInitDialog()
{
    for (std::size_t i = 0; i < m_sets.size(); ++i) {
        LoadTracking(m_reg, AllSurveys()[i], 0, m_sets[i]);
    }
    m_shown = static_cast<int>(LoadSurvey(m_reg));
    {
        const QSignalBlocker quiet(m_survey);
        m_survey->setCurrentIndex(m_shown);
    }
    Show(m_shown);
    ShowSignals();
    return true;
}

void TrackingDlg::ShowSignals()
{
    const std::uint32_t type = m_command != nullptr ? m_command->Heard().identity.TypeNumber() : 0;
    const SignalSet chosen = LoadSignals(m_reg, type);
    QStringList names;
    for (const Signal signal : kAllSignals) {
        if (chosen.Has(signal)) {
            names += UiText(SignalTextId(signal));
        }
    }
    m_signals->setText(type == 0         ? UiText(text::kStatusUnknown)
                       : names.isEmpty() ? UiText(text::kSignalNone)
                                         : names.join(QLatin1Char(' ')));
}

void TrackingDlg::ChooseSignals()
{
    SetSignal(m_command, this).DoModal();
    ShowSignals();
}

void TrackingDlg::Show(int index)
{
    m_shown = index;
    const CGPSPrm& set = m_sets[static_cast<std::size_t>(index)];
    m_interval->setCurrentIndex(CParts::ConvIntervalData2Flag(set.GetIntervalData()));
    m_mask->setCurrentIndex(CParts::ConvElMaskData2Flag(set.GetElMaskData()));
    m_satellites->setCurrentIndex(
        CParts::ConvMinSVsData2Flag(set.GetMinSVsData(), kLeastSatellites));
    m_epochs->SetValue(set.GetSvEpochData());
    m_pdop->SetValue(set.GetPDOPMaskData(1));
    m_msas->setChecked(set.GetMSASData() != 0);
}

void TrackingDlg::Keep()
{
    CGPSPrm& set = m_sets[static_cast<std::size_t>(m_shown)];
    set.SetIntervalData(CParts::ConvIntervalFlag2Data(m_interval->currentIndex()));
    set.SetElMaskData(CParts::ConvElMaskFlag2Data(m_mask->currentIndex()));
    set.SetMinSVsData(CParts::ConvMinSVsFlag2Data(m_satellites->currentIndex(), kLeastSatellites));
    set.SetSvEpochData(static_cast<int>(m_epochs->GetValue()));
    set.SetPDOPMaskData(m_pdop->GetValue());
    set.SetMSASData(m_msas->isChecked() ? 1 : 0);
}

bool TrackingDlg::OnClose(int result)
{
    if (result != kOk) {
        return true;
    }
    Keep();
    if (SaveAll()) {
        return true;
    }
    TellNotKept(text::kTrackingTitle, EnvironmentOf(m_command).GetHost(), m_reg);
    return false;
}

bool TrackingDlg::SaveAll() const
{
    for (std::size_t i = 0; i < m_sets.size(); ++i) {
        if (SaveTracking(m_reg, AllSurveys()[i], m_sets[i]) == 0) {
            return false;
        }
    }
    return SaveSurvey(m_reg, static_cast<std::size_t>(m_shown)) == 1;
}

} // namespace fieldcore
