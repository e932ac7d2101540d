#pragma once

#include "core/host/Host.h"
#include "core/link/FrameBuffer.h"
#include "core/link/SerialLink.h"
#include "core/platform/Clock.h"
#include "core/platform/PortNames.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace fieldcore {

/// Why the last request to the receiver failed.
enum class CommandFault
{
    None,
    Busy,       ///< another request is under way
    NotOpen,    ///< no port is open
    OpenFailed, ///< see the link error and the device's text
    TooLong,    ///< the request does not fit into a frame
    WriteFailed,
    TimedOut,
    Refused, ///< NAK
    Malformed,
    BadChecksum,
    WrongAnswer, ///< an acknowledgement where data was expected, or the other way round
    WrongType,   ///< an answer of another type, or one that does not fit its layout
    LinkLost,    ///< the other end is gone
    Cancelled,
};

/// The line to a receiver as a request sees it: a port, the frame that is built and sent, the one
/// that came, and what went wrong. It knows how to send and how to wait; what to do about an answer
/// is up to CommandChannel. All calls come from one thread.
class ReceiverLine : public FrameBuffer
{
public:
    /// What the channel uses of the world around it. What is left out is this machine's own.
    struct Surroundings
    {
        Host* host = nullptr; ///< outlives the channel, as do the next two; null: DefaultHost()
        const Clock* clock = nullptr;
        const PortNames* ports = nullptr; ///< resolves port numbers
        std::function<std::unique_ptr<SerialDevice>()> makeDevice;
    };

    /// A frame that passed the channel: as it was sent, or as it came.
    using FrameObserver = std::function<void(Direction, std::span<const std::uint8_t> frame)>;

    explicit ReceiverLine(Surroundings surroundings);
    ~ReceiverLine();
    ReceiverLine(const ReceiverLine&) = delete;
    ReceiverLine& operator=(const ReceiverLine&) = delete;

    /// Whom to ask and to let breathe from now on. @p host must outlive the channel or the next
    /// call.
    void SetHost(Host& host) { m_host = &host; }
    [[nodiscard]] Host& GetHost() const { return m_host != nullptr ? *m_host : DefaultHost(); }
    [[nodiscard]] const Clock& GetClock() const { return *m_clock; }

    // The port. Close an open one before opening it with other parameters.

    /// @param portNumber  1 for COM1 and so on
    /// @return 1 if the port is open
    int OpenPort(int portNumber, const PortSettings& settings = {});
    /// @param devicePath  a serial device of this machine
    /// @param portNumber  the COM number that it counts as
    int OpenPort(const std::string& devicePath, const PortSettings& settings = {},
                 int portNumber = 0);
    void ClosePort();
    [[nodiscard]] int IsPortOpen() const { return m_link ? 1 : 0; }
    /// Of the open port: its COM number, 0 if it was opened by its path alone or none is open.
    [[nodiscard]] int GetPortNumber() const { return m_link ? m_portNumber : 0; }
    /// Of the open port, bit/s; 0 if none is open.
    [[nodiscard]] std::uint32_t GetBaudRate() const;
    /// Empties the queues and forgets what is half received.
    int PurgePort();

    // These need an open port; without one the setters do nothing.
    void SetReplyTimeout(std::chrono::milliseconds timeout);
    void SetFraming(SerialLink::Framing framing);
    void SetHandOver(bool on);
    /// The transport's last error; reading it clears it.
    LinkError TakeLinkError();

    // Diagnostics, for developers.

    [[nodiscard]] bool IsBusy() const { return m_busy; }
    [[nodiscard]] CommandFault Fault() const { return m_failed.fault; }
    /// What went wrong last and with which request, in words; empty if nothing did.
    [[nodiscard]] std::string LastError() const;
    /// The system's number for what the port failed of last; 0 if it did not.
    [[nodiscard]] int SystemError() const { return m_deviceFaultCode; }
    /// The last bytes that came over the open port and were no frame, 256 at most.
    [[nodiscard]] std::vector<std::uint8_t> RecentNoise() const;
    /// Sees every frame that is sent or taken, on the calling thread. Empty: nobody does.
    void SetFrameObserver(FrameObserver observer) { m_observer = std::move(observer); }

protected:
    /// Marks the channel as busy as long as it lives.
    class BusyGuard
    {
    public:
        explicit BusyGuard(ReceiverLine& channel);
        ~BusyGuard();
        BusyGuard(const BusyGuard&) = delete;
        BusyGuard& operator=(const BusyGuard&) = delete;

    private:
        ReceiverLine& m_channel;
    };

    /// How a request has failed.
    struct Failed
    {
        CommandFault fault = CommandFault::None;
        std::uint8_t request = 0; ///< its type; 0: it was no frame
    };

    /// Whether a request may begin; if not, the fault is set.
    bool MayStart();
    /// From here on what goes wrong belongs to a request of that type, 0 if it is no frame.
    void StartRequest(std::uint8_t type) { m_failed = {CommandFault::None, type}; }
    /// Starts the built frame as the request and keeps it; false if it is none.
    bool KeepRequest();
    /// @return false if the line cannot be written to, or the host asked for an end
    bool AwaitRoom();
    /// Writes the request that was kept.
    bool WriteRequest();
    /// Waits for the reader's report and takes what it delivered into the buffer.
    Delivery WaitForAnswer();
    /// @return false if the host asked for an end
    bool Pause(std::chrono::milliseconds duration);

    /// The open port: only while IsPortOpen().
    [[nodiscard]] SerialLink& Link() { return *m_link; }

    int Fail(CommandFault fault);
    /// The frame in the buffer is not the one expected.
    int FailOnType();
    int FailOnWrite();
    [[nodiscard]] const Failed& LastFailed() const { return m_failed; }
    void Restore(const Failed& failed) { m_failed = failed; }

private:
    void NoteLinkError(SerialLink& link);
    void Observe(Direction direction, std::span<const std::uint8_t> frame);

    Host* m_host; // null: the default one
    const Clock* m_clock;
    const PortNames* m_ports; // null: the defaults
    std::function<std::unique_ptr<SerialDevice>()> m_makeDevice;
    FrameObserver m_observer;
    std::unique_ptr<SerialLink> m_link; // from OpenPort to ClosePort

    // The request is kept aside: an answer overwrites the buffer, and exactly this is resent.
    std::array<std::uint8_t, 261> m_request{};
    std::size_t m_requestLength = 0;

    int m_portNumber = 0;
    bool m_busy = false;
    Failed m_failed;
    std::uint8_t m_faultAnswer = 0; // type of the answer that was not expected
    LinkError m_linkError = LinkError::None;
    std::string m_deviceFault;
    int m_deviceFaultCode = 0;
};

} // namespace fieldcore
