#include "core/link/ReceiverLink.h"

#include "core/link/Command.h"
#include "core/link/Connect.h"
#include "core/link/RecvInfo.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace fieldcore {

int ReceiverLink::Connect(CConnect& connect, const ConnectTarget& target)
{
    if (m_isTicking || m_heard.link == LinkState::Connecting || m_command.IsBusy()) {
        return 0;
    }
    m_command.ClosePort(); // that of the connection before, which may be to another receiver
    return Adopt(connect, target);
}

int ReceiverLink::Adopt(CConnect& connect, const ConnectTarget& target)
{
    if (m_isTicking || m_heard.link == LinkState::Connecting) {
        return 0;
    }
    const Hold hold(*this);
    m_target = target;
    m_supported = connect.SupportedTypes();
    m_missed = 0;
    Enter(LinkState::Connecting);
    const bool connected = connect.DoModal() == CConnect::Connected && connect.CheckRecvType() == 1;
    if (connected) {
        Meet(connect.Identity());
    } else {
        m_command.ClosePort();
        Forget();
    }
    m_due = m_command.GetClock().Steady();
    Enter(connected ? LinkState::Connected : LinkState::NotConnected);
    return connected ? 1 : 0;
}

int ReceiverLink::Disconnect()
{
    if (m_isTicking || m_heard.link == LinkState::Connecting || m_command.IsBusy()) {
        return 0;
    }
    m_command.ClosePort();
    Forget();
    Enter(LinkState::NotConnected);
    return 1;
}

void ReceiverLink::Tick()
{
    if (m_isTicking || m_holds > 0 || m_command.IsBusy()) {
        return;
    }
    m_isTicking = true;
    switch (m_heard.link) {
    case LinkState::NotConnected:
    case LinkState::Connecting:
    case LinkState::Reconnecting:
        break;
    case LinkState::Connected:
        if (m_command.IsPortOpen() == 0) { // a dialog was done with the receiver: no loss
            Forget();
            Enter(LinkState::NotConnected);
        } else if (m_command.GetClock().Steady() >= m_due) {
            Poll();
        }
        break;
    case LinkState::Lost:
        TryAgain();
        break;
    }
    m_isTicking = false;
}

void ReceiverLink::Poll()
{
    const Clock& clock = m_command.GetClock();
    m_due = clock.Steady() + kPollInterval;
    ShortenTimeout();
    StatusReply status;
    const int answered = m_command.RequestStatus(status);
    m_command.SetReplyTimeout(m_target.settings.replyTimeout);
    if (answered == 1) {
        m_missed = 0;
        m_heard.status = {std::move(status), clock.Steady()};
        Enter(LinkState::Connected);
        return;
    }
    if (m_command.Fault() == CommandFault::Cancelled) {
        return; // the user has better things to do; the value grows old
    }
    ++m_missed;
    // Right after a hang-up it may be the write that fails first.
    const bool isGone = m_command.Fault() == CommandFault::LinkLost ||
                        m_command.Fault() == CommandFault::WriteFailed;
    if (isGone || m_missed >= kMostMissed) {
        Lose(kFirstPause);
    } else {
        // A question that is not answered makes the program wait: not as often, then.
        m_due = clock.Steady() + std::min(kPollInterval * (m_missed + 1), kLongestPause);
    }
}

void ReceiverLink::Lose(Clock::Duration pause)
{
    m_command.ClosePort();
    m_wasAway = !IsPortThere();
    m_pause = pause;
    m_due = m_command.GetClock().Steady() + pause;
    Enter(LinkState::Lost);
}

void ReceiverLink::TryAgain()
{
    if (!IsPortThere()) {
        m_wasAway = true;
        return;
    }
    const Clock& clock = m_command.GetClock();
    if (m_wasAway) { // just plugged in: now is the time, and patience begins anew
        m_wasAway = false;
        m_pause = kFirstPause;
        m_due = clock.Steady();
    }
    if (clock.Steady() < m_due) {
        return;
    }
    Enter(LinkState::Reconnecting);
    StatusReply status;
    SerialReply serial;
    if (Reopen(status, serial) == 1) {
        const Clock::Duration at = clock.Steady();
        if (CheckIdentity(serial) == 0) {
            m_command.ClosePort();
            Forget();
            Enter(LinkState::NotConnected); // the user has been told why
            return;
        }
        m_heard.status = {std::move(status), at};
        m_missed = 0;
        m_due = clock.Steady() + kPollInterval;
        Enter(LinkState::Connected);
        return;
    }
    if (m_command.Fault() == CommandFault::Cancelled) {
        m_command.ClosePort();
        Enter(LinkState::NotConnected); // whoever cancels an attempt wants no more of them
        return;
    }
    Lose(std::min<Clock::Duration>(m_pause + kPauseGrowth, kLongestPause));
}

int ReceiverLink::Reopen(StatusReply& status, SerialReply& serial)
{
    if (OpenTarget(m_command, m_target) == 0) {
        return 0;
    }
    ShortenTimeout();
    const bool answered =
        m_command.RequestStatus(status) == 1 && m_command.RequestSerial(serial) == 1;
    m_command.SetReplyTimeout(m_target.settings.replyTimeout);
    return answered ? 1 : 0;
}

/// @param serial  what the receiver at the other end says now
/// @return 1 if it is the one of before, or another one that is acceptable
int ReceiverLink::CheckIdentity(const SerialReply& serial)
{
    CRecvInfo info(ReceiverIdentity{serial, std::nullopt, std::nullopt});
    if (info.Known().IsSame(m_heard.identity)) {
        m_heard.identity.serial = serial; // its firmware may be another one
        return 1;
    }
    info.ReadMissing(m_command);
    if (!m_heard.identity.serial) { // it did not tell before
        Meet(info.Known());
        return 1;
    }
    const std::wstring before = m_heard.identity.Name();
    const std::wstring now = info.Known().Name();
    m_command.GetHost().ShowMessage(FormatText(text::kOtherReceiver, before.c_str(), now.c_str()),
                                    Text(text::kOtherReceiverCaption),
                                    {BoxButtons::Ok, BoxIcon::Exclamation});
    CConnect check(m_command, 0, m_target);
    check.SetSupportedTypes(m_supported);
    if (check.CheckRecvType() == 0) {
        return 0;
    }
    Meet(check.Identity());
    return 1;
}

/// The receiver at the other end is this one.
void ReceiverLink::Meet(ReceiverIdentity identity)
{
    if (!identity.IsSame(m_heard.identity)) {
        ++m_receivers;
        Forget();
    }
    m_heard.identity = std::move(identity);
}

/// Forgets all but who the receiver was.
void ReceiverLink::Forget()
{
    Receiver fresh;
    fresh.link = m_heard.link;
    fresh.identity = std::move(m_heard.identity);
    m_heard = std::move(fresh);
}

void ReceiverLink::ShortenTimeout()
{
    m_command.SetReplyTimeout(std::min(m_target.settings.replyTimeout, kReplyTimeout));
}

/// A COM number may mean another device tomorrow, so only a path can be looked for.
bool ReceiverLink::IsPortThere() const
{
    std::error_code ignored;
    return m_target.devicePath.empty() || std::filesystem::exists(m_target.devicePath, ignored);
}

std::optional<Clock::Duration> ReceiverLink::UntilNextAttempt() const
{
    if (m_heard.link != LinkState::Lost) {
        return std::nullopt;
    }
    return m_wasAway ? Clock::Duration::zero()
                     : std::max(m_due - m_command.GetClock().Steady(), Clock::Duration::zero());
}

void ReceiverLink::Enter(LinkState state)
{
    m_connections += state == LinkState::Connected && m_heard.link != state ? 1 : 0;
    m_heard.link = state;
    if (m_observer) {
        m_observer();
    }
}

} // namespace fieldcore
