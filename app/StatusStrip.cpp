#include "app/StatusStrip.h"

#include "core/equipment/StatusRows.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QStringList>
#include <QVBoxLayout>

#include <algorithm>

namespace fieldcore {

namespace {

constexpr int kLineHeight = 40;
constexpr int kRibbonHeight = 24;
constexpr int kMargin = 12;
constexpr int kGap = 8;

struct Lamp
{
    int text;
    QColor Theme::*colour;
};

Lamp LampOf(LinkState link)
{
    switch (link) {
    case LinkState::Connected:
        return {text::kAppLinkConnected, &Theme::good};
    case LinkState::Connecting:
        return {text::kAppLinkConnecting, &Theme::attention};
    case LinkState::Lost:
    case LinkState::Reconnecting:
        return {text::kAppLinkLost, &Theme::bad};
    case LinkState::NotConnected:
        break;
    }
    return {text::kAppLinkNone, &Theme::second};
}

/// Text in a colour, of the theme that holds now.
void Paint(QLabel* label, const QColor& colour)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, colour);
    label->setPalette(palette);
}

} // namespace

StatusStrip::StatusStrip(QWidget* parent)
    : QWidget(parent), m_line(new QHBoxLayout), m_below(new QHBoxLayout), m_lamp(new QLabel),
      m_receiver(new QLabel), m_pdop(new QLabel), m_time(new QLabel), m_battery(new QLabel),
      m_broken(new QLabel), m_antenna(new QLabel), m_ribbon(new QLabel)
{
    setAutoFillBackground(true);
    setAccessibleName(UiText(text::kAppStatus));
    for (QHBoxLayout* const line : {m_line, m_below}) {
        line->setContentsMargins(kMargin, 0, kMargin, 0);
        line->setSpacing(kGap);
    }
    m_time->setMinimumWidth(1); // or the window could not become so narrow that it has to move
    m_receiver->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_time->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_line->addWidget(m_lamp);
    m_line->addWidget(m_receiver, 1);
    m_line->addWidget(m_pdop);
    m_line->addWidget(m_time);
    m_line->addWidget(m_battery);
    for (QLabel* label : {m_lamp, m_receiver, m_pdop, m_battery}) {
        label->setMinimumHeight(kLineHeight);
    }
    m_time->setMinimumHeight(kRibbonHeight);
    m_ribbon->setMinimumHeight(kRibbonHeight);
    m_ribbon->setContentsMargins(kMargin, 0, kMargin, 0);
    m_ribbon->setWordWrap(true);
    m_ribbon->setAutoFillBackground(true);
    m_broken->setMinimumHeight(kRibbonHeight);
    m_broken->setContentsMargins(kMargin, 0, kMargin, 0);
    m_broken->setWordWrap(true);
    QFont bold = font();
    bold.setBold(true);
    m_broken->setFont(bold);
    m_antenna->setMinimumHeight(kRibbonHeight);
    m_antenna->setContentsMargins(kMargin, 0, kMargin, 0);
    m_antenna->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(m_line);
    column->addLayout(m_below);
    column->addWidget(m_broken);
    column->addWidget(m_antenna);
    column->addWidget(m_ribbon);
    Show({});
}

void StatusStrip::Show(const HomeState& state)
{
    m_state = state;
    m_lamp->setText(UiText(LampOf(state.receiver.link).text));
    m_receiver->setToolTip(Name());
    m_pdop->setText(QStringLiteral("PDOP ") + Words("pdop"));
    m_time->setText(TimeWords());
    QStringList broken;
    for (const std::wstring& words : BrokenLimits(state.receiver, state.view)) {
        broken += ToQt(words);
    }
    m_broken->setVisible(!broken.isEmpty());
    m_broken->setText(ToQt(
        FormatText(text::kLimitShort, broken.join(QStringLiteral("、")).toStdWString().c_str())));
    m_antenna->setVisible(!state.antenna.isEmpty());
    m_antenna->setText(state.antenna);
    m_antenna->setToolTip(state.antenna);
    m_ribbon->setVisible(!state.simulator.isEmpty());
    m_ribbon->setText(UiText(text::kAppSimulator).arg(state.simulator));
    Colour();
    Arrange();
}

/// A field of the receiver.
QString StatusStrip::Words(std::string_view key) const
{
    return ToQt(FieldText(FieldOf(key), m_state.receiver, m_state.view));
}

/// The model, while there is a link or shall be one.
QString StatusStrip::Name() const
{
    const bool isMeant = m_state.receiver.link != LinkState::NotConnected;
    return isMeant ? ToQt(m_state.receiver.identity.Model()) : QString();
}

QString StatusStrip::TimeWords() const
{
    const auto& [receiver, view, antenna, nextWindow, simulator] = m_state;
    if (receiver.status && IsStale(FieldOf(kHeartbeat), receiver, view)) {
        return ToQt(StatusRowOf(FieldOf(kHeartbeat), receiver, view).age);
    }
    const std::wstring jst = JstTimeOfDay(receiver, view);
    return jst.empty()
               ? ToQt(FormatText(text::kAppControllerTime, ControllerTimeOfDay(view.utc).c_str()))
               : ToQt(jst) + QStringLiteral(" JST");
}

void StatusStrip::Arrange()
{
    const QFontMetrics metrics = m_receiver->fontMetrics();
    const QString charge = Words("batteryPercent");
    const QString name = Name();
    m_battery->setText(charge);
    const int gaps = 2 * kMargin + 4 * kGap;
    const int least = 3 * metrics.averageCharWidth(); // of the name
    const int others = gaps + m_lamp->sizeHint().width() + m_pdop->sizeHint().width() +
                       m_battery->sizeHint().width();
    const int time = m_time->sizeHint().width();
    const bool isBelow = others + least + time > width();
    QHBoxLayout* const line = isBelow ? m_below : m_line;
    if (line->indexOf(m_time) < 0) {
        (isBelow ? m_line : m_below)->removeWidget(m_time);
        line->insertWidget(line->indexOf(m_battery), m_time); // below: the only one
    }
    int room = width() - others - (isBelow ? 0 : time);
    const bool hasSource = BatteryPercent(m_state.receiver) && m_state.receiver.powerSource;
    const QString source = QLatin1Char(' ') + Words("powerSourceName");
    const int more = metrics.horizontalAdvance(source);
    if (hasSource && room - more >= metrics.horizontalAdvance(name)) {
        m_battery->setText(charge + source);
        room -= more;
    }
    m_receiver->setText(metrics.elidedText(name, Qt::ElideRight, std::max(room, 0)));
}

void StatusStrip::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Arrange();
}

void StatusStrip::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_ribbon != nullptr) {
        Colour();
    }
}

void StatusStrip::Colour()
{
    const Theme& theme = Theme::Current();
    const auto& [receiver, view, antenna, nextWindow, simulator] = m_state;
    const auto colourOf = [&](std::string_view key) {
        return IsStale(FieldOf(key), receiver, view) ? theme.stale : theme.text;
    };
    Paint(m_lamp, theme.*LampOf(receiver.link).colour);
    Paint(m_pdop, colourOf("pdop"));
    Paint(m_broken, theme.attention);
    Paint(m_battery, colourOf("batteryPercent"));
    Paint(m_time, receiver.status ? colourOf(kHeartbeat) : theme.text);
    QPalette ground = m_ribbon->palette();
    ground.setColor(QPalette::Window, theme.attention);
    ground.setColor(QPalette::WindowText, theme.ground);
    m_ribbon->setPalette(ground);
    QPalette own = palette();
    if (own.color(QPalette::Window) != theme.raised) {
        own.setColor(QPalette::Window, theme.raised);
        setPalette(own);
    }
}

} // namespace fieldcore
