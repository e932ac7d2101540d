#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace fieldcore {

/// How a serial line is run. The fields are those of a serial driver; what a platform cannot
/// set it keeps as it is.
struct LineSettings
{
    std::uint32_t baudRate = 9600; ///< bit/s
    std::uint8_t byteSize = 8;     ///< data bits, 5 to 8
    std::uint8_t parity = 0;       ///< 0 none, 1 odd, 2 even
    std::uint8_t stopBits = 0;     ///< 0 one stop bit, 2 two stop bits

    bool binary = true;          ///< no end-of-file character
    bool checkParity = false;    ///< parity of received bytes is checked
    bool replaceErrors = false;  ///< a damaged byte becomes an error character
    bool stripNulls = false;     ///< received zero bytes are dropped
    bool abortOnError = false;   ///< reading stops after an error until it is cleared
    bool ctsOutputFlow = false;  ///< sending waits for CTS
    bool rtsHandshake = false;   ///< RTS follows the receive queue; otherwise it is on
    bool dsrSensitivity = false; ///< bytes that arrive while DSR is off are ignored
    bool dsrOutputFlow = false;  ///< sending waits for DSR
    bool dtrEnabled = false;     ///< DTR is on
    bool xonXoffOutput = false;  ///< sending stops at XOFF
    bool xonXoffInput = false;   ///< XOFF is sent when the receive queue fills
    bool sendAfterXoff = true;   ///< own sending goes on after an XOFF was sent
    std::uint8_t xonChar = 0x11;
    std::uint8_t xoffChar = 0x13;
    std::uint16_t xonLimit = 20;   ///< queued bytes below which XON is sent
    std::uint16_t xoffLimit = 128; ///< free bytes below which XOFF is sent

    bool operator==(const LineSettings&) const = default;
};

/// Time-outs of reading and writing: a constant plus a multiplier for each byte.
struct PortTimeouts
{
    std::chrono::milliseconds readInterval{0};
    std::chrono::milliseconds readMultiplier{0}; ///< for each byte
    std::chrono::milliseconds readConstant{0};
    std::chrono::milliseconds writeMultiplier{0}; ///< for each byte
    std::chrono::milliseconds writeConstant{0};

    bool operator==(const PortTimeouts&) const = default;
};

/// The modem lines that the other side drives.
struct ModemStatus
{
    bool cts = false;
    bool dsr = false;
    bool ring = false;
    bool carrier = false;
};

/// A serial port of the operating system. One thread waits and reads, another does everything
/// else; Wake() may come from any thread. Closing is allowed only when nobody waits. Every
/// operation answers false (or nothing) on failure and leaves the reason in LastFault().
class SerialDevice
{
public:
    enum class Event
    {
        Received, ///< there is something to read
        Woken,    ///< Wake() was called, or the event mask was cleared
        HangUp,   ///< the other end is gone for good; only Close() is left
        Failed,
    };
    enum class EventMask
    {
        None, ///< a waiter returns at once
        Received,
    };
    enum class Queue
    {
        Transmit,
        Receive,
    };
    enum class Escape
    {
        SetRts,
        ClearRts,
        SetDtr,
        ClearDtr,
    };

    virtual ~SerialDevice() = default;

    /// Opens an existing device for reading and writing, not shared.
    [[nodiscard]] virtual bool Open(const std::string& path) = 0;
    [[nodiscard]] virtual bool Close() = 0;
    [[nodiscard]] virtual bool IsOpen() const = 0;

    /// Asks the driver for queue sizes in bytes; one that has fixed queues accepts any.
    [[nodiscard]] virtual bool SetQueueSizes(std::size_t receive, std::size_t transmit) = 0;

    [[nodiscard]] virtual bool ReadSettings(LineSettings& settings) = 0;
    /// False as well when the hardware kept something else than what was asked.
    [[nodiscard]] virtual bool ApplySettings(const LineSettings& settings) = 0;
    [[nodiscard]] virtual bool ReadTimeouts(PortTimeouts& timeouts) = 0;
    [[nodiscard]] virtual bool ApplyTimeouts(const PortTimeouts& timeouts) = 0;

    [[nodiscard]] virtual bool SetEventMask(EventMask mask) = 0;
    /// Blocks without limit.
    [[nodiscard]] virtual Event WaitEvent() = 0;
    /// Makes a waiter return, now or when it next waits. Cannot fail.
    virtual void Wake() = 0;

    /// Takes what is there, at most the size of @p buffer; never waits. An error state that the
    /// platform keeps is cleared first.
    /// @return the number of bytes, 0 if there are none; nothing on failure
    [[nodiscard]] virtual std::optional<std::size_t> Read(std::span<std::uint8_t> buffer) = 0;

    /// Whether something waits to be read. Where it cannot be known the answer is no.
    [[nodiscard]] virtual bool HasInput() { return false; }

    /// Writes what the line takes now; never waits.
    /// @return the number of bytes, 0 if there is no room; nothing on failure
    [[nodiscard]] virtual std::optional<std::size_t> Write(std::span<const std::uint8_t> bytes) = 0;
    /// Whether a write could go on; waits for that, at most @p limit of real time. Where it cannot
    /// be known the answer is yes: the write then tells.
    [[nodiscard]] virtual bool HasRoom(std::chrono::milliseconds limit) = 0;

    [[nodiscard]] virtual bool Purge(Queue queue) = 0;
    [[nodiscard]] virtual bool SetBreak() = 0;
    [[nodiscard]] virtual bool ClearBreak() = 0;
    /// Lines that the device does not have are no error.
    [[nodiscard]] virtual bool EscapeFunction(Escape function) = 0;
    /// Lines that the device does not have read as on.
    [[nodiscard]] virtual bool ReadModemStatus(ModemStatus& status) = 0;

    /// What the last failed operation failed of, for developers: operation and system text.
    [[nodiscard]] virtual std::string LastFault() const = 0;
    /// The system's number for it: an errno value here.
    [[nodiscard]] virtual int LastFaultCode() const = 0;
};

} // namespace fieldcore
