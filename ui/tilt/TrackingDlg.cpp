#include "ui/tilt/TrackingDlg.h"

#include "core/host/MesBox.h"
#include "core/input/Parts.h"
#include "core/input/TextList.h"
#include "core/platform/SettingsStore.h"
#include "ui/controls/FormRow.h"
#include "ui/controls/SpinDouble.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QScrollArea>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

/// A drop-down list whose codes are the places of its texts.
class ComboTexts final : public TextList
{
public:
    explicit ComboTexts(CTComboBox& combo) : m_combo(combo) {}
    void Insert(int position, std::wstring_view text) override
    {
        m_combo.InsertEntry(position, ToQt(text), position);
    }

private:
    CTComboBox& m_combo;
};

} // namespace

TrackingDlg::TrackingDlg(SettingsRoots& roots, QWidget* parent)
    : Dialog(parent, Extent::Form), m_reg(roots), m_sets(AllSurveys().size(), CGPSPrm(roots)),
      m_survey(new CTComboBox), m_interval(new CTComboBox), m_mask(new CTComboBox),
      m_satellites(new CTComboBox), m_epochs(new CSpinDouble), m_pdop(new CSpinDouble)
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
    auto* const grid = new QGridLayout;
    grid->setSpacing(kGrid);
    const struct
    {
        int textId;
        int (CGPSPrm::*get)() const;
        int (CGPSPrm::*set)(int);
    } switches[] = {{text::kSignalGlonass, &CGPSPrm::GetGLONASSData, &CGPSPrm::SetGLONASSData},
                    {text::kSignalQzss, &CGPSPrm::GetQZSSData, &CGPSPrm::SetQZSSData},
                    {text::kSignalGalileo, &CGPSPrm::GetGalileoData, &CGPSPrm::SetGalileoData},
                    {text::kTrackingMsas, &CGPSPrm::GetMSASData, &CGPSPrm::SetMSASData},
                    {text::kSignalL2c, &CGPSPrm::GetL2CData, &CGPSPrm::SetL2CData},
                    {text::kSignalL5, &CGPSPrm::GetL5Data, &CGPSPrm::SetL5Data}};
    for (const auto& each : switches) {
        auto* const box = new QCheckBox(UiText(each.textId));
        box->setMinimumHeight(TouchStyle::kTarget);
        const int count = static_cast<int>(m_switches.size());
        grid->addWidget(box, count / 3, count % 3);
        m_switches.push_back({box, each.get, each.set});
    }
    column->addLayout(grid);
    column->addStretch(1);
    auto* const scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(inside);
    auto* const window = new QVBoxLayout(this);
    window->setContentsMargins(0, 0, 0, kGrid);
    window->addWidget(scroll, 1);
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
    ComboTexts intervals(*m_interval);
    CParts::SetIntervalStr(intervals, 0);
    ComboTexts masks(*m_mask);
    CParts::SetElMaskStr(masks);
    ComboTexts satellites(*m_satellites);
    CParts::SetMinSVsStr(satellites, kLeastSatellites);
    m_epochs->SetRange(1, kMostEpochs);
    m_epochs->SetName(UiText(text::kTrackingEpochs));
    m_pdop->SetRange(kLeastPdop, kMostPdop);
    m_pdop->SetDecimals(1);
    m_pdop->SetStep(0.5);
    m_pdop->SetName(UiText(text::kTrackingPdop));
    const std::pair<int, QWidget*> rows[] = {
        {text::kTrackingSurvey, m_survey}, {text::kTrackingInterval, m_interval},
        {text::kTrackingMask, m_mask},     {text::kTrackingMinSatellites, m_satellites},
        {text::kTrackingPdop, m_pdop},     {text::kTrackingEpochs, m_epochs},
    };
    for (const auto& [textId, field] : rows) {
        AddFormRow(form, UiText(textId), field);
        field->setAccessibleName(UiText(textId));
    }
}

bool TrackingDlg::OnInitDialog()
{
    for (std::size_t i = 0; i < m_sets.size(); ++i) {
        LoadTracking(m_reg, AllSurveys()[i], m_sets[i]);
    }
    Show(m_survey->currentIndex());
    return true;
}

void TrackingDlg::Show(int index)
{
    m_shown = index;
    const CGPSPrm& set = m_sets[static_cast<std::size_t>(index)];
    m_interval->SelectCode(CParts::ConvIntervalData2Flag(set.GetIntervalData()));
    m_mask->SelectCode(CParts::ConvElMaskData2Flag(set.GetElMaskData()));
    m_satellites->SelectCode(CParts::ConvMinSVsData2Flag(set.GetMinSVsData(), kLeastSatellites));
    m_epochs->SetValue(set.GetSvEpochData());
    m_pdop->SetValue(set.GetPDOPMaskData(1));
    for (const Switch& each : m_switches) {
        each.box->setChecked((set.*each.get)() != 0);
    }
}

void TrackingDlg::Keep()
{
    CGPSPrm& set = m_sets[static_cast<std::size_t>(m_shown)];
    set.SetIntervalData(CParts::ConvIntervalFlag2Data(m_interval->GetCode()));
    set.SetElMaskData(CParts::ConvElMaskFlag2Data(m_mask->GetCode()));
    set.SetMinSVsData(CParts::ConvMinSVsFlag2Data(m_satellites->GetCode(), kLeastSatellites));
    set.SetSvEpochData(static_cast<int>(m_epochs->GetValue()));
    set.SetPDOPMaskData(m_pdop->GetValue());
    for (const Switch& each : m_switches) {
        (set.*each.set)(each.box->isChecked() ? 1 : 0);
    }
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
    CMesBox().Fail(text::kTrackingNotKept, text::kTrackingTitle);
    return false;
}

bool TrackingDlg::SaveAll() const
{
    for (std::size_t i = 0; i < m_sets.size(); ++i) {
        if (SaveTracking(m_reg, AllSurveys()[i], m_sets[i]) == 0) {
            return false;
        }
    }
    return true;
}

} // namespace fieldcore
