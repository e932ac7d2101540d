#include "core/link/ChannelTurn.h"

#include <algorithm>

namespace fieldcore {

namespace {

using std::chrono::milliseconds;

constexpr int kAttempts = 2;
constexpr milliseconds kRetryPause{500};
/// What an exchange may take beside two time-outs and the pause between them.
constexpr milliseconds kMargin{50};
constexpr milliseconds kBreathInterval{50};
/// An answer is taken to last at least so long where the line is in doubt.
constexpr milliseconds kShortestAnswer{50};
// A gap on a line that takes time: an answer that follows another without one is not for us. At
// high rates a few characters are less than the pauses that drivers make between them, and their
// bytes come in bursts; that an answer was not there at once tells such a line from none.
constexpr std::chrono::microseconds kNoTime{500};
constexpr int kQuietCharacters = 4;
constexpr milliseconds kShortestGap{5};
constexpr milliseconds kGapBeforeChange{20};
constexpr std::uint8_t kAbort = 0x5A;

} // namespace

// Whose turn it is.

ChannelTurn::ChannelTurn(Channel& channel, Host& host, std::span<std::uint8_t> answer,
                         milliseconds timeout)
    : m_channel(channel), m_host(host), m_answer(answer), m_timeout(timeout)
{
    m_isMine = Acquire();
    if (m_isMine && m_channel.IsOpen() && m_timeout == milliseconds::zero()) {
        m_timeout = Link().GetReplyTimeout();
    }
}

ChannelTurn::~ChannelTurn()
{
    if (!m_isMine) {
        return;
    }
    if (m_handsOver && m_channel.IsOpen()) {
        Link().SetHandOver(false);
    }
    const std::scoped_lock lock(m_channel.m_turns);
    m_channel.m_owner = {};
    m_channel.TellNext();
}

bool ChannelTurn::Acquire()
{
    std::unique_lock lock(m_channel.m_turns);
    if (m_channel.m_owner == std::thread::id() && m_channel.m_waiting.empty()) {
        m_channel.m_owner = std::this_thread::get_id();
        return true;
    }
    if (m_channel.IsMineLocked()) {
        return Fail(CommandFault::Busy);
    }
    Channel::Waiter self{std::this_thread::get_id(), {}};
    m_channel.m_waiting.push_back(&self);
    while (m_channel.m_owner != std::thread::id() || m_channel.m_waiting.front() != &self) {
        lock.unlock();
        const bool goesOn =
            m_channel.GetClock().Wait(self.isNext, kBreathInterval) || m_host.Breathe();
        lock.lock();
        if (!goesOn) {
            std::erase(m_channel.m_waiting, &self);
            m_channel.TellNext(); // this one may have been told
            return Fail(CommandFault::Cancelled);
        }
    }
    m_channel.m_waiting.erase(m_channel.m_waiting.begin());
    m_channel.m_owner = self.thread;
    return true;
}

bool ChannelTurn::MayAsk()
{
    return m_isMine && (m_channel.IsOpen() || Fail(CommandFault::NotOpen));
}

int ChannelTurn::Open(const std::string& devicePath, const PortSettings& settings, int number)
{
    if (m_isMine && (m_channel.IsOpen() || m_channel.Open(devicePath, settings, number) == 0)) {
        Fail(CommandFault::OpenFailed);
    }
    return m_fault == CommandFault::None ? 1 : 0;
}

// One request.

int ChannelTurn::Ask(std::span<const std::uint8_t> request, Answer expected)
{
    if (request.empty() || request.size() > m_request.size()) {
        Fail(CommandFault::TooLong);
        return 0;
    }
    std::copy(request.begin(), request.end(), m_request.begin());
    const auto kept = std::span<const std::uint8_t>(m_request).first(request.size());
    const bool changes = expected == Answer::Ack && kept[2] != kAbort;
    const Clock::Duration most = 2 * m_timeout + kRetryPause + kMargin;
    m_deadline = Now() + most;
    if (!AwaitQuiet(changes)) {
        return 0;
    }
    if (changes) { // what it waited for was not its own
        m_deadline = Now() + most;
    }
    if (expected == Answer::Anything) {
        const bool written = Write(kept, LineUnit::Frame);
        if (written) {
            Next();
        }
        m_deadline = {};
        return written ? 1 : 0;
    }
    bool isFinal = false;
    for (int attempt = 1; attempt <= kAttempts && !isFinal; ++attempt) {
        isFinal = Write(kept, LineUnit::Frame)
                      ? Judge(expected, attempt == kAttempts)
                      : m_fault != CommandFault::WriteFailed; // then it is tried again at once
    }
    m_deadline = {};
    return m_fault == CommandFault::None ? 1 : 0;
}

/// Waits for the answer. @return whether the request ends with it
bool ChannelTurn::Judge(Answer expected, bool isLast)
{
    const ExchangeState state = Next().state;
    if (m_fault != CommandFault::None) { // nothing came
        return m_fault != CommandFault::TimedOut || !PauseAndPurge(isLast);
    }
    if (state == ExchangeState::Nak) { // an answer: asking again would get the same one
        Fail(CommandFault::Refused);
        return true;
    }
    if (state == ExchangeState::Malformed) {
        NoteOdd();
        Fail(CommandFault::Malformed);
        return expected == Answer::Reply && !PauseAndPurge(isLast);
    }
    const bool isDue = (state == ExchangeState::Ack) == (expected == Answer::Ack);
    if (isDue && (state == ExchangeState::Ack || FrameReader(m_answer).IsIntact())) {
        return true;
    }
    NoteOdd();
    Fail(isDue ? CommandFault::BadChecksum : CommandFault::WrongAnswer);
    return !isDue;
}

/// @return whether the request goes on
bool ChannelTurn::PauseAndPurge(bool isLast)
{
    const bool goOn = isLast || Pause(kRetryPause);
    Purge();
    return goOn;
}

bool ChannelTurn::Send(std::span<const std::uint8_t> bytes, LineUnit unit, bool changes)
{
    return AwaitQuiet(changes) && Write(bytes, unit);
}

bool ChannelTurn::SendBreak(milliseconds duration)
{
    constexpr std::array<std::uint8_t, 1> kNull{0x00};
    if (!Send(kNull, LineUnit::Break)) {
        return false;
    }
    if (Link().SetBreak() == 0) {
        return FailOnWrite();
    }
    const bool goOn = Pause(duration);
    if (Link().ClearBreak() == 0) {
        return FailOnWrite();
    }
    return goOn;
}

bool ChannelTurn::Write(std::span<const std::uint8_t> bytes, LineUnit unit)
{
    Link().ResetFrameReady();
    const SerialLink::WaitOutcome outcome = Link().Write(bytes, unit, m_host);
    if (outcome != SerialLink::WaitOutcome::Cancelled) {
        CountSent();
    }
    return outcome == SerialLink::WaitOutcome::TimedOut ? FailOnWrite() : Check(outcome);
}

Delivery ChannelTurn::Next()
{
    const Clock::Duration timeout = m_timeout;
    // There is a deadline only while the answer to what was sent just now is waited for.
    const Clock::Duration limit =
        m_deadline == Clock::Duration::zero()
            ? timeout
            : std::clamp(m_deadline - m_channel.m_doubt.sentAt, Clock::Duration::zero(), timeout);
    const SerialLink::WaitOutcome outcome = Link().WaitDelivery(m_host, limit);
    Arrivals arrivals;
    m_last = Link().TakeDelivery(m_answer, &arrivals);
    CountArrived(arrivals);
    if (Check(outcome)) {
        Succeed();
    } else {
        m_last = {ExchangeState::TimedOut, 0};
    }
    return m_last;
}

bool ChannelTurn::NextFrame()
{
    switch (Next().state) {
    case ExchangeState::Frame:
        return true;
    case ExchangeState::Ack:
    case ExchangeState::Nak:
        return Fail(CommandFault::WrongAnswer);
    case ExchangeState::Malformed:
        return Fail(CommandFault::Malformed);
    case ExchangeState::Nothing:
    case ExchangeState::TimedOut:
        break; // the wait has said why
    }
    return false;
}

void ChannelTurn::TakeFramesInTurn()
{
    m_handsOver = true;
    Link().SetHandOver(true);
}

// Answers that come too late.

void ChannelTurn::CountSent()
{
    Channel::Doubt& doubt = m_channel.m_doubt;
    ++doubt.due;
    doubt.sentAt = Now();
    doubt.dueUntil = doubt.sentAt + 2 * m_timeout + kRetryPause;
}

void ChannelTurn::CountArrived(const Arrivals& arrivals)
{
    Channel::Doubt& doubt = m_channel.m_doubt;
    const auto count = static_cast<int>(arrivals.deliveries - doubt.deliveries);
    doubt.deliveries = arrivals.deliveries;
    if (count == 0) {
        return;
    }
    if (doubt.due == 1) {
        // It may have come before the time of the request was taken.
        doubt.longest =
            std::max({doubt.longest, arrivals.lastByteAt - doubt.sentAt, Clock::Duration::zero()});
    }
    if (m_handsOver) { // one request, many frames
        doubt.due = 0;
        return;
    }
    if (count > doubt.due) {
        NoteOdd();
    }
    doubt.due = std::max(doubt.due - count, 0);
}

/// Waits until the line is quiet enough for the next request, and throws away what comes.
/// @return false if the host asked for an end, or if the request @p changes the receiver and the
///         line does not become quiet
bool ChannelTurn::AwaitQuiet(bool changes)
{
    Channel::Doubt& doubt = m_channel.m_doubt;
    const Clock::Duration latest =
        Now() + (changes ? 2 * m_timeout + 2 * kRetryPause : Clock::Duration(m_timeout));
    bool hasDropped = false;
    for (;;) {
        const Arrivals arrivals = Link().LookAtArrivals();
        CountArrived(arrivals);
        if (arrivals.isWaiting) {
            hasDropped = true;
            if (doubt.due == 0) {
                NoteOdd();
            }
        }
        const Clock::Duration now = Now();
        if (now >= doubt.dueUntil) {
            doubt.due = 0;
        }
        const Clock::Duration until = QuietUntil(arrivals, changes);
        if (now >= until || (now >= latest && !changes)) {
            break;
        }
        if (now >= latest) { // its acknowledgement could not be told from the rest
            return Fail(CommandFault::Malformed);
        }
        const auto outcome = Link().WaitDelivery(m_host, std::min(until, latest) - now);
        if (outcome == SerialLink::WaitOutcome::TimedOut) {
            static_cast<void>(Link().TakeErrorCode()); // nothing was to come
        } else if (Check(outcome)) {
            Link().TakeDelivery({});
            hasDropped = true;
        } else {
            return false;
        }
    }
    m_channel.m_isOdd = false;
    if (hasDropped) {
        Purge();
    }
    return true;
}

/// When the line will have been quiet for long enough if nothing more comes.
Clock::Duration ChannelTurn::QuietUntil(const Arrivals& arrivals, bool changes) const
{
    const Channel::Doubt& doubt = m_channel.m_doubt;
    Clock::Duration until = arrivals.lastByteAt;
    const bool takesTime = arrivals.characterTime > Clock::Duration::zero() ||
                           arrivals.lastByteAt - doubt.sentAt > kNoTime;
    if (until > Clock::Duration::zero() && takesTime) { // else none has come yet, or at once
        until += std::max<Clock::Duration>(changes ? kGapBeforeChange : kShortestGap,
                                           kQuietCharacters * arrivals.characterTime);
    }
    if (doubt.due > 0 || m_channel.m_isOdd) {
        const Clock::Duration answer =
            doubt.longest < Clock::Duration::zero()
                ? Clock::Duration(m_timeout)
                : std::max<Clock::Duration>(doubt.longest, kShortestAnswer);
        until = std::max(until, std::max(arrivals.lastByteAt, doubt.sentAt) + answer);
    }
    return changes && doubt.due > 0 ? std::max(until, doubt.dueUntil) : until;
}

void ChannelTurn::Abort()
{
    const CommandFault before = m_fault;
    if (m_channel.IsOpen() && before != CommandFault::LinkLost) {
        constexpr std::array<std::uint8_t, 15> kFrame{0x02, 0x00, kAbort, 9, 0, 0,    0,   0,
                                                      0,    0,    0,      0, 0, 0x63, 0x03};
        const bool isQuiet = Write(kFrame, LineUnit::Frame) && AwaitAbort();
        if (!isQuiet) {
            NoteOdd();
        }
        Purge();
    }
    if (m_fault != CommandFault::LinkLost) {
        m_fault = before;
    }
}

/// Throws away what comes until the receiver acknowledges the abort, which it does behind all that
/// it had sent before.
/// @return whether it did
bool ChannelTurn::AwaitAbort()
{
    constexpr int kMostStale = 512; // that a receiver which does not stop can make us look at
    const Clock::Duration end = Now() + 2 * m_timeout;
    for (int stale = 0; stale < kMostStale && Now() < end; ++stale) {
        switch (Next().state) {
        case ExchangeState::Ack:
        case ExchangeState::Nak:
            return true;
        case ExchangeState::Malformed:
            Purge(); // in the midst of a frame: every few bytes of it would be reported
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

// Waiting and failing.

bool ChannelTurn::Pause(milliseconds duration)
{
    const Clock::Duration end = Now() + duration;
    for (;;) {
        const Clock::Duration left = end - Now();
        if (left <= Clock::Duration::zero()) {
            return true;
        }
        m_channel.GetClock().Sleep(std::min<Clock::Duration>(left, kBreathInterval));
        if (!Breathe()) {
            return false;
        }
    }
}

bool ChannelTurn::Breathe()
{
    return m_host.Breathe() || Fail(CommandFault::Cancelled);
}

int ChannelTurn::Purge()
{
    const int transmit = Link().Purge(SerialDevice::Queue::Transmit);
    const int receive = Link().Purge(SerialDevice::Queue::Receive);
    Link().ResetReceiveState();
    return transmit == 1 && receive == 1 ? 1 : 0;
}

bool ChannelTurn::Fail(CommandFault fault)
{
    m_fault = fault;
    return false;
}

/// Sets the fault that the end of a wait means, if it means one. @return whether it means none
bool ChannelTurn::Check(SerialLink::WaitOutcome outcome)
{
    switch (outcome) {
    case SerialLink::WaitOutcome::Delivered:
        return true;
    case SerialLink::WaitOutcome::TimedOut:
        return Fail(CommandFault::TimedOut);
    case SerialLink::WaitOutcome::Lost:
        return FailOnWrite();
    case SerialLink::WaitOutcome::Cancelled:
        break;
    }
    return Fail(CommandFault::Cancelled);
}

bool ChannelTurn::FailOnWrite()
{
    m_channel.NoteFault(Link().TakeFault());
    return Fail(Link().IsLost() ? CommandFault::LinkLost : CommandFault::WriteFailed);
}

} // namespace fieldcore
