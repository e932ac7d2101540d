#include "app/ReceiverState.h"

#include "core/equipment/StatusPoll.h"
#include "core/link/ReceiverLink.h"
#include "ui/controls/UiText.h"

#include <chrono>

namespace fieldcore {

namespace {

ReceiverState::Link LampOf(LinkState state)
{
    switch (state) {
    case LinkState::Connecting:
        return ReceiverState::Link::Connecting;
    case LinkState::Connected:
        return ReceiverState::Link::Connected;
    case LinkState::Lost:
    case LinkState::Reconnecting:
        return ReceiverState::Link::Lost;
    case LinkState::NotConnected:
        break;
    }
    return ReceiverState::Link::None;
}

} // namespace

bool IsFresh(const ReceiverState& state, const QDateTime& nowUtc)
{
    return state.link == ReceiverState::Link::Connected && state.receivedUtc.isValid() &&
           state.receivedUtc.secsTo(nowUtc) <= kStaleS;
}

QString JstText(const QDateTime& utc)
{
    constexpr int kJapanAheadS = 9 * 3600;
    return utc.toOffsetFromUtc(kJapanAheadS).toString(QStringLiteral("HH:mm:ss"));
}

QDateTime QtTime(Clock::UtcTime time)
{
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(ms.count(), Qt::UTC);
}

ReceiverState StateOf(const ReceiverLink& link, const StatusPoll& poll, const Clock& clock)
{
    ReceiverState state;
    state.link = LampOf(link.State());
    if (const auto& receiver = link.Receiver();
        receiver && state.link != ReceiverState::Link::None) {
        state.receiver = ToQt(receiver->model);
    }
    if (const auto& status = link.Status()) {
        constexpr double kNoPdop = 99.0;
        const auto age = link.StatusAge().value_or(Clock::Duration{});
        state.receivedUtc =
            QtTime(clock.Utc() - std::chrono::duration_cast<std::chrono::milliseconds>(age));
        state.batteryPercent = status->value.batteryPercent;
        const auto& battery = poll.Now().battery;
        state.batteryFailed = battery && !battery->value.percent;
        if (battery && battery->value.percent) {
            state.batterySource = ToQt(battery->value.source);
        }
        state.satellites = status->value.satellitesTracked;
        if (status->value.pdop > 0.0 && status->value.pdop < kNoPdop) {
            state.pdop = status->value.pdop;
        }
    }
    return state;
}

} // namespace fieldcore
