#include "core/link/CommandChannel.h"

#include "core/platform/Cp932.h"
#include "core/platform/PosixSerialDevice.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace fieldcore {

namespace {

using std::chrono::milliseconds;

constexpr int kAttempts = 2;
constexpr milliseconds kRetryPause{500};
constexpr milliseconds kBreathInterval{50};
constexpr milliseconds kLateAnswerPause{50};
constexpr std::size_t kLongestLine = 256; // bytes, without the CR LF that is added
constexpr std::string_view kLineEnd = "\r\n";

const char* Describe(CommandFault fault)
{
    switch (fault) {
    case CommandFault::None:
        return "";
    case CommandFault::Busy:
        return "another request is under way";
    case CommandFault::NotOpen:
        return "no port is open";
    case CommandFault::OpenFailed:
        return "the port could not be opened";
    case CommandFault::TooLong:
        return "the request does not fit into a frame";
    case CommandFault::WriteFailed:
        return "the request could not be written";
    case CommandFault::TimedOut:
        return "no answer in time";
    case CommandFault::Refused:
        return "the receiver refused (NAK)";
    case CommandFault::Malformed:
        return "the answer was no frame";
    case CommandFault::BadChecksum:
        return "the answer was damaged (checksum)";
    case CommandFault::WrongAnswer:
        return "an acknowledgement came for data, or data for an acknowledgement";
    case CommandFault::WrongType:
        return "the answer was of another type or did not fit its layout";
    case CommandFault::LinkLost:
        return "the link is gone";
    case CommandFault::Cancelled:
        return "cancelled";
    }
    return "";
}

} // namespace

CommandChannel::BusyGuard::BusyGuard(CommandChannel& channel) : m_channel(channel)
{
    m_channel.m_busy = true;
    m_channel.LockBuilding(true);
}

CommandChannel::BusyGuard::~BusyGuard()
{
    m_channel.m_busy = false;
    m_channel.LockBuilding(false);
}

CommandChannel::CommandChannel(Surroundings surroundings)
    : m_host(surroundings.host != nullptr ? surroundings.host : &SilentHost::Instance()),
      m_clock(surroundings.clock != nullptr ? surroundings.clock : &SystemClock::Instance()),
      m_ports(surroundings.ports), m_makeDevice(std::move(surroundings.makeDevice))
{
    if (!m_makeDevice) {
        m_makeDevice = [] { return std::make_unique<PosixSerialDevice>(); };
    }
}

CommandChannel::~CommandChannel() = default;

// The port.

int CommandChannel::OpenPort(int portNumber, const PortSettings& settings)
{
    const PortNames defaults;
    const std::string path = (m_ports != nullptr ? *m_ports : defaults).DevicePath(portNumber);
    if (OpenPort(path, settings) == 0) {
        return 0;
    }
    m_portNumber = portNumber;
    return 1;
}

int CommandChannel::OpenPort(const std::string& devicePath, const PortSettings& settings)
{
    if (m_busy) {
        return Fail(CommandFault::Busy);
    }
    m_faultRequest = 0;
    if (m_link) {
        return Fail(CommandFault::OpenFailed);
    }
    auto link = std::make_unique<SerialLink>(m_makeDevice(), *m_clock);
    if (link->Open(devicePath, settings) == 0) {
        NoteLinkError(*link);
        return Fail(CommandFault::OpenFailed);
    }
    m_link = std::move(link);
    m_portNumber = 0;
    m_fault = CommandFault::None;
    return 1;
}

std::uint32_t CommandChannel::GetBaudRate() const
{
    return m_link ? m_link->AppliedLineSettings().baudRate : 0;
}

void CommandChannel::ClosePort()
{
    if (m_link && !m_busy) {
        m_link->Close();
        m_link.reset();
    }
}

int CommandChannel::PurgePort()
{
    if (!m_link) {
        return Fail(CommandFault::NotOpen);
    }
    const int transmit = m_link->Purge(SerialDevice::Queue::Transmit);
    const int receive = m_link->Purge(SerialDevice::Queue::Receive);
    m_link->ResetReceiveState();
    return transmit == 1 && receive == 1 ? 1 : 0;
}

void CommandChannel::SetReplyTimeout(milliseconds timeout)
{
    if (m_link) {
        m_link->SetReplyTimeout(timeout);
    }
}

void CommandChannel::SetFraming(SerialLink::Framing framing)
{
    if (m_link) {
        m_link->SetFraming(framing);
    }
}

void CommandChannel::SetHandOver(bool on)
{
    if (m_link) {
        m_link->SetHandOver(on);
    }
}

LinkError CommandChannel::TakeLinkError()
{
    if (m_link) {
        const LinkError error = m_link->TakeErrorCode();
        if (error != LinkError::None) {
            m_linkError = error;
        }
    }
    return std::exchange(m_linkError, LinkError::None);
}

// Exchanges.

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

bool CommandChannel::MayStart()
{
    if (m_busy) {
        Fail(CommandFault::Busy);
        return false;
    }
    if (!m_link) {
        Fail(CommandFault::NotOpen);
        return false;
    }
    return true;
}

bool CommandChannel::KeepRequest()
{
    const auto frame = BuiltFrame();
    m_fault = CommandFault::None;
    m_faultRequest = GetReplyType();
    if (frame.empty()) {
        Fail(CommandFault::TooLong);
        return false;
    }
    std::copy(frame.begin(), frame.end(), m_request.begin());
    m_requestLength = frame.size();
    return true;
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
    if (m_fault == CommandFault::TimedOut) {
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
        const bool isOver = m_link->IsLost() || m_fault == CommandFault::Cancelled;
        return isOver; // otherwise tried again at once
    }
    return Judge(expected, WaitForAnswer().state, isLast);
}

bool CommandChannel::AwaitRoom()
{
    switch (m_link->WaitRoom(*m_host)) {
    case SerialLink::WaitOutcome::TimedOut:
        FailOnWrite();
        return false;
    case SerialLink::WaitOutcome::Cancelled:
        Fail(CommandFault::Cancelled);
        return false;
    case SerialLink::WaitOutcome::Delivered:
    case SerialLink::WaitOutcome::Lost:
        break;
    }
    return true;
}

bool CommandChannel::WriteRequest()
{
    const auto request = std::span(m_request).first(m_requestLength);
    m_link->ResetFrameReady();
    if (!AwaitRoom()) {
        return false;
    }
    if (m_link->Write(request) == 0) {
        FailOnWrite();
        return false;
    }
    Observe(Direction::Sent, request);
    return true;
}

Delivery CommandChannel::WaitForAnswer()
{
    const SerialLink::WaitOutcome outcome = m_link->WaitDelivery(*m_host);
    const Delivery delivery = m_link->TakeDelivery(PacketBuffer);
    switch (outcome) {
    case SerialLink::WaitOutcome::Delivered:
        break;
    case SerialLink::WaitOutcome::TimedOut:
        Fail(CommandFault::TimedOut);
        return {ExchangeState::TimedOut, 0};
    case SerialLink::WaitOutcome::Lost:
        Fail(CommandFault::LinkLost);
        return {ExchangeState::TimedOut, 0};
    case SerialLink::WaitOutcome::Cancelled:
        Fail(CommandFault::Cancelled);
        return {ExchangeState::TimedOut, 0};
    }
    if (delivery.state == ExchangeState::Frame) {
        ReadDataLength();
    }
    if (delivery.length > 0) {
        Observe(Direction::Received, std::span(PacketBuffer).first(delivery.length));
    }
    return delivery;
}

int CommandChannel::BreakAndCollect(milliseconds duration)
{
    m_fault = CommandFault::None;
    m_faultRequest = 0;
    m_link->ResetFrameReady();
    if (!AwaitRoom()) {
        return 0;
    }
    // As SerialLink::SendBreak(), but the host breathes meanwhile.
    constexpr std::array<std::uint8_t, 1> kNull{0x00};
    if (m_link->Write(kNull) == 0 || m_link->SetBreak() == 0) {
        return FailOnWrite();
    }
    const bool goOn = Pause(duration);
    if (m_link->ClearBreak() == 0) {
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
    const bool lostOrCancelled = m_fault != CommandFault::TimedOut;
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
    const CommandFault reason = m_fault;
    if (reason != CommandFault::LinkLost && reason != CommandFault::Cancelled) {
        Pause(kRetryPause);
    }
    PurgePort();
    m_fault = reason;
}

void CommandChannel::AbortTransmission()
{
    const CommandFault reason = m_fault;
    const std::uint8_t request = m_faultRequest;
    if (m_link && reason != CommandFault::LinkLost) {
        Build(0x5A, {0, 0, 0, 0, 0, 0, 0, 0, 0});
        KeepRequest();
        const BusyGuard busy(*this);
        if (!WriteRequest() || !AwaitQuiet()) {
            m_suspectExchanges = 2;
        }
        PurgePort();
    }
    if (m_fault != CommandFault::LinkLost) {
        m_fault = reason;
    }
    m_faultRequest = request;
}

/// Throws away what comes until the receiver acknowledges the abort, which it does behind all that
/// it had sent before.
/// @return whether it did
bool CommandChannel::AwaitQuiet()
{
    constexpr int kMostStale = 512; // that a receiver which does not stop can make us look at
    const Clock::Duration end = m_clock->Steady() + 2 * m_link->GetReplyTimeout();
    for (int stale = 0; stale < kMostStale && m_clock->Steady() < end; ++stale) {
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
    if (m_busy) {
        return Fail(CommandFault::Busy);
    }
    const BusyGuard busy(*this);
    return Pause(duration) ? 1 : 0;
}

bool CommandChannel::Pause(milliseconds duration)
{
    const Clock::Duration end = m_clock->Steady() + duration;
    for (;;) {
        const Clock::Duration left = end - m_clock->Steady();
        if (left <= Clock::Duration::zero()) {
            return true;
        }
        m_clock->Sleep(std::min<Clock::Duration>(left, kBreathInterval));
        if (!m_host->Breathe()) {
            Fail(CommandFault::Cancelled);
            return false;
        }
    }
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
    m_fault = CommandFault::None;
    m_faultRequest = 0;
    if (m_link->GetFraming() != SerialLink::Framing::Lines) {
        return Fail(CommandFault::WrongAnswer);
    }
    std::string line = ToCp932(text);
    line.resize(std::min(line.size(), kLongestLine));
    if (!std::string_view(line).ends_with(kLineEnd)) {
        line += kLineEnd;
    }
    m_link->ResetFrameReady();
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
    return m_link->Write(raw) == raw.size() ? 1 : FailOnWrite();
}

// Diagnostics.

void CommandChannel::Observe(Direction direction, std::span<const std::uint8_t> frame)
{
    if (m_observer) {
        m_observer(direction, frame);
    }
}

void CommandChannel::Succeed()
{
    LastResult = 1;
    m_fault = CommandFault::None; // of an attempt before, or of a request while this one ran
}

int CommandChannel::Fail(CommandFault fault)
{
    m_fault = fault;
    return 0;
}

int CommandChannel::FailOnType()
{
    m_faultAnswer = GetReplyType();
    return Fail(CommandFault::WrongType);
}

int CommandChannel::FailOnWrite()
{
    NoteLinkError(*m_link);
    return Fail(m_link->IsLost() ? CommandFault::LinkLost : CommandFault::WriteFailed);
}

void CommandChannel::NoteLinkError(SerialLink& link)
{
    m_linkError = link.TakeErrorCode();
    m_deviceFault = link.GetDeviceFault();
    m_deviceFaultCode = link.GetDeviceFaultCode();
}

std::string CommandChannel::LastError() const
{
    if (m_fault == CommandFault::None) {
        return {};
    }
    std::string text = Describe(m_fault);
    std::array<char, 40> buffer{};
    if (m_faultRequest != 0) {
        std::snprintf(buffer.data(), buffer.size(), "request 0x%02X: ", m_faultRequest);
        text.insert(0, buffer.data());
    }
    if (m_fault == CommandFault::WrongType) {
        std::snprintf(buffer.data(), buffer.size(), " (type 0x%02X)", m_faultAnswer);
        text += buffer.data();
    }
    const bool ofDevice = m_fault == CommandFault::OpenFailed ||
                          m_fault == CommandFault::WriteFailed || m_fault == CommandFault::LinkLost;
    if (ofDevice && !m_deviceFault.empty()) {
        text += " (" + m_deviceFault + ")";
    }
    return text;
}

} // namespace fieldcore
