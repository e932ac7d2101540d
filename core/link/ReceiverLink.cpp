#include "core/link/ReceiverLink.h"

#include "core/link/Command.h"
#include "core/link/Connect.h"
#include "core/link/Questions.h"
#include "core/link/RecvInfo.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace fieldcore {

ReceiverLink::ReceiverLink(CCommand& command)
    : m_command(command), m_mutex(command.Known().mutex), m_heard(command.Known().receiver)
{
    const std::scoped_lock lock(m_mutex);
    m_heard = {};
}

int ReceiverLink::Connect(CConnect& connect)
{
    if (m_isTicking && m_command.IsBusy()) {
        return 0;
    }
    const Questions::Quiet quiet(m_command);
    if (m_isTicking || m_heard.link == LinkState::Connecting || m_command.IsBusy()) {
        return 0;
    }
    m_command.ClosePort(); // that of the connection before, which may be to another receiver
    return Adopt(connect);
}

int ReceiverLink::Adopt(CConnect& connect)
{
    const Questions::Quiet quiet(m_command);
    if (m_isTicking || m_heard.link == LinkState::Connecting) {
        return 0;
    }
    m_supported = connect.SupportedTypes();
    m_missed = 0;
    Enter(LinkState::Connecting);
    const bool connected = connect.DoModal() == CConnect::Connected && connect.CheckRecvType() == 1;
    if (!connected) {
        GiveUp(m_command);
        return 0;
    }
    {
        const std::scoped_lock lock(m_mutex);
        m_target = connect.Target().value_or(ConnectTarget());
    }
    Meet(connect.Identity());
    if (connect.Status()) {
        KeepStatus(*connect.Status());
    }
    Resume();
    return 1;
}

int ReceiverLink::Disconnect()
{
    const Questions::Quiet quiet(m_command);
    if (m_isTicking || m_heard.link == LinkState::Connecting || m_command.IsBusy()) {
        return 0;
    }
    GiveUp(m_command);
    return 1;
}

void ReceiverLink::Tick(CCommand& asking)
{
    if (asking.IsBusy() || m_isTicking.exchange(true)) {
        return;
    }
    if (m_heard.link == LinkState::Lost && m_question == LinkQuestion::None) {
        TryAgain(asking);
    } else if (m_heard.link == LinkState::Connected && asking.IsPortOpen() == 0) {
        GiveUp(asking); // a dialog was done with the receiver: no loss
    } else if (m_heard.link == LinkState::Connected && asking.GetClock().Steady() >= m_due) {
        Poll(asking);
    }
    m_isTicking = false;
}

void ReceiverLink::Poll(CCommand& asking)
{
    const Clock& clock = asking.GetClock();
    m_due = clock.Steady() + kPollInterval;
    StatusReply status;
    if (asking.RequestStatus(status) == 1) {
        m_missed = 0;
        KeepStatus({std::move(status), clock.Steady()});
        Enter(LinkState::Connected);
        return;
    }
    if (ClassOf(asking.Fault()) == FaultClass::Cancelled) {
        return; // the user has better things to do; the value grows old
    }
    ++m_missed;
    if (ClassOf(asking.Fault()) == FaultClass::Gone || m_missed >= kMostMissed) {
        Lose(asking, kFirstPause);
    } else {
        // A question that is not answered keeps the line: not as often, then.
        m_due = clock.Steady() + std::min(kPollInterval * (m_missed + 1), kLongestPause);
    }
}

void ReceiverLink::Lose(CCommand& asking, Clock::Duration pause)
{
    asking.ClosePort();
    m_wasAway = !IsPortThere();
    m_pause = pause;
    m_due = asking.GetClock().Steady() + pause;
    Enter(LinkState::Lost, m_target.IsBluetooth() ? LinkQuestion::Reconnect : LinkQuestion::None);
}

void ReceiverLink::TryAgain(CCommand& asking)
{
    const bool isThere = IsPortThere();
    const Clock::Duration now = asking.GetClock().Steady();
    if (isThere && m_wasAway) { // just plugged in: now is the time, and patience begins anew
        m_pause = kFirstPause;
        m_due = now;
    }
    m_wasAway = !isThere;
    if (!isThere || now < m_due) {
        return;
    }
    Enter(LinkState::Reconnecting);
    StatusReply status;
    SerialReply serial;
    if (OpenTarget(asking, m_target) == 1 && asking.RequestStatus(status) == 1 &&
        asking.RequestSerial(serial) == 1) {
        const Clock::Duration at = asking.GetClock().Steady();
        if (IsOther(asking, serial)) {
            Enter(LinkState::Reconnecting, LinkQuestion::OtherReceiver);
        } else {
            KeepStatus({std::move(status), at});
            Resume();
        }
        return;
    }
    if (asking.Fault() == CommandFault::Cancelled) {
        if (&asking == &m_command) {
            GiveUp(asking); // whoever cancels an attempt wants no more of them
        } else {
            Lose(asking, m_pause); // somebody wanted quiet
        }
        return;
    }
    Lose(asking, std::min<Clock::Duration>(m_pause + kPauseGrowth, kLongestPause));
}

/// @param serial  what the receiver at the other end says now
bool ReceiverLink::IsOther(CCommand& asking, const SerialReply& serial)
{
    CRecvInfo info(ReceiverIdentity{serial, std::nullopt, std::nullopt});
    if (info.Known().IsSame(m_heard.identity)) {
        const std::scoped_lock lock(m_mutex);
        m_heard.identity.serial = serial; // its firmware may be another one
        return false;
    }
    info.ReadMissing(asking);
    if (!m_heard.identity.serial) { // it did not tell before
        Meet(info.Known());
        return false;
    }
    m_other = info.Known();
    return true;
}

int ReceiverLink::AskUser(CConnect& connect)
{
    const Questions::Quiet quiet(m_command);
    if (m_isTicking || m_command.IsBusy()) {
        return 0;
    }
    return m_question == LinkQuestion::Reconnect       ? Connect(connect)
           : m_question == LinkQuestion::OtherReceiver ? MeetOther(connect)
                                                       : 0;
}

int ReceiverLink::MeetOther(CConnect& connect)
{
    Enter(LinkState::Reconnecting);
    m_command.GetHost().ShowMessage(
        FormatText(text::kOtherReceiver, m_heard.identity.Name().c_str(), m_other.Name().c_str()),
        Text(text::kOtherReceiverCaption), {BoxButtons::Ok, BoxIcon::Exclamation});
    StatusReply status;
    if (m_command.RequestStatus(status) == 0) { // it may be gone by now
        Lose(m_command, kFirstPause);
        return 0;
    }
    connect.SetSupportedTypes(m_supported);
    if (connect.CheckRecvType() == 0) {
        GiveUp(m_command); // the user has been told why
        return 0;
    }
    Meet(connect.Identity());
    KeepStatus({std::move(status), m_command.GetClock().Steady()});
    Resume();
    return 1;
}

/// The receiver at the other end is this one.
void ReceiverLink::Meet(ReceiverIdentity identity)
{
    if (!identity.IsSame(m_heard.identity)) {
        ++m_receivers;
        Forget();
    }
    const std::scoped_lock lock(m_mutex);
    m_heard.identity = std::move(identity);
}

void ReceiverLink::KeepStatus(TimedValue<StatusReply> status)
{
    const std::scoped_lock lock(m_mutex);
    m_heard.status = std::move(status);
}

/// There is a connection, with a status of now.
void ReceiverLink::Resume()
{
    m_missed = 0;
    m_due = m_command.GetClock().Steady() + (m_heard.status ? kPollInterval : Clock::Duration());
    Enter(LinkState::Connected);
}

void ReceiverLink::GiveUp(CCommand& asking)
{
    asking.ClosePort();
    Forget();
    Enter(LinkState::NotConnected);
}

/// Forgets all but who the receiver was.
void ReceiverLink::Forget()
{
    const std::scoped_lock lock(m_mutex);
    Receiver fresh;
    fresh.link = m_heard.link;
    fresh.identity = std::move(m_heard.identity);
    m_heard = std::move(fresh);
}

/// A COM number may mean another device tomorrow, so only a path can be looked for.
bool ReceiverLink::IsPortThere() const
{
    std::error_code ignored;
    return m_target.devicePath.empty() || m_target.devicePath.starts_with("sim:") || // made anew
           std::filesystem::exists(m_target.devicePath, ignored);
}

void ReceiverLink::Enter(LinkState state, LinkQuestion question)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_connections += state == LinkState::Connected && m_heard.link != state ? 1 : 0;
        m_heard.link = state;
        m_question = question;
    }
    if (m_observer) {
        m_observer();
    }
}

// Who looks.

void ReceiverLink::Put(Receiver heard)
{
    const std::scoped_lock lock(m_mutex);
    heard.link = m_heard.link;
    heard.status = std::move(m_heard.status);
    heard.inView = std::move(m_heard.inView);
    heard.tilt = m_heard.tilt;
    heard.calibration = m_heard.calibration;
    m_heard = std::move(heard);
}

} // namespace fieldcore
