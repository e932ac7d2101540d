#include "app/StatusStrip.h"

#include "core/equipment/StatusRows.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/Widgets.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QStringList>
#include <QVBoxLayout>

#include <algorithm>
#include <initializer_list>

namespace fieldcore {

namespace {

constexpr int kLineHeight = 40;
constexpr int kSlimHeight = 32; // of a page, which needs its room for itself
constexpr int kRibbonHeight = 24;
constexpr int kMargin = 12;
constexpr int kGap = 8;

/// By the state of the link.
constexpr RoleLabel::Role kLamps[] = {&Theme::second, &Theme::attention, &Theme::good, &Theme::bad,
                                      &Theme::bad,    &Theme::bad,       &Theme::bad};

} // namespace

StatusStrip::StatusStrip(QWidget* parent, Place place)
    : QWidget(parent), m_place(place), m_line(new QHBoxLayout), m_below(new QHBoxLayout),
      m_lamp(new RoleLabel(&Theme::second)), m_fix(new RoleLabel(&Theme::text)),
      m_receiver(new QLabel), m_pdop(new RoleLabel(&Theme::text)),
      m_time(new RoleLabel(&Theme::text)), m_battery(new RoleLabel(&Theme::text)),
      m_broken(new RoleLabel(&Theme::attention)), m_antenna(new QLabel),
      m_ribbon(new RoleLabel(&Theme::ground))
{
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::AlternateBase); // raised
    setAccessibleName(UiText(text::kAppStatus));
    LayOut(m_line, {kMargin, 0, kMargin, 0}, kGap,
           {m_lamp, m_fix, m_pdop, {m_receiver, 1}, m_time, m_battery});
    LayOut(m_below, {kMargin, 0, kMargin, 0}, kGap, {});
    m_time->setMinimumWidth(1); // or the window could not become so narrow that it has to move
    m_receiver->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_time->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    for (QLabel* label :
         std::initializer_list<QLabel*>{m_lamp, m_fix, m_receiver, m_pdop, m_battery}) {
        label->setMinimumHeight(place == Place::Window ? kLineHeight : kSlimHeight);
    }
    m_time->setMinimumHeight(kRibbonHeight);
    m_ribbon->SetGround(&Theme::attention);
    m_broken->setFont(BoldFont(font()));
    m_fix->setFont(BoldFont(font()));
    for (QLabel* const words : std::initializer_list<QLabel*>{m_broken, m_antenna, m_ribbon}) {
        words->setMinimumHeight(kRibbonHeight);
        words->setContentsMargins(kMargin, 0, kMargin, 0);
        words->setWordWrap(true);
    }
    LayOut(new QVBoxLayout(this), {}, 0, {m_line, m_below, m_broken, m_antenna, m_ribbon});
    Show({});
}

void StatusStrip::OfferConnection()
{
    m_connect = new QPushButton(UiText(text::kAppConnect));
    m_connect->setMinimumSize(2 * TouchStyle::kTarget, TouchStyle::kTarget);
    m_connect->setAutoDefault(false);
    m_line->addWidget(m_connect);
    connect(m_connect, &QPushButton::clicked, this, &StatusStrip::ConnectionWanted);
    Show(m_state);
}

void StatusStrip::Show(const HomeState& state)
{
    m_state = state;
    const LinkState link = state.receiver.link;
    const bool hasReceiver = HasReceiver(link);
    m_lamp->setToolTip(ToQt(LinkText(link)));
    m_fix->setText(hasReceiver ? ToQt(FixText(state.receiver, state.view)) : QString());
    for (QLabel* const value : {m_fix, m_pdop, m_battery}) {
        value->setVisible(hasReceiver);
    }
    if (m_connect != nullptr) {
        m_connect->setVisible(!hasReceiver && link != LinkState::Connecting);
    }
    m_receiver->setToolTip(Name());
    m_pdop->setText(QStringLiteral("PDOP ") + m_state.Words("pdop"));
    m_time->setText(TimeWords());
    QStringList broken;
    for (const std::wstring& words : BrokenLimits(state.receiver, state.view)) {
        broken += ToQt(words);
    }
    const bool isSlim = m_place == Place::Page;
    const bool isSimulated = !state.simulator.isEmpty();
    m_broken->setVisible(!broken.isEmpty() && !(isSlim && isSimulated));
    m_broken->setText(ToQt(
        FormatText(text::kLimitShort, broken.join(QStringLiteral("、")).toStdWString().c_str())));
    m_antenna->setVisible(!state.antenna.isEmpty() &&
                          !(isSlim && (isSimulated || !broken.isEmpty())));
    m_antenna->setText(state.antenna);
    m_ribbon->setVisible(isSimulated);
    m_ribbon->setText(UiText(text::kAppSimulator).arg(state.simulator));
    m_lamp->SetRole(kLamps[static_cast<std::size_t>(link)]);
    m_fix->SetRole(state.RoleOf("fix"));
    m_pdop->SetRole(state.RoleOf("pdop"));
    m_battery->SetRole(state.RoleOf("batteryPercent"));
    m_time->SetRole(state.receiver.status ? state.RoleOf(kHeartbeat) : &Theme::text);
    Arrange();
}

/// The model, while there is a link or shall be one.
QString StatusStrip::Name() const
{
    return HasReceiver(m_state.receiver.link) ? ToQt(m_state.receiver.identity.Model()) : QString();
}

QString StatusStrip::TimeWords() const
{
    const Receiver& receiver = m_state.receiver;
    const StatusView& view = m_state.view;
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
    const LinkState link = m_state.receiver.link;
    const QString charge = m_state.Words("batteryPercent");
    const QString name = Name();
    const QString word = ToQt(LinkText(link));
    m_lamp->setText(word);
    m_battery->setText(charge);
    // What gives way must not keep the window from becoming narrow.
    m_lamp->setMinimumWidth(metrics.horizontalAdvance(word.left(1)));
    m_battery->setMinimumWidth(metrics.horizontalAdvance(charge));
    int others = 2 * kMargin - kGap; // all but the name, the time and the button
    for (const QLabel* const part : {m_lamp, m_fix, m_pdop, m_battery}) {
        others += part->isHidden() ? 0 : kGap + part->sizeHint().width();
    }
    const int button =
        m_connect == nullptr || m_connect->isHidden() ? 0 : kGap + m_connect->sizeHint().width();
    const int time = m_time->sizeHint().width();
    int room = width() - others - button - 2 * kGap;
    const int least = 3 * metrics.averageCharWidth(); // of the name
    if (link == LinkState::Connected && !m_fix->text().isEmpty() && room - time < least) {
        m_lamp->setText(word.left(1)); // the fix says that it is connected
        room += metrics.horizontalAdvance(word) - metrics.horizontalAdvance(word.left(1));
    }
    // A page keeps its height: there the name gives way before the time does.
    const bool isBelow = room - time < (name.isEmpty() || m_place == Place::Page ? 0 : least);
    QHBoxLayout* const line = isBelow ? m_below : m_line;
    if (line->indexOf(m_time) < 0) {
        (isBelow ? m_line : m_below)->removeWidget(m_time);
        line->insertWidget(line->indexOf(m_battery), m_time); // below: the only one
    }
    room -= isBelow ? 0 : time;
    const bool hasSource = BatteryPercent(m_state.receiver) && m_state.receiver.powerSource;
    const QString source = QLatin1Char(' ') + m_state.Words("powerSourceName");
    const int more = metrics.horizontalAdvance(source);
    if (hasSource && room - more >= metrics.horizontalAdvance(name)) {
        m_battery->setText(charge + source);
        room -= more;
    }
    m_receiver->setText(room < least ? QString() : metrics.elidedText(name, Qt::ElideRight, room));
}

void StatusStrip::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Arrange();
}

} // namespace fieldcore
