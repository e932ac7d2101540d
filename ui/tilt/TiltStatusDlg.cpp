#include "ui/tilt/TiltStatusDlg.h"

#include "core/tilt/BubbleConfig.h"
#include "ui/controls/Icon.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"
#include "ui/tilt/TiltCalibDlg.h"
#include "ui/tilt/TiltSensorDlg.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

QPushButton* Button(int textId, const char* icon)
{
    auto* const button = new QPushButton(UiText(textId));
    if (icon != nullptr) {
        button->setIcon(ThemeIcon(QString::fromLatin1(icon)));
    }
    button->setMinimumHeight(6 * kGrid);
    button->setAutoDefault(false);
    return button;
}

/// The first one has what the second one leaves.
QWidget* SideBySide(QWidget* first, QWidget* second)
{
    auto* const both = new QWidget;
    auto* const row = new QHBoxLayout(both);
    row->setContentsMargins({});
    row->addWidget(first, 1);
    row->addWidget(second);
    return both;
}

template <typename Choices>
void Fill(CTComboBox& list, const Choices& choices)
{
    list.clear();
    for (const TiltChoice& choice : choices) {
        list.AddEntry(UiText(choice.textId), choice.value);
    }
}

} // namespace

TiltStatusDlg::TiltStatusDlg(CCommand* command, QWidget* parent)
    : Dialog(parent, Extent::Form), m_command(command), m_tilt(command), m_notice(new QLabel),
      m_status(new QLabel), m_remain(new QLabel), m_sensitivity(new CTComboBox),
      m_speed(new CTComboBox), m_duration(new QLineEdit), m_expiryPlace(new QStackedWidget),
      m_expiry(new QLabel), m_change(Button(text::kTiltChange, nullptr)),
      m_calibrate(Button(text::kTiltCalibrate, "calibrate")), m_expiryEdit(new QLineEdit)
{
    setWindowTitle(UiText(text::kTiltCaption));
    OfferConnection();
    Build();
    connect(m_sensitivity, &QComboBox::activated, this,
            [this](int place) { m_tilt.ChooseSensitivity(place); });
    connect(m_speed, &QComboBox::activated, this, [this](int place) { m_tilt.ChooseSpeed(place); });
    connect(m_duration, &QLineEdit::editingFinished, this, [this] {
        m_tilt.EnterDuration(m_duration->text().toStdWString());
        m_duration->setText(ToQt(TiltSettings::DurationText()));
    });
    connect(m_change, &QPushButton::clicked, this, &TiltStatusDlg::EditExpiry);
    connect(m_expiryEdit, &QLineEdit::editingFinished, this, &TiltStatusDlg::LeaveExpiry);
}

TiltStatusDlg::~TiltStatusDlg()
{
    Destroy();
}

void TiltStatusDlg::Build()
{
    auto* const inside = new QWidget;
    auto* const column = new QVBoxLayout(inside);
    column->setContentsMargins(12, kGrid, 12, kGrid);
    column->setSpacing(kGrid);
    for (QLabel* const headline : {m_notice, m_status}) {
        headline->setFont(BoldFont(font(), 1.25));
        headline->setWordWrap(true);
        column->addWidget(headline);
    }
    column->addWidget(m_remain);
    column->addSpacing(kGrid);
    auto* const form = new QFormLayout;
    form->setVerticalSpacing(kGrid);
    form->setLabelAlignment(Qt::AlignVCenter);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    BuildSettings(*form);
    column->addLayout(form);
    column->addStretch(1);
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(kGrid);
    auto* const bubble = Button(text::kTiltBubble, "tilt");
    connect(bubble, &QPushButton::clicked, this,
            [this] { TiltSensorDlg::StartUp(m_command, this, this); });
    connect(m_calibrate, &QPushButton::clicked, this, &TiltStatusDlg::Calibrate);
    buttons->addWidget(bubble);
    buttons->addWidget(m_calibrate);
    LayOutPage(*this, inside, buttons);

    const std::pair<QWidget*, int> numbers[] = {
        {m_status, kStatus},         {m_remain, kRemain},     {m_sensitivity, kSensitivity},
        {m_speed, kSpeed},           {m_duration, kDuration}, {m_expiry, kExpiry},
        {m_expiryEdit, kExpiryEdit}, {m_change, kChange},     {bubble, kBubble},
        {m_calibrate, kCalibrate},   {m_notice, kNotice}};
    for (const auto& [control, id] : numbers) {
        SetControlId(control, id);
    }
}

void TiltStatusDlg::BuildSettings(QFormLayout& form)
{
    Fill(*m_sensitivity, SensitivityChoices());
    Fill(*m_speed, SpeedChoices());
    m_duration->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
    m_expiryEdit->setInputMethodHints(Qt::ImhDigitsOnly);
    m_expiryPlace->addWidget(SideBySide(m_expiry, m_change));
    m_expiryPlace->addWidget(SideBySide(m_expiryEdit, new QLabel(UiText(text::kTiltHours))));
    m_expiryPlace->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    AddFormRow(form, UiText(text::kTiltSensitivityLabel), m_sensitivity);
    AddFormRow(form, UiText(text::kTiltSpeedLabel), m_speed);
    AddFormRow(form, UiText(text::kTiltToleranceLabel),
               SideBySide(m_duration, new QLabel(UiText(text::kTiltMetres))));
    AddFormRow(form, UiText(text::kTiltValidityLabel), m_expiryPlace);
    m_sensitivity->setAccessibleName(UiText(text::kTiltSensitivityLabel));
    m_speed->setAccessibleName(UiText(text::kTiltSpeedLabel));
    m_duration->setAccessibleName(UiText(text::kTiltToleranceLabel));
    m_expiryEdit->setAccessibleName(UiText(text::kTiltValidityLabel));
}

bool TiltStatusDlg::OnInitDialog()
{
    m_sensitivity->setCurrentIndex(SensitivityPlace(eBubbleConfig::GetBubbleSensitivity()));
    m_speed->setCurrentIndex(SpeedPlace(eBubbleConfig::GetBubbleViscosity()));
    m_duration->setText(ToQt(TiltSettings::DurationText()));
    ShowExpiry();
    if (m_command == nullptr || m_command->IsPortOpen() == 0) {
        m_tilt.Take(TiltState::NoReceiver);
    }
    ShowStatus();
    AskStatus();
    return true;
}

void TiltStatusDlg::OnDestroy()
{
    m_question.reset();
    TiltSensorDlg::ShutDown();
}

void TiltStatusDlg::AskStatus()
{
    if (m_command == nullptr) {
        return;
    }
    m_question = std::make_unique<BackgroundQuestion>(
        *m_command, kTiltRhythm,
        [](CCommand& command) {
            const TiltState state = AskTilt(command, true);
            return std::pair(IsAnswered(state), state);
        },
        [this](TiltState state) {
            m_tilt.Take(state);
            if (const auto record = m_tilt.Record(); record && !m_hasRecord) {
                m_hasRecord = true;
                TiltSettings::Open(*record);
                m_expiry->setText(ToQt(ExpiryText(eBubbleConfig::GetBubbleExpiry())));
            }
            ShowStatus();
        });
}

void TiltStatusDlg::ShowStatus()
{
    const int notice = m_tilt.NoticeTextId();
    m_notice->setText(UiText(notice));
    m_notice->setVisible(notice != 0);
    m_status->setText(UiText(m_tilt.StatusTextId()));
    m_status->setVisible(notice == 0);
    m_remain->setText(ToQt(m_tilt.Remain()));
    m_remain->setVisible(notice == 0);
    m_calibrate->setEnabled(m_tilt.HasSensor());
}

void TiltStatusDlg::ShowExpiry()
{
    m_expiry->setText(ToQt(ExpiryText(eBubbleConfig::GetBubbleExpiry())));
    m_expiryPlace->setCurrentIndex(0);
}

void TiltStatusDlg::EditExpiry()
{
    m_expiryEdit->setText(ToQt(TiltSettings::ExpiryEditText()));
    m_expiryPlace->setCurrentIndex(1);
    m_expiryEdit->setFocus();
    m_expiryEdit->selectAll();
}

void TiltStatusDlg::LeaveExpiry()
{
    if (m_expiryPlace->currentIndex() == 1) { // hiding it takes the focus from it once more
        m_expiryPlace->setCurrentIndex(0);
        m_tilt.EnterExpiry(m_expiryEdit->text().toStdWString());
        ShowExpiry();
    }
}

void TiltStatusDlg::Calibrate()
{
    if (m_command == nullptr || !m_tilt.MayCalibrate(m_command->GetHost())) {
        return;
    }
    m_question.reset();
    TiltCalibDlg run(m_command, this);
    run.DoModal();
    TiltSettings::LastRun() = run.Result();
    ShowStatus();
    AskStatus();
}

} // namespace fieldcore
