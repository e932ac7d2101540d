#include "ui/link/PortChooser.h"

#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr std::chrono::seconds kInterval{1};
const QString kSimulator = QStringLiteral("sim:");

/// What it is, where it is unless that says nothing, and its state: a line each.
QString RowText(const PortChoice& port)
{
    const QString mark = port.usable ? QStringLiteral("○ ") : QStringLiteral("× ");
    const QString place = port.place.empty() ? QString() : ToQt(port.place) + QStringLiteral("\n");
    return ToQt(port.title) + QStringLiteral("\n") + place + mark + ToQt(port.state);
}

} // namespace

PortChooser::PortChooser(PortNames names, const std::vector<ScenarioChoice>& scenarios,
                         SystemRoots roots, QWidget* parent)
    : QWidget(parent), m_names(std::move(names)), m_roots(std::move(roots)),
      m_list(new QListWidget), m_nothing(new QLabel(UiText(text::kPortNone))),
      m_name(new QLineEdit), m_fault(new RoleLabel(&Theme::bad, UiText(text::kPortNameFault))),
      m_scenarioLabel(new QLabel(UiText(text::kPortScenario))), m_scenario(new QComboBox),
      m_baudRate(new QComboBox)
{
    Build(scenarios);
    connect(m_list, &QListWidget::currentRowChanged, this, &PortChooser::OnRow);
    connect(m_list, &QListWidget::itemActivated, this, &PortChooser::Activated);
    connect(m_name, &QLineEdit::textChanged, this, &PortChooser::OnName);
    connect(m_scenario, &QComboBox::activated, this, &PortChooser::OnScenario);
    connect(m_baudRate, &QComboBox::activated, this, &PortChooser::Chosen);
    connect(&m_timer, &QTimer::timeout, this, &PortChooser::Refresh);
    SetChoice({});
}

void PortChooser::Build(const std::vector<ScenarioChoice>& scenarios)
{
    m_list->setAccessibleName(UiText(text::kPortList));
    m_list->setIconSize(QSize(4 * kGrid, 4 * kGrid));
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setMinimumHeight(3 * TouchStyle::kTarget);
    m_nothing->setWordWrap(true);
    m_fault->setWordWrap(true);
    m_fault->setTextFormat(Qt::PlainText);
    m_name->setAccessibleName(UiText(text::kPortName).remove(QLatin1Char('&')));
    m_name->setPlaceholderText(UiText(text::kPortNameHint));
    m_name->setMaxLength(static_cast<int>(CReg::kMaxText));
    m_scenario->setAccessibleName(UiText(text::kPortScenario).remove(QLatin1Char('&')));
    m_scenario->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_scenario->setMinimumContentsLength(12);
    m_scenario->addItem(UiText(text::kScenarioDefault), QString());
    for (const ScenarioChoice& scenario : scenarios) {
        const QString name = QString::fromStdString(scenario.name);
        m_scenario->addItem(name + QStringLiteral("　") + scenario.title, name);
    }
    m_baudRate->setAccessibleName(UiText(text::kPortBaudRate).remove(QLatin1Char('&')));
    for (const std::uint32_t rate : kBaudRates) {
        m_baudRate->addItem(ToQt(FormatText(text::kPortBaudRateValue, static_cast<long>(rate))),
                            rate);
    }
    auto* const form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    form->setSpacing(kGrid);
    AddFormRow(*form, UiText(text::kPortName), m_name);
    form->addRow(m_fault);
    m_scenarioLabel->setBuddy(m_scenario);
    m_scenarioLabel->setMinimumHeight(TouchStyle::kTarget);
    form->addRow(m_scenarioLabel, m_scenario);
    AddFormRow(*form, UiText(text::kPortBaudRate), m_baudRate);
    LayOut(new QVBoxLayout(this), {}, kGrid, {m_nothing, {m_list, 1}, form});
    m_fault->hide();
    m_nothing->hide(); // until it has been looked
}

std::string PortChooser::Name() const
{
    return m_name->text().trimmed().toStdString();
}

void PortChooser::SetChoice(const ConnectChoice& choice)
{
    const int rate = m_baudRate->findData(choice.baudRate);
    m_baudRate->setCurrentIndex(rate >= 0 ? rate : m_baudRate->findData(ConnectChoice().baudRate));
    m_name->setText(QString::fromStdString(choice.port));
    OnName();
}

std::optional<ConnectChoice> PortChooser::Choice() const
{
    const std::string name = Name();
    if (!m_names.Parse(name).port) {
        return std::nullopt;
    }
    return ConnectChoice{name, m_baudRate->currentData().toUInt()};
}

void PortChooser::Refresh()
{
    std::vector<PortChoice> ports = ListPortChoices(m_names, m_roots);
    if (ports != m_ports) {
        m_ports = std::move(ports);
        m_nothing->setVisible(m_ports.size() <= 1);
        ShowPorts();
    }
}

void PortChooser::ShowPorts()
{
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    for (const PortChoice& port : m_ports) {
        const bool isSimulator = port.place.empty();
        auto* const item = new QListWidgetItem(
            ThemeIcon(isSimulator ? QStringLiteral("receiver") : QStringLiteral("port")),
            RowText(port), m_list);
        item->setToolTip(QString::fromStdString(port.name));
        const int lines = static_cast<int>(item->text().count(QLatin1Char('\n'))) + 1;
        item->setSizeHint({0, lines * fontMetrics().lineSpacing() + 2 * kGrid});
        item->setForeground(port.usable ? Theme::Current().text : Theme::Current().second);
    }
    SelectRow();
}

/// Marks what is typed, if it is in the list.
void PortChooser::SelectRow()
{
    const QSignalBlocker blocker(m_list);
    m_list->setCurrentRow(-1);
    for (std::size_t i = 0; i < m_ports.size(); ++i) {
        if (IsSamePort(m_names, m_ports[i].name, Name())) {
            m_list->setCurrentRow(static_cast<int>(i));
            return;
        }
    }
}

void PortChooser::OnRow(int row)
{
    if (row < 0 || row >= static_cast<int>(m_ports.size())) {
        return;
    }
    const PortChoice& port = m_ports[static_cast<std::size_t>(row)];
    if (!IsSamePort(m_names, port.name, Name())) { // another name of the same stays as it is typed
        m_name->setText(QString::fromStdString(port.name));
    }
}

void PortChooser::OnName()
{
    const auto parsed = m_names.Parse(Name());
    m_fault->setVisible(!parsed.port && !m_name->text().isEmpty());
    const bool isSimulator = parsed.port && parsed.port->kind == PortKind::Simulator;
    m_scenario->setVisible(isSimulator && m_scenario->count() > 1);
    m_scenarioLabel->setVisible(isSimulator && m_scenario->count() > 1);
    if (isSimulator) {
        m_scenario->setCurrentIndex(
            m_scenario->findData(QString::fromStdString(parsed.port->scenario)));
    }
    SelectRow();
    Q_EMIT Chosen();
}

void PortChooser::OnScenario()
{
    m_name->setText(kSimulator + m_scenario->currentData().toString());
}

void PortChooser::showEvent(QShowEvent* event)
{
    m_timer.start(kInterval);
    QWidget::showEvent(event);
}

void PortChooser::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    if (!m_hasLooked) {
        m_hasLooked = true; // looking which program has which port takes longer than all the rest
        QMetaObject::invokeMethod(this, &PortChooser::Refresh, Qt::QueuedConnection);
    }
}

void PortChooser::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        ShowPorts();
    }
}

void PortChooser::hideEvent(QHideEvent* event)
{
    m_timer.stop();
    m_hasLooked = false;
    QWidget::hideEvent(event);
}

PortChooserDlg::PortChooserDlg(const PortNames& names, const std::vector<ScenarioChoice>& scenarios,
                               const ConnectChoice& choice, const SystemRoots& roots,
                               QWidget* parent)
    : Dialog(parent, Extent::Form), m_choice(choice),
      m_chooser(new PortChooser(names, scenarios, roots))
{
    setWindowTitle(UiText(text::kPortTitle));
    auto* const heading = new QLabel(UiText(text::kPortTitle));
    heading->setFont(BoldFont(font(), 1.25));
    auto* const buttons = MakeOkCancel();
    buttons->setContentsMargins({});
    DefaultButton()->setText(UiText(text::kPortConnect));
    DefaultButton()->setIcon(ThemeIcon(QStringLiteral("connect")));
    connect(m_chooser, &PortChooser::Activated, this, [this] { Close(kOk); });
    connect(m_chooser, &PortChooser::Chosen, this,
            [this] { DefaultButton()->setEnabled(m_chooser->Choice().has_value()); });

    auto* const scroll = MakeScroll(m_chooser);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    LayOut(new QVBoxLayout(this), {12, 12, 12, 12}, kGrid, {heading, {scroll, 1}, buttons});
    m_chooser->SetChoice(choice);
}

bool PortChooserDlg::OnClose(int result)
{
    if (result != kOk) {
        return true;
    }
    const std::optional<ConnectChoice> choice = m_chooser->Choice();
    if (choice) {
        m_choice = *choice;
    }
    return choice.has_value();
}

} // namespace fieldcore
