#include "core/link/ReceiverLink.h"

#include "core/link/Command.h"
#include "core/link/Connect.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace fieldcore {

const wchar_t* LinkStateText(LinkState state)
{
    switch (state) {
    case LinkState::NotConnected:
        return Text(text::kLinkNotConnected);
    case LinkState::Connecting:
        return Text(text::kLinkConnecting);
    case LinkState::Connected:
        return Text(text::kLinkConnected);
    case LinkState::Lost:
        return Text(text::kLinkLost);
    case LinkState::Reconnecting:
        return Text(text::kLinkReconnecting);
    }
    return L"";
}

std::wstring AgeText(std::optional<Clock::Duration> age)
{
    if (!age) {
        return Text(text::kAgeUnknown);
    }
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(*age);
    if (seconds < std::chrono::minutes(2)) {
        return FormatText(text::kAgeSeconds, static_cast<int>(seconds.count()));
    }
    const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(seconds);
    return FormatText(text::kAgeMinutes, static_cast<int>(minutes.count()));
}

namespace {

/// Asks the receiver who it is. @return nothing if it does not tell
std::optional<LinkedReceiver> AskIdentity(CCommand& command)
{
    SerialReply serial;
    OptionsReply options;
    if (command.RequestSerial(serial) == 0 || command.RequestOptions(options) == 0) {
        return std::nullopt;
    }
    return LinkedReceiver{ReceiverModelName(TypeNumberOfCode(options.typeCode, options.modelWord)),
                          serial.receiverType, serial.longSerial};
}

} // namespace

std::wstring LinkedReceiver::Name() const
{
    const std::size_t length = serial.find_last_not_of(L' ') + 1; // it is filled with blanks
    const std::wstring number = serial.substr(0, length);
    return FormatText(text::kReceiverName, model.c_str(),
                      number.empty() ? Text(text::kReceiverNoSerial) : number.c_str());
}

int ReceiverLink::Connect(CConnect& connect, const ConnectTarget& target)
{
    if (m_isTicking || m_state == LinkState::Connecting || m_command.IsBusy()) {
        return 0;
    }
    m_command.ClosePort(); // that of the connection before, which may be to another receiver
    return Adopt(connect, target);
}

int ReceiverLink::Adopt(CConnect& connect, const ConnectTarget& target)
{
    if (m_isTicking || m_state == LinkState::Connecting) {
        return 0;
    }
    const Hold hold(*this);
    m_target = target;
    m_supported = connect.SupportedTypes();
    m_status.reset();
    m_receiver.reset();
    m_missed = 0;
    m_question = LinkQuestion::None;
    Enter(LinkState::Connecting);
    const bool connected = connect.DoModal() == CConnect::Connected && connect.CheckRecvType() == 1;
    if (connected) {
        m_receiver = AskIdentity(m_command);
    } else {
        m_command.ClosePort();
    }
    m_due = m_command.GetClock().Steady();
    Enter(connected ? LinkState::Connected : LinkState::NotConnected);
    return connected ? 1 : 0;
}

int ReceiverLink::Disconnect()
{
    if (m_isTicking || m_state == LinkState::Connecting || m_command.IsBusy()) {
        return 0;
    }
    GiveUp();
    return 1;
}

void ReceiverLink::Tick()
{
    if (m_isTicking || m_holds > 0 || m_command.IsBusy()) {
        return;
    }
    m_isTicking = true;
    switch (m_state) {
    case LinkState::NotConnected:
    case LinkState::Connecting:
    case LinkState::Reconnecting:
        break;
    case LinkState::Connected:
        if (m_command.IsPortOpen() == 0) { // a dialog was done with the receiver: no loss
            GiveUp();
        } else if (m_command.GetClock().Steady() >= m_due) {
            Poll();
        }
        break;
    case LinkState::Lost:
        if (m_question == LinkQuestion::None) {
            TryAgain();
        }
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
        m_status = {std::move(status), clock.Steady()};
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
    m_question = m_target.IsBluetooth() ? LinkQuestion::Reconnect : LinkQuestion::None;
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
    SerialReply serial;
    if (Reopen(serial) == 1) {
        if (IsOther(serial)) {
            m_question = LinkQuestion::OtherReceiver;
            Enter(LinkState::Reconnecting);
        } else {
            Resume();
        }
        return;
    }
    if (m_command.Fault() == CommandFault::Cancelled) {
        GiveUp(); // whoever cancels an attempt wants no more of them
        return;
    }
    Lose(std::min<Clock::Duration>(m_pause + kPauseGrowth, kLongestPause));
}

int ReceiverLink::Reopen(SerialReply& serial)
{
    if (OpenTarget(m_command, m_target) == 0) {
        return 0;
    }
    ShortenTimeout();
    StatusReply status;
    const bool answered =
        m_command.RequestStatus(status) == 1 && m_command.RequestSerial(serial) == 1;
    m_command.SetReplyTimeout(m_target.settings.replyTimeout);
    if (!answered) {
        return 0;
    }
    m_status = {std::move(status), m_command.GetClock().Steady()};
    return 1;
}

/// @param serial  what the receiver at the other end says now
bool ReceiverLink::IsOther(const SerialReply& serial)
{
    if (!m_receiver) {
        m_receiver = AskIdentity(m_command);
        return false;
    }
    if (m_receiver->serial == serial.longSerial && m_receiver->type == serial.receiverType) {
        return false;
    }
    m_other = AskIdentity(m_command).value_or(
        LinkedReceiver{serial.receiverType, serial.receiverType, serial.longSerial});
    return true;
}

int ReceiverLink::AskUser(CConnect& connect)
{
    if (m_isTicking || m_holds > 0 || m_command.IsBusy()) {
        return 0;
    }
    switch (m_question) {
    case LinkQuestion::None:
        break;
    case LinkQuestion::Reconnect:
        return Connect(connect, m_target);
    case LinkQuestion::OtherReceiver:
        return MeetOther(connect);
    }
    return 0;
}

int ReceiverLink::MeetOther(CConnect& connect)
{
    const Hold hold(*this);
    m_question = LinkQuestion::None;
    m_command.GetHost().ShowMessage(
        FormatText(text::kOtherReceiver, m_receiver->Name().c_str(), m_other.Name().c_str()),
        Text(text::kOtherReceiverCaption), {BoxButtons::Ok, BoxIcon::Exclamation});
    StatusReply status;
    if (m_command.RequestStatus(status) == 0) { // it may be gone by now
        Lose(kFirstPause);
        return 0;
    }
    connect.SetSupportedTypes(m_supported);
    if (connect.CheckRecvType() == 0) {
        GiveUp(); // the user has been told why
        return 0;
    }
    m_receiver = m_other;
    Resume();
    return 1;
}

void ReceiverLink::Resume()
{
    m_missed = 0;
    m_due = m_command.GetClock().Steady() + kPollInterval;
    Enter(LinkState::Connected);
}

void ReceiverLink::GiveUp()
{
    m_command.ClosePort();
    m_status.reset();
    m_question = LinkQuestion::None;
    Enter(LinkState::NotConnected);
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

std::optional<Clock::Duration> ReceiverLink::StatusAge() const
{
    return m_status ? std::optional(m_command.GetClock().Steady() - m_status->at) : std::nullopt;
}

bool ReceiverLink::IsStatusStale() const
{
    const std::optional<Clock::Duration> age = StatusAge();
    return !age || *age >= kStaleAge || m_state != LinkState::Connected;
}

std::optional<Clock::Duration> ReceiverLink::UntilNextAttempt() const
{
    if (m_state != LinkState::Lost || m_question != LinkQuestion::None) {
        return std::nullopt;
    }
    return m_wasAway ? Clock::Duration::zero()
                     : std::max(m_due - m_command.GetClock().Steady(), Clock::Duration::zero());
}

void ReceiverLink::Enter(LinkState state)
{
    m_connections += state == LinkState::Connected && m_state != state ? 1 : 0;
    m_state = state;
    if (m_observer) {
        m_observer();
    }
}

} // namespace fieldcore
