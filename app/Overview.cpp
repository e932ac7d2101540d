#include "app/Overview.h"

#include "core/equipment/BattLevel.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/Widgets.h"
#include "ui/equipment/BatteryBar.h"
#include "ui/planning/LiveSkyView.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <initializer_list>

namespace fieldcore {

namespace {

constexpr double kLarge = 1.25; // of the text's own size
constexpr int kMargin = 12;

} // namespace

Overview::Overview(QWidget* parent)
    : QFrame(parent), m_headline(new QLabel), m_satellites(new RoleLabel(&Theme::text)),
      m_pdop(new RoleLabel(&Theme::text)), m_battery(new CTextProgressCtrl),
      m_received(new RoleLabel(&Theme::text)),
      m_nextHeading(new QLabel(UiText(text::kAppNextWindow))), m_next(new QLabel),
      m_sky(new LiveSkyView)
{
    setAccessibleName(UiText(text::kAppStatus));
    for (QLabel* const label : std::initializer_list<QLabel*>{m_headline, m_satellites, m_pdop,
                                                              m_received, m_nextHeading}) {
        label->setFont(BoldFont(font(), kLarge));
    }
    m_headline->setWordWrap(true);
    CBattLevel(nullptr).SetInit(m_battery);

    auto* const form = new QFormLayout;
    form->setHorizontalSpacing(4 * kMargin);
    form->setVerticalSpacing(kMargin);
    form->addRow(UiText(text::kAppTracked), m_satellites);
    form->addRow(QStringLiteral("PDOP"), m_pdop);
    form->addRow(UiText(text::kAppBattery), m_battery);
    form->addRow(UiText(text::kAppReceived), m_received);
    m_next->setWordWrap(true);
    QBoxLayout* const words = LayOut(
        new QVBoxLayout, {}, kMargin,
        {m_headline, form, BoxItem::Gap(2 * kMargin), m_nextHeading, m_next, BoxItem::Room()});
    LayOut(new QHBoxLayout(this), {kMargin, kMargin, kMargin, kMargin}, 2 * kMargin,
           {{words, 2}, {m_sky, 3}});
    SetWide(false);
    Show({});
}

void Overview::SetWide(bool isWide)
{
    for (QWidget* const part : std::initializer_list<QWidget*>{m_nextHeading, m_next, m_sky}) {
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
    constexpr int kHints[] = {text::kAppConnectHint,
                              text::kAppConnectingHint,
                              0, // its name
                              text::kAppLostHint,
                              text::kAppLostHint,
                              text::kAppFailedHint,
                              text::kAppRefusedHint};
    const Receiver& receiver = state.receiver;
    const StatusView& view = state.view;
    m_headline->setText(receiver.link == LinkState::Connected
                            ? ToQt(receiver.identity.Model())
                            : UiText(kHints[static_cast<std::size_t>(receiver.link)]));
    const auto show = [&](RoleLabel* label, std::string_view key) {
        label->setText(state.Words(key));
        label->SetRole(state.RoleOf(key));
    };
    m_next->setText(state.nextWindow.isEmpty() ? UiText(text::kStatusUnknown) : state.nextWindow);
    ShowSky(receiver, view.now);
    show(m_satellites, "satellitesTracked");
    show(m_pdop, "pdop");
    ShowBattery(*m_battery, receiver, view);
    m_received->setText(receiver.status
                            ? ToQt(ControllerTimeOfDay(view.utc - (view.now - receiver.status->at)))
                            : UiText(text::kStatusUnknown));
    m_received->SetRole(state.RoleOf(kHeartbeat));
}

} // namespace fieldcore
