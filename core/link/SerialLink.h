#pragma once

#include "core/host/Host.h"
#include "core/link/DeliveryQueue.h"
#include "core/link/FrameAssembler.h"
#include "core/link/FrameLog.h"
#include "core/platform/AutoResetEvent.h"
#include "core/platform/Clock.h"
#include "core/platform/SerialDevice.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace fieldcore {

/// The transport's error codes.
enum class LinkError : int
{
    None = 0,
    Open = -101,
    Close = -102,
    Timeouts = -103,
    LineSettings = -104,
    EventMask = -107,
    WaitEvent = -108, ///< also: the other end hung up
    ModemStatus = -109,
    ClearBreak = -110,
    SetBreak = -111,
    Escape = -112,
    Write = -113,
    Read = -114,
    Purge = -115,
    Nak = -200,
    Malformed = -201,
    TimedOut = -202,
};

/// What a port has failed of last.
struct PortFault
{
    LinkError error = LinkError::None;
    std::string text; ///< for developers; empty if the device has not failed
    int code = 0;     ///< the system's number for that; 0: none
};

enum class FlowControl : int
{
    None = 0,
    Software = 1, ///< XON/XOFF
    RtsCts = 2,
    DsrDtr = 3,
};

/// How a port is opened. The defaults are those of a receiver as it leaves the factory.
struct PortSettings
{
    std::uint32_t baudRate = 38400; ///< bit/s
    std::uint8_t byteSize = 8;
    std::uint8_t parity = 0;   ///< 0 none, 1 odd, 2 even
    std::uint8_t stopBits = 0; ///< 0 one stop bit, 2 two stop bits
    FlowControl flowControl = FlowControl::None;
    /// How long an answer may take. A long frame at 9600 bit/s lasts 1.1 s.
    std::chrono::milliseconds replyTimeout{2000};
    std::size_t receiveQueue = 5120; ///< bytes
    std::size_t transmitQueue = 512; ///< bytes
};

/// What passed the line.
enum class LineUnit
{
    Frame, ///< or a lone answer byte
    Line,  ///< text
    Break,
    Noise, ///< bytes that came and were no frame
};

/// Sees what passes the line, in its order: on the thread that writes, and on the reader's. It must
/// not call the link.
using LineObserver =
    std::function<void(Direction direction, LineUnit unit, std::span<const std::uint8_t> bytes)>;

/// What has come in, seen by who is about to write.
struct Arrivals
{
    Clock::Duration lastByteAt{};    ///< of the link's clock; 0: none came
    unsigned deliveries = 0;         ///< since the port was opened
    Clock::Duration characterTime{}; ///< from one byte to the next, as seen; 0: in bursts
    bool isWaiting = false;          ///< there are bytes, or a delivery, that nobody has taken
};

/// The serial port that leads to the receiver, with the thread that reads it.
///
/// Two threads meet here: the caller's, which opens, writes, waits and closes, and the reader's,
/// which alone reads the port and assembles frames. All operations are the caller's; calls from
/// several threads are not arbitrated. An object can be opened again after it was closed.
///
/// The other end may vanish (a cable pulled, a Bluetooth link lost): the reader ends, a waiter is
/// woken at once, and everything but Close() fails from then on. The same if the reader runs out of
/// memory.
class SerialLink
{
public:
    /// What bytes are taken for: lines of text, or frames.
    enum class Framing : int
    {
        Lines = 0,
        Frames = 1,
    };
    /// How a wait ended.
    enum class WaitOutcome
    {
        Delivered,
        TimedOut,
        Lost,      ///< the link is gone
        Cancelled, ///< the host asked for an end
    };
    /// @param device  not yet open; null: a port of this machine
    /// @param clock   counts the time-outs; must outlive the link
    explicit SerialLink(std::unique_ptr<SerialDevice> device = nullptr,
                        const Clock& clock = SystemClock::Instance());
    ~SerialLink();
    SerialLink(const SerialLink&) = delete;
    SerialLink& operator=(const SerialLink&) = delete;

    /// Opens the device, applies all settings and starts the reader.
    /// @return 1; or 0 with the error code set and everything closed again
    [[nodiscard]] int Open(const std::string& devicePath, const PortSettings& settings);

    /// Ends the reader and closes the port, whatever state it is in; never hangs.
    /// @return 1; 0 if the link was not open or the system reported a failure (closed all the same)
    int Close();

    /// Whether a device is open, be it one that is gone.
    [[nodiscard]] bool IsOpen() const { return m_device->IsOpen(); }
    /// Whether the other end is gone. Only closing and opening again helps.
    [[nodiscard]] bool IsLost() const { return m_lost; }

    /// @return bytes written: all, or 0 on failure
    std::size_t Write(std::span<const std::uint8_t> bytes);
    /// The same. Where flow control holds the line it waits, at most the write time-outs, in slices
    /// of 50 ms between which @p host may breathe until the first byte is written.
    /// @param unit  as which the observer sees them
    /// @return Delivered, or Cancelled with nothing written; on failure one of the others, with the
    ///         error code set
    WaitOutcome Write(std::span<const std::uint8_t> bytes, LineUnit unit, Host& host);

    /// Takes queued bytes that nothing has assembled yet, as they are; never waits.
    /// @return the number of bytes; 0 with an error code once the link is lost
    std::size_t Read(std::span<std::uint8_t> buffer);

    /// Waits for the next delivery, at most the reply time-out.
    /// @return 1; or 0 after resetting what was half assembled
    int WaitDelivery();
    /// The same, at most @p limit of the link's clock, in slices of 50 ms between which @p host may
    /// breathe.
    WaitOutcome WaitDelivery(Host& host, Clock::Duration limit);

    /// Bytes that the reader has not seen yet count as arriving now.
    [[nodiscard]] Arrivals LookAtArrivals();

    /// Copies what was delivered to the start of @p destination, or zeroes it if there is nothing
    /// with a length. In hand-over mode the next delivery, if it waits already, then counts as
    /// delivered.
    /// @param arrivals  gets what has come in until now, but whether something waits
    /// @return what was delivered, with the number of bytes copied
    Delivery TakeDelivery(std::span<std::uint8_t> destination, Arrivals* arrivals = nullptr);

    /// Forgets a delivery that nobody waited for: called before a request is written.
    void ResetFrameReady();
    /// Forgets what is half assembled and what was delivered.
    void ResetReceiveState();

    /// Empties the queues. 1, or 0 with the code set.
    int Purge(SerialDevice::Queue queue);
    /// One 0x00 byte, then BREAK for @p duration.
    int SendBreak(std::chrono::milliseconds duration);

    // What the device offers, with its error codes: 1, or 0 with the code set.
    int SetBreak() { return Done(m_device->SetBreak(), LinkError::SetBreak); }
    int ClearBreak() { return Done(m_device->ClearBreak(), LinkError::ClearBreak); }
    int EscapeFunction(SerialDevice::Escape function)
    {
        return Done(m_device->EscapeFunction(function), LinkError::Escape);
    }
    int SetEventMask(SerialDevice::EventMask mask)
    {
        return Done(m_device->SetEventMask(mask), LinkError::EventMask);
    }
    int GetModemStatus(ModemStatus& status)
    {
        return Done(m_device->ReadModemStatus(status), LinkError::ModemStatus);
    }
    int GetLineSettings(LineSettings& settings)
    {
        return Done(m_device->ReadSettings(settings), LinkError::LineSettings);
    }
    int ApplyLineSettings(const LineSettings& settings);
    int GetTimeouts(PortTimeouts& timeouts)
    {
        return Done(m_device->ReadTimeouts(timeouts), LinkError::Timeouts);
    }
    int ApplyTimeouts(const PortTimeouts& timeouts);

    /// What was last applied with success.
    [[nodiscard]] const LineSettings& AppliedLineSettings() const { return m_lineSettings; }

    /// How long an answer may take, and what bytes are taken for.
    [[nodiscard]] std::chrono::milliseconds GetReplyTimeout() const { return m_replyTimeout; }
    void SetReplyTimeout(std::chrono::milliseconds timeout) { m_replyTimeout = timeout; }
    [[nodiscard]] Framing GetFraming() const { return m_framing; }
    void SetFraming(Framing framing) { m_framing = framing; }
    [[nodiscard]] bool GetHandOver() const;
    /// In hand-over mode deliveries wait for one another to be taken, DeliveryQueue::kRoom of them.
    /// Then the reader stops until half of these were taken, at most the reply time-out, so that
    /// a frame is never overwritten by the next one.
    void SetHandOver(bool on);

    /// What was delivered last, and how many bytes.
    [[nodiscard]] ExchangeState GetExchangeState() const;
    [[nodiscard]] std::size_t GetDeliveredLength() const;

    /// The last failure; reading it clears the code.
    LinkError TakeErrorCode();
    PortFault TakeFault()
    {
        return {TakeErrorCode(), m_device->LastFault(), m_device->LastFaultCode()};
    }

    /// Empty: nobody. Any thread; once it is back the old observer is not called any more.
    void SetObserver(LineObserver observer);
    /// The last bytes, at most 256, that came since the port was opened and were no frame. Any
    /// thread.
    [[nodiscard]] std::vector<std::uint8_t> RecentNoise() const;

    /// Appends a hex dump of a frame to "gnsslog.log" in the controller's built-in storage. The
    /// library itself never calls it; it serves diagnostics.
    /// @return 1; 0 if the file could not be written
    static int LogFrame(Direction direction, std::span<const std::uint8_t> bytes);

private:
    WaitOutcome AwaitRoom(Clock::Duration deadline, Host& host);
    [[nodiscard]] bool IsDeliveryWaiting() const;
    int Fail(LinkError error);
    int Done(bool succeeded, LinkError error) { return succeeded ? 1 : Fail(error); }
    bool Configure(const PortSettings& settings);
    bool StartReader();
    void StopReader();

    void ReadPort();
    bool TakeIn();
    [[nodiscard]] bool Deliver(const Delivery& delivery);
    void AwaitConsumer();
    void LoseLink(LinkError error);
    [[nodiscard]] Clock::Duration NominalCharacter() const;
    void Observe(Direction direction, LineUnit unit, std::span<const std::uint8_t> bytes);
    void ObserveLocked(Direction direction, LineUnit unit, std::span<const std::uint8_t> bytes);

    const std::unique_ptr<SerialDevice> m_device;
    const Clock& m_clock;
    LineSettings m_lineSettings;
    PortTimeouts m_timeouts;

    std::thread m_reader;
    AutoResetEvent m_frameReady;  // set by the reader at each delivery, and when the link is lost
    AutoResetEvent m_threadState; // set by the reader when it has started and when it ends
    AutoResetEvent m_consumed;    // set by the consumer when a reader that stopped can go on
    std::atomic<bool> m_closing = false;
    std::atomic<bool> m_lost = false;
    std::atomic<Framing> m_framing = Framing::Frames;
    std::atomic<std::chrono::milliseconds> m_replyTimeout = PortSettings{}.replyTimeout;

    // The reader holds m_intake while it reads the port and assembles; taken before m_mutex. What a
    // consumer needs of each delivery is guarded by m_mutex alone, and never waits for the port.
    mutable std::mutex m_intake; // guards these
    ByteQueue m_queue;
    FrameAssembler m_assembler;
    Clock::Duration m_beganAt{};        // the frame that is being assembled
    std::atomic<bool> m_isHalf = false; // there are bytes that were not delivered; read by anyone

    mutable std::mutex m_mutex; // guards everything below
    LinkError m_error = LinkError::None;
    bool m_handOver = false;
    DeliveryQueue m_deliveries;
    Arrivals m_arrivals;

    mutable std::mutex m_observing; // guards these; taken last
    LineObserver m_observer;
    std::array<std::uint8_t, 256> m_noise{}; // written round and round
    std::size_t m_noiseCount = 0;            // of all that came
};

/// The line settings that a port is opened with, on top of what @p current has.
/// @return false if the flow-control code is none of the four
[[nodiscard]] bool SettingsForLine(const PortSettings& port, LineSettings& current);

} // namespace fieldcore
