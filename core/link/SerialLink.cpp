#include "core/link/SerialLink.h"

#include "core/platform/Folders.h"
#include "core/platform/PosixSerialDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <new>
#include <system_error>
#include <utility>

namespace fieldcore {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kReadInterval{500};
constexpr milliseconds kReadMultiplier{10}; // for each byte
constexpr milliseconds kReadConstant{1000};
constexpr milliseconds kWriteMultiplier{10}; // for each byte
// How often a reader that does not begin is looked at, or one that does not end is woken again.
constexpr milliseconds kWakeInterval{20};
// How long a waiter may keep the host from breathing.
constexpr milliseconds kWaitSlice{50};
constexpr milliseconds kSlowestCharacter{10}; // at 1200 bit/s 8.3

} // namespace

bool SettingsForLine(const PortSettings& port, LineSettings& current)
{
    current.baudRate = port.baudRate;
    current.binary = true;
    current.checkParity = port.parity != 0;
    current.replaceErrors = false;
    current.stripNulls = false;
    current.abortOnError = false;
    current.byteSize = port.byteSize;
    current.parity = port.parity;
    current.stopBits = port.stopBits;

    const FlowControl flow = port.flowControl;
    const bool software = flow == FlowControl::Software;
    current.ctsOutputFlow = flow == FlowControl::RtsCts;
    current.rtsHandshake = flow == FlowControl::RtsCts;
    current.dsrSensitivity = flow == FlowControl::RtsCts || flow == FlowControl::DsrDtr;
    current.dsrOutputFlow = current.dsrSensitivity;
    current.dtrEnabled = current.dsrSensitivity;
    current.xonXoffOutput = software;
    current.xonXoffInput = software;
    current.sendAfterXoff = !software;
    if (software) {
        current.xonChar = 0x11;
        current.xoffChar = 0x13;
        current.xonLimit = 20;
        current.xoffLimit = 128;
    }
    return flow >= FlowControl::None && flow <= FlowControl::DsrDtr;
}

SerialLink::SerialLink(std::unique_ptr<SerialDevice> device, const Clock& clock)
    : m_device(device ? std::move(device) : std::make_unique<PosixSerialDevice>()), m_clock(clock)
{}

SerialLink::~SerialLink()
{
    Close();
}

int SerialLink::Open(const std::string& devicePath, const PortSettings& settings)
{
    if (m_device->IsOpen() || !m_device->Open(devicePath)) {
        return Fail(LinkError::Open);
    }
    {
        const std::scoped_lock lock(m_intake, m_mutex, m_observing);
        m_error = LinkError::None;
        m_lost = false;
        m_replyTimeout = settings.replyTimeout;
        m_queue = ByteQueue(std::max(settings.receiveQueue, kFrameBufferSize));
        m_arrivals = {};
        m_noiseCount = 0;
    }
    ResetReceiveState();
    if (!Configure(settings) || !StartReader()) {
        static_cast<void>(m_device->Close());
        return 0;
    }
    return 1;
}

bool SerialLink::Configure(const PortSettings& settings)
{
    if (!m_device->SetQueueSizes(settings.receiveQueue, settings.transmitQueue)) {
        return false;
    }
    LineSettings line;
    if (GetLineSettings(line) == 0) {
        return false;
    }
    if (!SettingsForLine(settings, line)) {
        Fail(LinkError::LineSettings);
        return false;
    }
    const PortTimeouts timeouts{kReadInterval, kReadMultiplier, kReadConstant, kWriteMultiplier,
                                settings.replyTimeout};
    return ApplyLineSettings(line) == 1 && ApplyTimeouts(timeouts) == 1;
}

bool SerialLink::StartReader()
{
    m_closing = false;
    m_frameReady.Reset();
    m_threadState.Reset();
    m_consumed.Reset();
    try {
        m_reader = std::thread(&SerialLink::ReadPort, this);
    } catch (const std::system_error&) {
        Fail(LinkError::Open);
        return false;
    }
    while (!m_threadState.Wait(kWakeInterval)) {
    }
    if (IsLost()) {
        m_reader.join();
        return false;
    }
    return true;
}

int SerialLink::Close()
{
    if (!m_device->IsOpen()) {
        return 0;
    }
    // The queues of a lost link cannot be purged, and need not be.
    static_cast<void>(m_device->Purge(SerialDevice::Queue::Transmit));
    static_cast<void>(m_device->Purge(SerialDevice::Queue::Receive));
    StopReader();
    return Done(m_device->Close(), LinkError::Close);
}

void SerialLink::StopReader()
{
    if (!m_reader.joinable()) {
        return;
    }
    m_closing = true;
    if (!m_device->SetEventMask(SerialDevice::EventMask::None)) {
        Fail(LinkError::EventMask);
    }
    // The reader may be in any of its waits, or on its way into one; it looks at m_closing first.
    do {
        m_consumed.Set();
        m_device->Wake();
    } while (!m_threadState.Wait(kWakeInterval));
    m_reader.join();
}

std::size_t SerialLink::Write(std::span<const std::uint8_t> bytes)
{
    return Write(bytes, LineUnit::Frame, SilentHost::Instance()) == WaitOutcome::Delivered
               ? bytes.size()
               : 0;
}

SerialLink::WaitOutcome SerialLink::Write(std::span<const std::uint8_t> bytes, LineUnit unit,
                                          Host& host)
{
    WaitOutcome outcome = IsLost() ? WaitOutcome::Lost : WaitOutcome::Delivered;
    Clock::Duration deadline{}; // 0: it has not had to wait
    std::size_t done = 0;
    while (outcome == WaitOutcome::Delivered) {
        {
            const std::scoped_lock lock(m_observing); // or the answer is seen before the request
            const auto count = m_device->Write(bytes.subspan(done));
            done += count.value_or(0);
            if (done == bytes.size() && done > 0) {
                ObserveLocked(Direction::Sent, unit, bytes);
                return outcome;
            }
            if (!count || bytes.empty()) {
                break;
            }
        }
        if (deadline == Clock::Duration::zero()) {
            deadline = m_clock.Steady() + m_timeouts.writeConstant +
                       m_timeouts.writeMultiplier * static_cast<int>(bytes.size());
        }
        outcome = AwaitRoom(deadline, done == 0 ? host : SilentHost::Instance());
    }
    if (outcome == WaitOutcome::Cancelled) {
        return outcome;
    }
    // A port whose other end is gone may tell the writer first.
    const int code = m_device->LastFaultCode();
    if (outcome == WaitOutcome::Delivered && (code == EIO || code == ENXIO || code == ENODEV)) {
        LoseLink(LinkError::Write);
    }
    Fail(LinkError::Write);
    return IsLost() ? WaitOutcome::Lost : WaitOutcome::TimedOut;
}

/// @return Delivered if a write can go on, TimedOut or Cancelled
SerialLink::WaitOutcome SerialLink::AwaitRoom(Clock::Duration deadline, Host& host)
{
    for (;;) {
        const Clock::Duration left = std::max(deadline - m_clock.Steady(), Clock::Duration::zero());
        const auto slice = m_clock.RealTime(std::min<Clock::Duration>(left, kWaitSlice));
        if (m_device->HasRoom(std::chrono::ceil<milliseconds>(slice))) {
            return WaitOutcome::Delivered;
        }
        if (left == Clock::Duration::zero()) {
            return WaitOutcome::TimedOut;
        }
        if (!host.Breathe()) {
            return WaitOutcome::Cancelled;
        }
    }
}

std::size_t SerialLink::Read(std::span<std::uint8_t> buffer)
{
    const std::scoped_lock lock(m_intake, m_mutex);
    if (m_lost || !m_device->IsOpen()) {
        m_error = LinkError::Read;
        return 0;
    }
    return m_queue.Take(buffer);
}

int SerialLink::WaitDelivery()
{
    const WaitOutcome outcome = WaitDelivery(SilentHost::Instance(), GetReplyTimeout());
    return outcome == WaitOutcome::Delivered ? 1 : 0;
}

SerialLink::WaitOutcome SerialLink::WaitDelivery(Host& host, Clock::Duration limit)
{
    const Clock::Duration deadline = m_clock.Steady() + limit;
    WaitOutcome outcome = WaitOutcome::TimedOut;
    if (IsLost()) {
        m_frameReady.Set(); // it was waited for before; nothing else will set it
    }
    for (Clock::Duration left = limit;; left = deadline - m_clock.Steady()) {
        if (m_clock.Wait(m_frameReady, std::min<Clock::Duration>(left, kWaitSlice))) {
            if (IsDeliveryWaiting()) { // else it was taken with the one before it
                return WaitOutcome::Delivered;
            }
            if (IsLost()) {
                outcome = WaitOutcome::Lost;
                break;
            }
        }
        if (left <= Clock::Duration::zero()) {
            break;
        }
        if (!host.Breathe()) {
            outcome = WaitOutcome::Cancelled;
            break;
        }
    }
    ResetReceiveState();
    if (outcome == WaitOutcome::TimedOut) {
        Fail(LinkError::TimedOut);
    }
    return outcome;
}

Delivery SerialLink::TakeDelivery(std::span<std::uint8_t> destination, Arrivals* arrivals)
{
    Delivery taken;
    std::size_t waiting = 0;
    {
        const std::scoped_lock lock(m_mutex);
        taken = m_deliveries.Take(destination);
        waiting = m_deliveries.Waiting();
        if (arrivals != nullptr) {
            *arrivals = m_arrivals;
        }
    }
    if (taken.length == 0) {
        std::fill(destination.begin(), destination.end(), std::uint8_t{0});
    }
    if (waiting > 0) {
        m_frameReady.Set();
    }
    if (waiting == DeliveryQueue::kRoom / 2) {
        m_consumed.Set(); // not for each: it would be a switch of threads for each
    }
    return taken;
}

void SerialLink::ResetFrameReady()
{
    m_frameReady.Reset();
    {
        const std::scoped_lock lock(m_mutex);
        m_deliveries.Clear();
    }
    m_consumed.Set();
}

void SerialLink::ResetReceiveState()
{
    {
        const std::scoped_lock lock(m_intake, m_mutex);
        Observe(Direction::Received, LineUnit::Noise, m_assembler.HalfAssembled());
        m_assembler.Reset();
        m_isHalf = m_queue.Size() > 0;
        m_deliveries.Clear();
    }
    m_consumed.Set();
}

int SerialLink::Purge(SerialDevice::Queue queue)
{
    const std::scoped_lock lock(m_intake); // the reader must not queue what it read before
    if (queue == SerialDevice::Queue::Receive) {
        while (const auto count = m_device->Read(m_queue.Free())) { // to be seen, and thrown away
            m_queue.Commit(*count);
            Observe(Direction::Received, LineUnit::Noise, m_queue.Bytes());
            m_queue.Clear();
            if (*count == 0) {
                break;
            }
        }
        m_queue.Clear();
    }
    return Done(m_device->Purge(queue), LinkError::Purge);
}

int SerialLink::SendBreak(milliseconds duration)
{
    constexpr std::array<std::uint8_t, 1> kNull{0x00};
    if (Write(kNull, LineUnit::Break, SilentHost::Instance()) != WaitOutcome::Delivered ||
        SetBreak() == 0) {
        return 0;
    }
    m_clock.Sleep(duration);
    return ClearBreak();
}

int SerialLink::ApplyLineSettings(const LineSettings& settings)
{
    if (!m_device->ApplySettings(settings)) {
        return Fail(LinkError::LineSettings);
    }
    m_lineSettings = settings;
    const std::scoped_lock lock(m_mutex);
    m_arrivals.characterTime = kSlowestCharacter; // until bytes have been seen to come
    return 1;
}

int SerialLink::ApplyTimeouts(const PortTimeouts& timeouts)
{
    if (!m_device->ApplyTimeouts(timeouts)) {
        return Fail(LinkError::Timeouts);
    }
    m_timeouts = timeouts;
    return 1;
}

bool SerialLink::GetHandOver() const
{
    const std::scoped_lock lock(m_mutex);
    return m_handOver;
}

void SerialLink::SetHandOver(bool on)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_handOver = on;
    }
    m_consumed.Set(); // a reader that still waits for its frames to be taken looks at it
}

bool SerialLink::IsDeliveryWaiting() const
{
    const std::scoped_lock lock(m_mutex);
    return m_deliveries.Waiting() > 0;
}

ExchangeState SerialLink::GetExchangeState() const
{
    const std::scoped_lock lock(m_mutex);
    return m_deliveries.Next().state;
}

std::size_t SerialLink::GetDeliveredLength() const
{
    const std::scoped_lock lock(m_mutex);
    return m_deliveries.Next().length;
}

LinkError SerialLink::TakeErrorCode()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_error, LinkError::None);
}

int SerialLink::Fail(LinkError error)
{
    const std::scoped_lock lock(m_mutex);
    m_error = error;
    return 0;
}

int SerialLink::LogFrame(Direction direction, std::span<const std::uint8_t> bytes)
{
    const std::filesystem::path folder = Folders().BuiltInStorage();
    if (Folders::Create(folder)) {
        return 0;
    }
    std::ofstream log(folder / "gnsslog.log", std::ios::binary | std::ios::app);
    log << FrameLogLine(direction, bytes) << std::flush;
    return log.good() ? 1 : 0;
}

// The reader's thread.

void SerialLink::ReadPort()
{
    if (!m_device->SetEventMask(SerialDevice::EventMask::Received)) {
        LoseLink(LinkError::EventMask);
    }
    m_threadState.Set();
    try {
        while (!m_closing && !m_lost) {
            const bool hasBytes = m_device->WaitEvent() == SerialDevice::Event::Received;
            if (!m_closing && (!hasBytes || !TakeIn())) {
                LoseLink(hasBytes ? LinkError::Read : LinkError::WaitEvent);
            }
        }
    } catch (const std::bad_alloc&) { // bytes are missing now
        LoseLink(LinkError::Read);
    }
    m_threadState.Set();
}

/// Reads the port and assembles what is queued. @return false if reading failed
bool SerialLink::TakeIn()
{
    std::unique_lock lock(m_intake);
    const auto count = m_device->Read(m_queue.Free());
    if (!count) {
        return false;
    }
    m_queue.Commit(*count);
    if (*count > 0) {
        const Clock::Duration now = m_clock.Steady();
        if (m_queue.Size() == *count && m_assembler.HalfAssembled().empty()) {
            m_beganAt = now;
        }
        const std::scoped_lock arrivals(m_mutex);
        m_arrivals.lastByteAt = now;
    }
    bool hasNews = false;
    while (!m_closing && m_queue.Size() > 0) {
        const unsigned unsolicited = m_assembler.UnsolicitedCount();
        const std::optional<Delivery> delivery =
            m_framing == Framing::Lines
                ? m_assembler.AssembleLine(m_queue)
                : m_assembler.AssembleFrame(m_queue, FrameAssembler::kLargestStep);
        if (m_assembler.UnsolicitedCount() != unsolicited) {
            Observe(Direction::Received, LineUnit::Frame, m_assembler.Unsolicited());
        }
        if (!delivery) {
            continue;
        }
        hasNews = true;
        if (Deliver(*delivery)) {
            lock.unlock();
            m_frameReady.Set();
            AwaitConsumer();
            lock.lock();
        }
    }
    m_isHalf = m_queue.Size() > 0 || !m_assembler.HalfAssembled().empty();
    lock.unlock(); // whoever is woken may want it
    if (hasNews) { // not for each: it would be a switch of threads for each
        m_frameReady.Set();
    }
    return true;
}

/// Puts it where it is waited for, with what it tells about the line; and who watches the line sees
/// its bytes.
/// @return whether nothing more may be delivered until the consumer has taken some
bool SerialLink::Deliver(const Delivery& delivery)
{
    const auto bytes = m_assembler.DeliveredBytes();
    const LineUnit unit = delivery.state == ExchangeState::Malformed ? LineUnit::Noise
                          : m_framing == Framing::Lines              ? LineUnit::Line
                                                                     : LineUnit::Frame;
    Observe(Direction::Received, unit, bytes);
    const std::scoped_lock lock(m_mutex);
    ++m_arrivals.deliveries;
    const Clock::Duration arrived = m_arrivals.lastByteAt;
    if (delivery.state == ExchangeState::Frame && bytes.size() > 1) {
        const Clock::Duration seen =
            (arrived - m_beganAt) / static_cast<Clock::Duration::rep>(bytes.size() - 1);
        // A pause in the midst of a frame tells nothing of the others.
        m_arrivals.characterTime = 2 * seen < NominalCharacter()
                                       ? Clock::Duration::zero()
                                       : std::min<Clock::Duration>(seen, kSlowestCharacter);
    }
    m_beganAt = arrived; // of what stands behind it in the queue
    if (delivery.state == ExchangeState::Nak) {
        m_error = LinkError::Nak;
    } else if (delivery.state == ExchangeState::Malformed) {
        m_error = LinkError::Malformed;
    }
    if (!m_handOver) {
        m_deliveries.DropWaiting();
    }
    m_deliveries.Put(delivery, m_assembler.Buffer());
    return m_handOver && m_deliveries.IsFull();
}

Arrivals SerialLink::LookAtArrivals()
{
    const bool isUnread = m_device->HasInput();
    const std::scoped_lock lock(m_mutex); // not m_intake: the reader may be at its work
    if (isUnread) {
        m_arrivals.lastByteAt = m_clock.Steady();
    }
    Arrivals arrivals = m_arrivals;
    arrivals.isWaiting = isUnread || m_isHalf || m_deliveries.Waiting() > 0;
    return arrivals;
}

/// With start and stop bit, at the rate that the port was opened with.
Clock::Duration SerialLink::NominalCharacter() const
{
    constexpr int kBits = 10;
    return Clock::Duration(std::chrono::seconds(kBits)) /
           std::max<std::uint32_t>(m_lineSettings.baudRate, 1);
}

void SerialLink::SetObserver(LineObserver observer)
{
    const std::scoped_lock lock(m_observing);
    m_observer = std::move(observer);
}

std::vector<std::uint8_t> SerialLink::RecentNoise() const
{
    const std::scoped_lock lock(m_observing);
    std::vector<std::uint8_t> recent;
    for (std::size_t i = m_noiseCount - std::min(m_noiseCount, m_noise.size()); i < m_noiseCount;
         ++i) {
        recent.push_back(m_noise[i % m_noise.size()]);
    }
    return recent;
}

void SerialLink::Observe(Direction direction, LineUnit unit, std::span<const std::uint8_t> bytes)
{
    const std::scoped_lock lock(m_observing);
    ObserveLocked(direction, unit, bytes);
}

void SerialLink::ObserveLocked(Direction direction, LineUnit unit,
                               std::span<const std::uint8_t> bytes)
{
    if (bytes.empty()) {
        return;
    }
    if (unit == LineUnit::Noise) {
        for (const std::uint8_t byte : bytes) {
            m_noise[m_noiseCount++ % m_noise.size()] = byte;
        }
    }
    if (m_observer) {
        m_observer(direction, unit, bytes);
    }
}

/// Until there is room again; or nobody takes anything, and the reader goes on all the same.
void SerialLink::AwaitConsumer()
{
    std::unique_lock lock(m_mutex);
    bool isTaken = true;
    while (m_handOver && m_deliveries.IsFull() && isTaken && !m_closing) {
        m_consumed.Reset(); // a Set() that comes too late would only go round once more
        lock.unlock();
        isTaken = m_clock.Wait(m_consumed, m_replyTimeout.load());
        lock.lock();
    }
}

void SerialLink::LoseLink(LinkError error)
{
    const std::scoped_lock lock(m_mutex);
    m_error = error;
    m_lost = true;
    m_frameReady.Set();
}

} // namespace fieldcore
