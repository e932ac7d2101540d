#include "ui/equipment/Antenna.h"

#include "core/host/MesBox.h"
#include "core/input/Check.h"
#include "core/input/Parts.h"
#include "core/link/Command.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"
#include "ui/equipment/AntennaDrawing.h"
#include "ui/input/ComboEntries.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <cmath>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kMargin = 12;
constexpr int kWide = 900;

/// A list that can be typed into.
CTComboBox* MakeTyped(Qt::InputMethodHints hints)
{
    auto* const box = new CTComboBox;
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setCompleter(nullptr); // it would finish 1.5 to the 1.543 of before
    box->lineEdit()->setInputMethodHints(hints);
    return box;
}

QLabel* AddRow(QGridLayout* grid, int id, QWidget* field)
{
    const int row = grid->rowCount();
    auto* const label = new QLabel(UiText(id));
    label->setBuddy(field);
    label->setWordWrap(true);
    field->setAccessibleName(label->text());
    field->setMinimumHeight(TouchStyle::kTarget);
    field->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    grid->addWidget(label, row, 0);
    grid->addWidget(field, row, 1);
    return label;
}

void Refill(CTComboBox* box, const std::vector<std::wstring>& remembered, const QString& text)
{
    const QSignalBlocker quiet(box);
    box->clear();
    ComboEntries entries(*box);
    for (const std::wstring& entry : remembered) {
        entries.Insert(entries.GetCount(), entry);
    }
    box->setEditText(text);
}

/// Selects the entry with that code; one that is in no list is added, with words in its name's
/// place.
void SelectOrAdd(CTComboBox* box, int code, int unlistedText)
{
    if (box->SelectCode(code) == 0) {
        box->setCurrentIndex(box->AddEntry(UiText(unlistedText), code));
    }
}

int HowText(const AntennaHeight& height)
{
    constexpr int kTexts[] = {text::kAntennaHowVertical, text::kAntennaHowUnknown,
                              text::kAntennaHowBase, text::kAntennaHowSlant,
                              text::kAntennaHowSlant}; // in the order of the reductions
    return kTexts[static_cast<std::size_t>(height.reduction)];
}

} // namespace

CAntenna::CAntenna(CCommand* command, int rover, int reConnect, QWidget* parent)
    : Dialog(parent, Extent::Form), AntennaSettings(command, rover, reConnect),
      m_role(new CTComboBox), m_roleLabel(nullptr), m_antennaType(new CTComboBox),
      m_antennaWay(new CTComboBox), m_height(MakeTyped(Qt::ImhFormattedNumbersOnly)),
      m_serial(MakeTyped(Qt::ImhLatinOnly | Qt::ImhNoPredictiveText)),
      m_drawing(new AntennaDrawing), m_how(new QLabel), m_vertical(new RoleLabel(&Theme::text)),
      m_warning(new RoleLabel(&Theme::bad)),
      m_ask(new QPushButton(UiText(text::kAntennaFromReceiver))),
      m_body(new QBoxLayout(QBoxLayout::TopToBottom))
{
    for (int id = text::kAntennaReference; id <= text::kAntennaRoverSecond; ++id) {
        m_role->AddEntry(UiText(id), id - text::kAntennaReference);
    }
    auto* const grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    grid->setSpacing(TouchStyle::kGrid);
    m_roleLabel = AddRow(grid, text::kAntennaRole, m_role);
    m_role->hide();
    m_roleLabel->hide();
    AddRow(grid, text::kAntennaType, m_antennaType);
    AddRow(grid, text::kAntennaMethod, m_antennaWay);
    AddRow(grid, text::kAntennaHeight, m_height);
    AddRow(grid, text::kAntennaSerial, m_serial);
    for (CTComboBox* box : {m_antennaType, m_antennaWay, m_height, m_serial}) {
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    }
    grid->setRowStretch(grid->rowCount(), 1);

    auto* const picture = new QVBoxLayout;
    m_how->setWordWrap(true);
    picture->addWidget(m_how);
    picture->addWidget(m_drawing, 1);
    auto* const content = new QWidget;
    m_body->setContentsMargins(kMargin, kMargin, kMargin, 0);
    m_body->addLayout(grid);
    m_body->addLayout(picture, 1);
    content->setLayout(m_body);
    auto* const scroll = MakeScroll(content);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);

    m_vertical->setFont(BoldFont(font(), 1.5));
    m_vertical->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* const verticalLabel = new QLabel(UiText(text::kAntennaVertical));
    m_vertical->setAccessibleName(verticalLabel->text());
    m_warning->setWordWrap(true);
    auto* const result = new QHBoxLayout;
    result->setContentsMargins(kMargin, 0, kMargin, 0);
    result->addWidget(verticalLabel);
    result->addWidget(m_vertical, 1);
    m_warning->setContentsMargins(kMargin, 0, kMargin, 0);

    QBoxLayout* const foot = MakeOkCancel();
    m_ask->setMinimumHeight(TouchStyle::kTarget);
    m_ask->setAutoDefault(false);
    foot->insertWidget(0, m_ask);
    foot->setContentsMargins(kMargin / 3, 0, kMargin / 3, 0); // three buttons with large letters
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, kMargin);
    layout->addWidget(scroll, 1);
    layout->addLayout(result);
    layout->addWidget(m_warning);
    layout->addLayout(foot);

    m_ask->setEnabled(command != nullptr && command->IsPortOpen() != 0);
    OfferConnection([this] { m_ask->setEnabled(true); });
    connect(m_role, &QComboBox::activated, this, [this] {
        if (IsUnchanged() || CMesBox().Confirm(text::kAntennaChangeRole, text::kAntennaCaption)) {
            SetRole(static_cast<AntennaRole>(m_role->GetCode()));
            ReadRole();
        }
        m_role->SelectCode(static_cast<int>(Role()));
    });
    connect(m_antennaType, &QComboBox::activated, this, &CAntenna::ChooseType);
    connect(m_antennaWay, &QComboBox::activated, this, &CAntenna::ChooseWay);
    connect(m_height, &QComboBox::editTextChanged, this, &CAntenna::ShowHeight);
    connect(m_ask, &QPushButton::clicked, this, [this] { AskReceiver(true); });
}

void CAntenna::OfferRoles()
{
    m_role->show();
    m_roleLabel->show();
}

bool CAntenna::OnInitDialog()
{
    if (CheckReg() == 0) {
        CMesBox().Warn(text::kAntennaNotStored, text::kAntennaCaption);
    }
    ReadRole();
    if (GetReConnect() != 0) {
        SetReConnect(0);
        AskReceiver(false);
    }
    m_height->setFocus();
    m_height->lineEdit()->selectAll();
    return false;
}

void CAntenna::DoDataExchange(bool fromControls)
{
    if (fromControls) {
        SetAntInputH(CParts::atof(m_height->currentText().toStdWString()));
        SetAntSN(m_serial->currentText().toStdWString());
        return;
    }
    m_role->SelectCode(static_cast<int>(Role()));
    setWindowTitle(UiText(text::kAntennaTitle) + QStringLiteral(" - ") + m_role->currentText());
    SetAntType();
    SetAntWay();
    const bool isMeasured = GetAntInputH() > 0.0 || !RememberedHeights().empty();
    Refill(m_height, RememberedHeights(), isMeasured ? ToQt(GetAntInputStr()) : QString());
    Refill(m_serial, RememberedSerials(), ToQt(GetAntSN()));
    ShowHeight();
}

void CAntenna::SetAntType()
{
    m_antennaType->clear();
    const int count = GetMaxCount();
    for (int type = 0; type < count; ++type) {
        const auto description = Catalogue().Type(type);
        m_antennaType->AddEntry(description ? ToQt(description->name) : QString(), type);
    }
    m_antennaType->setEnabled(count > 0);
    SelectOrAdd(m_antennaType, GetAntTypeFlag(),
                count > 0 ? text::kAntennaTypeUnlisted : text::kAntennaNoType);
}

void CAntenna::SetAntWay()
{
    m_antennaWay->clear();
    const int count = GetMaxCount() > 0 ? Catalogue().MethodCount(GetAntTypeFlag()) : 0;
    for (int way = 0; way <= count; ++way) {
        m_antennaWay->AddEntry(ToQt(GetAntWayStr(GetAntTypeFlag(), way)), way);
    }
    SelectOrAdd(m_antennaWay, GetAntWayFlag(), text::kAntennaMethodUnlisted);
}

void CAntenna::ChooseType()
{
    if (SetAntTypeFlag(m_antennaType->GetCode()) != 0) {
        SetAntWayFlag(0); // the other antenna's method would mean another point of this one
    }
    SetAntWay();
    ShowHeight();
}

void CAntenna::ChooseWay()
{
    SetAntWayFlag(m_antennaWay->GetCode());
    ShowHeight();
}

bool CAntenna::IsUnchanged() const
{
    return GetAntTypeFlag() == m_read.type && GetAntWayFlag() == m_read.way &&
           m_height->currentText() == m_read.height && m_serial->currentText() == m_read.serial;
}

void CAntenna::ReadRole()
{
    ReadRegAnt();
    DoDataExchange(false);
    m_read = {GetAntTypeFlag(), GetAntWayFlag(), m_height->currentText(), m_serial->currentText()};
}

void CAntenna::ShowHeight()
{
    const std::wstring typed = m_height->currentText().toStdWString();
    const std::wstring fault = AntennaHeightFault(typed);
    if (fault.empty()) {
        SetAntInputH(CParts::atof(typed));
    }
    const AntennaHeight height =
        Height(fault.empty() ? GetAntInputH() : 1.0, GetAntTypeFlag(), GetAntWayFlag());
    const bool isKnown = fault.empty() && std::isfinite(height.verticalM);
    constexpr std::uint8_t kDecimals = 3;
    m_vertical->setText(
        isKnown ? ToQt(FormatText(text::kAntennaMetres, CParts::round(height.verticalM, kDecimals)))
                : UiText(text::kAntennaNoMetres));
    const bool isShort = isKnown && height.reduction == AntennaReduction::TooShort;
    std::wstring warning;
    if (!typed.empty()) {
        warning = fault;
    }
    if (isShort) {
        warning = FormatText(text::kAntennaTooShort, height.measuredM, height.method.radiusM);
    } else if (warning.empty() && ChoiceFault() != 0) {
        warning = Text(ChoiceFault());
    } else if (warning.empty() && GetMaxCount() == 0) {
        warning = Text(text::kAntennaNoCatalogue);
    }
    m_warning->setText(ToQt(warning));
    m_warning->setVisible(!warning.empty());
    m_warning->SetRole(fault.empty() ? &Theme::attention : &Theme::bad);
    const bool isDoubtful = isShort || height.reduction == AntennaReduction::Unknown;
    m_vertical->SetRole(!isKnown ? &Theme::stale : isDoubtful ? &Theme::attention : &Theme::text);
    m_how->setText(UiText(HowText(height)));
    m_drawing->setAccessibleDescription(m_how->text() + QLatin1Char(' ') + m_vertical->text());
    m_drawing->Show(height, isKnown);
}

void CAntenna::AskReceiver(bool isWanted)
{
    switch (TakeFromReceiver()) {
    case Taken::Yes: {
        SetAntType();
        SetAntWay();
        const QSignalBlocker quiet(m_serial);
        m_serial->setEditText(ToQt(GetAntSN()));
        ShowHeight();
        break;
    }
    case Taken::NotListed:
        CMesBox().Warn(FormatText(text::kAntennaNotListed, SourceCode().c_str()),
                       text::kAntennaCaption);
        break;
    case Taken::NoAnswer:
        if (isWanted) {
            CMesBox().Fail(text::kAntennaNotReceived, text::kAntennaCaption);
        }
        break;
    }
}

bool CAntenna::Stay(const std::wstring& fault, QWidget* field)
{
    CMesBox().Warn(fault, text::kAntennaCaption);
    WidgetFocus(field).TakeFocus();
    return false;
}

bool CAntenna::OnClose(int result)
{
    if (result != kOk) {
        return true;
    }
    if (const int choice = ChoiceFault(); choice != 0) {
        return Stay(Text(choice),
                    choice == text::kAntennaTypeUnknown ? m_antennaType : m_antennaWay);
    }
    const std::wstring height = m_height->currentText().toStdWString();
    const std::wstring serial = m_serial->currentText().toStdWString();
    WidgetFocus heightField(m_height->lineEdit());
    if (CCheck(0.0, kHighestAntennaM).CheckNum(height, &heightField, 0, 1) == 0) {
        return false;
    }
    if (const std::wstring fault = AntennaHeightFault(height); !fault.empty()) {
        return Stay(fault, m_height->lineEdit()); // nothing was typed
    }
    if (const std::wstring fault = AntennaSerialFault(serial); !fault.empty()) {
        return Stay(fault, m_serial->lineEdit());
    }
    DoDataExchange(true);
    if (WriteRegAnt() == 0) {
        CMesBox().Fail(text::kAntennaNotStored, text::kAntennaCaption);
        return false;
    }
    return true;
}

void CAntenna::resizeEvent(QResizeEvent* event)
{
    Dialog::resizeEvent(event);
    const bool isWide = event->size().width() > kWide;
    m_body->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_body->setStretch(0, isWide ? 1 : 0);
    m_body->setStretch(1, 1);
}

} // namespace fieldcore
