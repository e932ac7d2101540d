#include "core/link/CommandChannel.h"

#include "core/platform/Cp932.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace fieldcore {

namespace {

using std::chrono::milliseconds;

constexpr int kAttempts = 2;
constexpr milliseconds kRetryPause{500};
constexpr milliseconds kLateAnswerPause{50};
constexpr std::size_t kLongestLine = 256; // bytes, without the CR LF that is added
constexpr std::string_view kLineEnd = "\r\n";

} // namespace

void CommandChannel::Build(std::uint8_t type, std::span<const std::uint8_t> data)
{
    BeginPacket(type, static_cast<std::uint32_t>(data.size()));
    for (const std::uint8_t byte : data) {
        PutByte(byte);
    }
    EndPacket();
}

void CommandChannel::Build(std::uint8_t type, std::initializer_list<std::uint8_t> data)
{
    Build(type, std::span(data.begin(), data.size()));
}

int CommandChannel::Command(std::uint8_t type, std::initializer_list<std::uint8_t> data)
{
    Build(type, data);
    return Exchange(Answer::Ack);
}

int CommandChannel::Exchange(Answer expected)
{
    if (!MayStart()) {
        return 0;
    }
    LastResult = 0;
    if (!KeepRequest()) {
        return 0;
    }
    const BusyGuard busy(*this);
    return ExchangeKept(expected);
}

int CommandChannel::ExchangeKept(Answer expected)
{
    LastResult = 0;
    bool isFinal = !ForgetLateAnswers();
    for (int attempt = 1; attempt <= kAttempts && !isFinal; ++attempt) {
        isFinal = Attempt(expected, attempt == kAttempts);
    }
    if (Fault() == CommandFault::TimedOut) {
        m_suspectExchanges = 2;
    }
    return LastResult;
}

/// The answer to a request that was given up may still come, and would be taken for the answer
/// to the next one, whose own answer for that of the one after it, and so on. So the next request
/// starts with an empty line, and the one after it waits a moment for the surplus answer.
/// @return false if the host asked for an end
bool CommandChannel::ForgetLateAnswers()
{
    if (m_suspectExchanges == 0) {
        return true;
    }
    --m_suspectExchanges;
    const bool goOn = m_suspectExchanges > 0 || Pause(kLateAnswerPause);
    PurgePort();
    return goOn;
}

/// @return whether the exchange ends with this attempt
bool CommandChannel::Attempt(Answer expected, bool isLast)
{
    if (!WriteRequest()) {
        const bool isOver = Link().IsLost() || Fault() == CommandFault::Cancelled;
        return isOver; // otherwise tried again at once
    }
    return Judge(expected, WaitForAnswer().state, isLast);
}

int CommandChannel::BreakAndCollect(milliseconds duration)
{
    StartRequest(0);
    Link().ResetFrameReady();
    if (!AwaitRoom()) {
        return 0;
    }
    // As SerialLink::SendBreak(), but the host breathes meanwhile.
    constexpr std::array<std::uint8_t, 1> kNull{0x00};
    if (Link().Write(kNull) == 0 || Link().SetBreak() == 0) {
        return FailOnWrite();
    }
    const bool goOn = Pause(duration);
    if (Link().ClearBreak() == 0) {
        return FailOnWrite();
    }
    if (!goOn) {
        return Fail(CommandFault::Cancelled);
    }
    switch (WaitForAnswer().state) {
    case ExchangeState::Frame:
        return VerifyChecksum() == 1 ? 1 : Fail(CommandFault::BadChecksum);
    case ExchangeState::Ack:
    case ExchangeState::Nak:
        return Fail(CommandFault::WrongAnswer);
    case ExchangeState::Malformed:
        return Fail(CommandFault::Malformed);
    case ExchangeState::Nothing:
    case ExchangeState::TimedOut:
        break;
    }
    return 0; // the wait has said why
}

/// @return whether the exchange ends here
bool CommandChannel::Judge(Answer expected, ExchangeState state, bool isLast)
{
    switch (state) {
    case ExchangeState::Frame:
        if (expected == Answer::Ack) {
            Fail(CommandFault::WrongAnswer);
            return true;
        }
        if (VerifyChecksum() == 0) {
            Fail(CommandFault::BadChecksum);
            return false;
        }
        Succeed();
        return true;
    case ExchangeState::Ack:
        if (expected == Answer::Ack) {
            Succeed();
        } else {
            Fail(CommandFault::WrongAnswer);
        }
        return true;
    case ExchangeState::Nak: // an answer: asking again would get the same one
        Fail(CommandFault::Refused);
        return true;
    case ExchangeState::Malformed:
        Fail(CommandFault::Malformed);
        return expected == Answer::Reply && !PauseAndPurge(isLast);
    case ExchangeState::Nothing:
    case ExchangeState::TimedOut:
        break;
    }
    const bool lostOrCancelled = Fault() != CommandFault::TimedOut;
    return lostOrCancelled || !PauseAndPurge(isLast);
}

/// @return whether the exchange goes on
bool CommandChannel::PauseAndPurge(bool isLast)
{
    const bool goOn = isLast || Pause(kRetryPause);
    PurgePort();
    return goOn;
}

void CommandChannel::LetLineSettle()
{
    const Failed before = LastFailed();
    if (before.fault != CommandFault::LinkLost && before.fault != CommandFault::Cancelled) {
        Pause(kRetryPause);
    }
    PurgePort();
    Restore(before);
}

void CommandChannel::AbortTransmission()
{
    Failed before = LastFailed();
    if (IsPortOpen() == 1 && before.fault != CommandFault::LinkLost) {
        Build(0x5A, {0, 0, 0, 0, 0, 0, 0, 0, 0});
        KeepRequest();
        const BusyGuard busy(*this);
        if (!WriteRequest() || !AwaitQuiet()) {
            m_suspectExchanges = 2;
        }
        PurgePort();
    }
    if (Fault() == CommandFault::LinkLost) {
        before.fault = CommandFault::LinkLost;
    }
    Restore(before);
}

/// Throws away what comes until the receiver acknowledges the abort, which it does behind all that
/// it had sent before.
/// @return whether it did
bool CommandChannel::AwaitQuiet()
{
    constexpr int kMostStale = 512; // that a receiver which does not stop can make us look at
    const Clock::Duration end = GetClock().Steady() + 2 * Link().GetReplyTimeout();
    for (int stale = 0; stale < kMostStale && GetClock().Steady() < end; ++stale) {
        switch (WaitForAnswer().state) {
        case ExchangeState::Ack:
        case ExchangeState::Nak:
            return true;
        case ExchangeState::Malformed:
            PurgePort(); // in the midst of a frame: every few bytes of it would be reported
            break;
        case ExchangeState::Frame:
            break;
        case ExchangeState::Nothing:
        case ExchangeState::TimedOut:
            return false;
        }
    }
    return false;
}

int CommandChannel::Rest(milliseconds duration)
{
    if (IsBusy()) {
        return Fail(CommandFault::Busy);
    }
    const BusyGuard busy(*this);
    return Pause(duration) ? 1 : 0;
}

int CommandChannel::SendAndCollect()
{
    if (!MayStart() || !KeepRequest()) {
        return 0;
    }
    const BusyGuard busy(*this);
    if (!WriteRequest()) {
        return 0;
    }
    WaitForAnswer();
    return 1;
}

int CommandChannel::SendLine(std::wstring_view text)
{
    if (!MayStart()) {
        return 0;
    }
    StartRequest(0);
    if (Link().GetFraming() != SerialLink::Framing::Lines) {
        return Fail(CommandFault::WrongAnswer);
    }
    std::string line = ToCp932(text);
    line.resize(std::min(line.size(), kLongestLine));
    if (!std::string_view(line).ends_with(kLineEnd)) {
        line += kLineEnd;
    }
    Link().ResetFrameReady();
    if (SendText(std::string_view(line)) == 0) {
        return 0;
    }
    const BusyGuard busy(*this);
    const Delivery answer = WaitForAnswer();
    if (answer.state != ExchangeState::Frame) {
        return answer.state == ExchangeState::Malformed ? Fail(CommandFault::Malformed) : 0;
    }
    SetDataLength(static_cast<std::uint32_t>(answer.length));
    return 1;
}

int CommandChannel::SendText(std::wstring_view text)
{
    return SendText(std::string_view(ToCp932(text)));
}

int CommandChannel::SendText(std::string_view bytes)
{
    if (!MayStart()) {
        return 0;
    }
    const std::vector<std::uint8_t> raw(bytes.begin(), bytes.end());
    return Link().Write(raw) == raw.size() ? 1 : FailOnWrite();
}

void CommandChannel::Succeed()
{
    LastResult = 1;
    Fail(CommandFault::None); // of an attempt before, or of a request while this one ran
}

} // namespace fieldcore
