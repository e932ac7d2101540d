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
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

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

/// A port with the rules of an exchange: the frame that was built is sent, the answer is waited
/// for, judged and kept in the same buffer, and what went wrong is tried again where that helps.
/// CCommand adds the requests that the receiver understands.
///
/// An exchange blocks the calling thread for two reply time-outs plus 550 ms at most, and lets
/// the host breathe meanwhile. One that is started from inside such a breath is refused
/// (CommandFault::Busy) and leaves the running one alone. All calls come from one thread.
class CommandChannel : public FrameBuffer
{
public:
    /// What the channel uses of the world around it. What is left out is this machine's own.
    struct Surroundings
    {
        Host* host = nullptr; ///< outlives the channel, as do the next two
        const Clock* clock = nullptr;
        const PortNames* ports = nullptr; ///< resolves port numbers
        std::function<std::unique_ptr<SerialDevice>()> makeDevice;
    };

    /// What a request is answered with when all is well.
    enum class Answer : int
    {
        Reply = 0, ///< a frame
        Ack = 1,
    };

    /// A frame that passed the channel: as it was sent, or as it came.
    using FrameObserver = std::function<void(Direction, std::span<const std::uint8_t> frame)>;

    explicit CommandChannel(Surroundings surroundings);
    ~CommandChannel();
    CommandChannel(const CommandChannel&) = delete;
    CommandChannel& operator=(const CommandChannel&) = delete;

    /// Whom to ask and to let breathe from now on. @p host must outlive the channel or the next
    /// call.
    void SetHost(Host& host) { m_host = &host; }
    [[nodiscard]] Host& GetHost() const { return *m_host; }
    [[nodiscard]] const Clock& GetClock() const { return *m_clock; }

    // The port. Close an open one before opening it with other parameters.

    /// @param portNumber  1 for COM1 and so on
    /// @return 1 if the port is open
    int OpenPort(int portNumber, const PortSettings& settings = {});
    /// @param devicePath  a serial device of this machine
    int OpenPort(const std::string& devicePath, const PortSettings& settings = {});
    void ClosePort();
    [[nodiscard]] int IsPortOpen() const { return m_link ? 1 : 0; }
    /// Of the open port: its COM number, 0 if it was opened by its path or none is open.
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

    // Exchanges of whatever was built in the buffer.

    /// Sends the frame and waits for the answer, twice at the most: a time-out is tried again
    /// after 500 ms and a purge, a damaged answer at once, a refusal not at all.
    /// @return LastResult: 1 or 0. The buffer then holds what came last, zeros after a time-out.
    int Exchange(Answer expected);
    [[nodiscard]] int GetLastResult() const { return LastResult; }
    /// Sends the frame once and keeps whatever comes back, unchecked.
    /// @return 1 if the frame was written
    int SendAndCollect();
    /// Sends a line of text and waits for one, which is then in the buffer; its length is the
    /// data length. The link must be in line mode.
    /// @param text  cut to 256 bytes; CR LF is added unless it ends so
    int SendLine(std::wstring_view text);
    /// Writes text as it is. @return 1 if it was written; no answer is awaited
    int SendText(std::wstring_view text);
    int SendText(std::string_view bytes);

    /// Waits while the host breathes. @return 0 if the host asked for an end
    int Rest(std::chrono::milliseconds duration);

    // Diagnostics, for developers.

    [[nodiscard]] bool IsBusy() const { return m_busy; }
    [[nodiscard]] CommandFault Fault() const { return m_fault; }
    /// What went wrong last and with which request, in words; empty if nothing did.
    [[nodiscard]] std::string LastError() const;
    /// The system's number for what the port failed of last; 0 if it did not.
    [[nodiscard]] int SystemError() const { return m_deviceFaultCode; }
    /// Sees every frame that is sent or taken, on the calling thread. Empty: nobody does.
    void SetFrameObserver(FrameObserver observer) { m_observer = std::move(observer); }

protected:
    /// Marks the channel as busy as long as it lives.
    class BusyGuard
    {
    public:
        explicit BusyGuard(CommandChannel& channel);
        ~BusyGuard();
        BusyGuard(const BusyGuard&) = delete;
        BusyGuard& operator=(const BusyGuard&) = delete;

    private:
        CommandChannel& m_channel;
    };

    void Build(std::uint8_t type, std::span<const std::uint8_t> data);
    void Build(std::uint8_t type, std::initializer_list<std::uint8_t> data = {});
    /// A request of these bytes that is answered by an acknowledgement.
    int Command(std::uint8_t type, std::initializer_list<std::uint8_t> data);
    /// Whether a request may begin; if not, the fault is set.
    bool MayStart();
    /// Takes the built frame as the request; false if it is none.
    bool KeepRequest();
    /// The exchange itself, for a channel that is already marked as busy.
    int ExchangeKept(Answer expected);
    /// Waits for the reader's report and takes what it delivered into the buffer.
    Delivery WaitForAnswer();
    /// A BREAK, and the wait for one frame. @return 1 if it came undamaged
    int BreakAndCollect(std::chrono::milliseconds duration);
    /// After a failure in the middle of several frames: waits until the rest has come, and throws
    /// it away.
    void LetLineSettle();
    /// The same where the receiver may still be sending: tells it to stop, throws away what comes
    /// until it acknowledges, and empties the queues. Leaves the fault as it is. The channel is
    /// not marked as busy.
    void AbortTransmission();
    /// Writes the request that was kept.
    bool WriteRequest();
    /// Before a request: rids the line of answers to earlier ones.
    /// @return false if the host asked for an end
    bool ForgetLateAnswers();
    void Succeed();
    int Fail(CommandFault fault);
    /// The frame in the buffer is not the one expected.
    int FailOnType();

private:
    bool Attempt(Answer expected, bool isLast);
    /// @return false if the line cannot be written to, or the host asked for an end
    bool AwaitRoom();
    bool Judge(Answer expected, ExchangeState state, bool isLast);
    bool PauseAndPurge(bool isLast);
    /// @return false if the host asked for an end
    bool Pause(std::chrono::milliseconds duration);
    bool AwaitQuiet();
    int FailOnWrite();
    void NoteLinkError(SerialLink& link);
    void Observe(Direction direction, std::span<const std::uint8_t> frame);

    Host* m_host;
    const Clock* m_clock;
    const PortNames* m_ports; // null: the defaults
    std::function<std::unique_ptr<SerialDevice>()> m_makeDevice;
    FrameObserver m_observer;
    std::unique_ptr<SerialLink> m_link; // from OpenPort to ClosePort

    // The request is kept aside: an answer overwrites the buffer, and exactly this is resent.
    std::array<std::uint8_t, 261> m_request{};
    std::size_t m_requestLength = 0;

    int m_portNumber = 0;
    int LastResult = 0;
    int m_suspectExchanges = 0; // that an answer which comes too late might disturb
    bool m_busy = false;
    CommandFault m_fault = CommandFault::None;
    std::uint8_t m_faultRequest = 0; // type of the request; 0: it was no frame
    std::uint8_t m_faultAnswer = 0;  // type of the answer that was not expected
    LinkError m_linkError = LinkError::None;
    std::string m_deviceFault;
    int m_deviceFaultCode = 0;
};

} // namespace fieldcore
