#include "app/Overview.h"

#include "core/equipment/BattLevel.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/BatteryBar.h"
#include "ui/planning/LiveSkyView.h"

#include <QFontInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr double kLarge = 1.25; // of the text's own size
constexpr int kMargin = 12;

RoleLabel* MakeValue(const QFont& font)
{
    auto* const label = new RoleLabel(&Theme::text);
    label->setFont(font);
    return label;
}

} // namespace

Overview::Overview(QWidget* parent)
    : QFrame(parent), m_headline(new QLabel),
      m_nextHeading(new QLabel(UiText(text::kAppNextWindow))), m_next(new QLabel),
      m_sky(new LiveSkyView)
{
    QFont large = font();
    large.setPixelSize(qRound(QFontInfo(large).pixelSize() * kLarge));
    large.setBold(true);
    m_headline->setFont(large);
    m_headline->setWordWrap(true);
    m_satellites = MakeValue(large);
    m_pdop = MakeValue(large);
    m_battery = new CTextProgressCtrl;
    CBattLevel(nullptr).SetInit(m_battery);
    m_received = MakeValue(large);
    setAccessibleName(UiText(text::kAppStatus));

    auto* const form = new QFormLayout;
    form->setHorizontalSpacing(4 * kMargin);
    form->setVerticalSpacing(kMargin);
    form->addRow(UiText(text::kAppTracked), m_satellites);
    form->addRow(QStringLiteral("PDOP"), m_pdop);
    form->addRow(UiText(text::kAppBattery), m_battery);
    form->addRow(UiText(text::kAppReceived), m_received);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    row->setSpacing(2 * kMargin);
    auto* const column = new QVBoxLayout;
    column->setSpacing(kMargin);
    column->addWidget(m_headline);
    column->addLayout(form);
    m_nextHeading->setFont(large);
    m_next->setWordWrap(true);
    column->addSpacing(2 * kMargin);
    column->addWidget(m_nextHeading);
    column->addWidget(m_next);
    column->addStretch(1);
    row->addLayout(column, 2);
    row->addWidget(m_sky, 3);
    SetWide(false);
    Show({});
}

void Overview::SetWide(bool isWide)
{
    for (QWidget* const part : {static_cast<QWidget*>(m_nextHeading), static_cast<QWidget*>(m_next),
                                static_cast<QWidget*>(m_sky)}) {
        part->setVisible(isWide);
    }
}

void Overview::ShowSky(const Receiver& receiver, Clock::Duration now)
{
    LiveSkyView::Picture picture;
    if (receiver.tracked) {
        LiveSky::Reading reading;
        reading.tracked = receiver.tracked->value;
        LiveSky sky;
        sky.Take(reading, receiver.tracked->at);
        picture.satellites = sky.Satellites(std::nullopt);
        // Its own poll brings it once in ten seconds.
        picture.isStale = now - receiver.tracked->at > 2 * LiveSky::kStaleAfter;
    }
    if (receiver.link == LinkState::NotConnected) {
        picture.notice = UiText(text::kAppConnectHint);
    }
    m_sky->Show(picture);
}

void Overview::Show(const HomeState& state)
{
    const Receiver& receiver = state.receiver;
    const StatusView& view = state.view;
    switch (receiver.link) {
    case LinkState::Connected:
        m_headline->setText(ToQt(receiver.identity.Model()));
        break;
    case LinkState::Connecting:
        m_headline->setText(UiText(text::kAppConnectingHint));
        break;
    case LinkState::Lost:
    case LinkState::Reconnecting:
        m_headline->setText(UiText(text::kAppLostHint));
        break;
    case LinkState::Failed:
        m_headline->setText(UiText(text::kAppFailedHint));
        break;
    case LinkState::Refused:
        m_headline->setText(UiText(text::kAppRefusedHint));
        break;
    case LinkState::NotConnected:
        m_headline->setText(UiText(text::kAppConnectHint));
        break;
    }
    const auto roleOf = [&](std::string_view key) {
        return IsStale(FieldOf(key), receiver, view) ? &Theme::stale : &Theme::text;
    };
    const auto show = [&](RoleLabel* label, std::string_view key) {
        label->setText(ToQt(FieldText(FieldOf(key), receiver, view)));
        label->SetRole(roleOf(key));
    };
    m_next->setText(state.nextWindow.isEmpty() ? UiText(text::kStatusUnknown) : state.nextWindow);
    ShowSky(receiver, view.now);
    show(m_satellites, "satellitesTracked");
    show(m_pdop, "pdop");
    ShowBattery(*m_battery, receiver, view);
    m_received->setText(receiver.status
                            ? ToQt(ControllerTimeOfDay(view.utc - (view.now - receiver.status->at)))
                            : UiText(text::kStatusUnknown));
    m_received->SetRole(roleOf(kHeartbeat));
}

} // namespace fieldcore
