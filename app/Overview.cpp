#include "app/Overview.h"

#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"

#include <QFontInfo>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr double kLarge = 1.25; // of the text's own size
constexpr int kMargin = 12;

QLabel* MakeValue(const QFont& font)
{
    auto* const label = new QLabel(QStringLiteral("--"));
    label->setFont(font);
    return label;
}

void Paint(QLabel* label, const QColor& colour)
{
    QPalette palette = label->palette();
    if (palette.color(QPalette::WindowText) != colour) {
        palette.setColor(QPalette::WindowText, colour);
        label->setPalette(palette);
    }
}

} // namespace

Overview::Overview(QWidget* parent) : QFrame(parent), m_headline(new QLabel)
{
    QFont large = font();
    large.setPixelSize(qRound(QFontInfo(large).pixelSize() * kLarge));
    large.setBold(true);
    m_headline->setFont(large);
    m_headline->setWordWrap(true);
    m_satellites = MakeValue(large);
    m_pdop = MakeValue(large);
    m_battery = MakeValue(large);
    m_received = MakeValue(large);
    setAccessibleName(UiText(text::kAppStatus));

    auto* const form = new QFormLayout;
    form->setHorizontalSpacing(4 * kMargin);
    form->setVerticalSpacing(kMargin);
    form->addRow(UiText(text::kAppTracked), m_satellites);
    form->addRow(QStringLiteral("PDOP"), m_pdop);
    form->addRow(UiText(text::kAppBattery), m_battery);
    form->addRow(UiText(text::kAppReceived), m_received);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin);
    column->addWidget(m_headline);
    column->addLayout(form);
    column->addStretch(1);
    Show({}, QDateTime::currentDateTimeUtc());
}

void Overview::Show(const ReceiverState& state, const QDateTime& nowUtc)
{
    const QString unknown = QStringLiteral("--");
    const bool isFresh = IsFresh(state, nowUtc);
    switch (state.link) {
    case ReceiverState::Link::Connected:
        m_headline->setText(state.receiver);
        break;
    case ReceiverState::Link::Connecting:
        m_headline->setText(UiText(text::kAppConnectingHint));
        break;
    case ReceiverState::Link::Lost:
        m_headline->setText(UiText(text::kAppLostHint));
        break;
    case ReceiverState::Link::None:
        m_headline->setText(UiText(text::kAppConnectHint));
        break;
    }
    m_satellites->setText(state.satellites ? QString::number(*state.satellites) : unknown);
    m_pdop->setText(state.pdop ? QString::number(*state.pdop, 'f', 1) : unknown);
    m_battery->setText(state.batteryPercent
                           ? QString::number(*state.batteryPercent) + QStringLiteral(" %")
                           : unknown);
    m_received->setText(state.receivedUtc.isValid() ? JstText(state.receivedUtc) : unknown);
    const Theme& theme = Theme::Current();
    for (QLabel* label : {m_satellites, m_pdop, m_battery, m_received}) {
        Paint(label, isFresh ? theme.text : theme.stale);
    }
}

} // namespace fieldcore
