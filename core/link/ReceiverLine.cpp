#include "core/link/ReceiverLine.h"

#include "core/platform/PosixSerialDevice.h"

#include <algorithm>
#include <cstdio>

namespace fieldcore {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kBreathInterval{50};

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

ReceiverLine::BusyGuard::BusyGuard(ReceiverLine& channel) : m_channel(channel)
{
    m_channel.m_busy = true;
    m_channel.LockBuilding(true);
}

ReceiverLine::BusyGuard::~BusyGuard()
{
    m_channel.m_busy = false;
    m_channel.LockBuilding(false);
}

ReceiverLine::ReceiverLine(Surroundings surroundings)
    : m_host(surroundings.host),
      m_clock(surroundings.clock != nullptr ? surroundings.clock : &SystemClock::Instance()),
      m_ports(surroundings.ports), m_makeDevice(std::move(surroundings.makeDevice))
{
    if (!m_makeDevice) {
        m_makeDevice = [] { return std::make_unique<PosixSerialDevice>(); };
    }
}

ReceiverLine::~ReceiverLine() = default;

// The port.

int ReceiverLine::OpenPort(int portNumber, const PortSettings& settings)
{
    const PortNames defaults;
    const std::string path = (m_ports != nullptr ? *m_ports : defaults).DevicePath(portNumber);
    return OpenPort(path, settings, portNumber);
}

int ReceiverLine::OpenPort(const std::string& devicePath, const PortSettings& settings,
                           int portNumber)
{
    if (m_busy) {
        return Fail(CommandFault::Busy);
    }
    m_failed.request = 0;
    if (m_link) {
        return Fail(CommandFault::OpenFailed);
    }
    auto link = std::make_unique<SerialLink>(m_makeDevice(), *m_clock);
    if (link->Open(devicePath, settings) == 0) {
        NoteLinkError(*link);
        return Fail(CommandFault::OpenFailed);
    }
    m_link = std::move(link);
    m_portNumber = portNumber;
    m_failed.fault = CommandFault::None;
    return 1;
}

std::uint32_t ReceiverLine::GetBaudRate() const
{
    return m_link ? m_link->AppliedLineSettings().baudRate : 0;
}

std::vector<std::uint8_t> ReceiverLine::RecentNoise() const
{
    return m_link ? m_link->RecentNoise() : std::vector<std::uint8_t>();
}

void ReceiverLine::ClosePort()
{
    if (m_link && !m_busy) {
        m_link->Close();
        m_link.reset();
    }
}

int ReceiverLine::PurgePort()
{
    if (!m_link) {
        return Fail(CommandFault::NotOpen);
    }
    const int transmit = m_link->Purge(SerialDevice::Queue::Transmit);
    const int receive = m_link->Purge(SerialDevice::Queue::Receive);
    m_link->ResetReceiveState();
    return transmit == 1 && receive == 1 ? 1 : 0;
}

void ReceiverLine::SetReplyTimeout(milliseconds timeout)
{
    if (m_link) {
        m_link->SetReplyTimeout(timeout);
    }
}

void ReceiverLine::SetFraming(SerialLink::Framing framing)
{
    if (m_link) {
        m_link->SetFraming(framing);
    }
}

void ReceiverLine::SetHandOver(bool on)
{
    if (m_link) {
        m_link->SetHandOver(on);
    }
}

LinkError ReceiverLine::TakeLinkError()
{
    if (m_link) {
        const LinkError error = m_link->TakeErrorCode();
        if (error != LinkError::None) {
            m_linkError = error;
        }
    }
    return std::exchange(m_linkError, LinkError::None);
}

// What the exchanges are made of.

bool ReceiverLine::MayStart()
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

bool ReceiverLine::KeepRequest()
{
    const auto frame = BuiltFrame();
    StartRequest(GetReplyType());
    if (frame.empty()) {
        Fail(CommandFault::TooLong);
        return false;
    }
    std::copy(frame.begin(), frame.end(), m_request.begin());
    m_requestLength = frame.size();
    return true;
}

bool ReceiverLine::AwaitRoom()
{
    switch (m_link->WaitRoom(GetHost())) {
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

bool ReceiverLine::WriteRequest()
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

Delivery ReceiverLine::WaitForAnswer()
{
    const SerialLink::WaitOutcome outcome = m_link->WaitDelivery(GetHost());
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

bool ReceiverLine::Pause(milliseconds duration)
{
    const Clock::Duration end = m_clock->Steady() + duration;
    for (;;) {
        const Clock::Duration left = end - m_clock->Steady();
        if (left <= Clock::Duration::zero()) {
            return true;
        }
        m_clock->Sleep(std::min<Clock::Duration>(left, kBreathInterval));
        if (!GetHost().Breathe()) {
            Fail(CommandFault::Cancelled);
            return false;
        }
    }
}

// Diagnostics.

void ReceiverLine::Observe(Direction direction, std::span<const std::uint8_t> frame)
{
    if (m_observer) {
        m_observer(direction, frame);
    }
}

int ReceiverLine::Fail(CommandFault fault)
{
    m_failed.fault = fault;
    return 0;
}

int ReceiverLine::FailOnType()
{
    m_faultAnswer = GetReplyType();
    return Fail(CommandFault::WrongType);
}

int ReceiverLine::FailOnWrite()
{
    NoteLinkError(*m_link);
    return Fail(m_link->IsLost() ? CommandFault::LinkLost : CommandFault::WriteFailed);
}

void ReceiverLine::NoteLinkError(SerialLink& link)
{
    m_linkError = link.TakeErrorCode();
    m_deviceFault = link.GetDeviceFault();
    m_deviceFaultCode = link.GetDeviceFaultCode();
}

std::string ReceiverLine::LastError() const
{
    if (m_failed.fault == CommandFault::None) {
        return {};
    }
    std::string text = Describe(m_failed.fault);
    std::array<char, 40> buffer{};
    if (m_failed.request != 0) {
        std::snprintf(buffer.data(), buffer.size(), "request 0x%02X: ", m_failed.request);
        text.insert(0, buffer.data());
    }
    if (m_failed.fault == CommandFault::WrongType) {
        std::snprintf(buffer.data(), buffer.size(), " (type 0x%02X)", m_faultAnswer);
        text += buffer.data();
    }
    const bool ofDevice = m_failed.fault == CommandFault::OpenFailed ||
                          m_failed.fault == CommandFault::WriteFailed ||
                          m_failed.fault == CommandFault::LinkLost;
    if (ofDevice && !m_deviceFault.empty()) {
        text += " (" + m_deviceFault + ")";
    }
    return text;
}

} // namespace fieldcore
