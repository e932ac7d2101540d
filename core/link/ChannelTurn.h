#pragma once

#include "core/link/Channel.h"
#include "core/link/CommandFault.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <span>
#include <string_view>

namespace fieldcore {

/// What a request is answered with when all is well.
enum class Answer : int
{
    Reply = 0,    ///< a frame
    Ack = 1,      ///< a lone byte; the request changes the receiver
    Anything = 2, ///< whatever comes, once and unchecked; silence is none either
};

/// The turn of one thread on the channel, from its beginning to its end: the only way to say
/// something to the receiver and to hear it. Another thread waits meanwhile; the same one is
/// refused (from inside a breath of its host: CommandFault::Busy).
///
/// A wait lets the host breathe about every 50 ms and ends when the host asks for it. A request is
/// sent twice at the most, and takes two reply time-outs and 550 ms at the most.
///
/// Every request expects one answer. One that is given up may still come and would be taken for the
/// answer to the next request, whose own answer for that of the one after it, and so on. So what
/// is due is counted, and before a request is sent the line must have been quiet: for four
/// characters where the bytes take time, for as long as an answer takes while one is due or after
/// something odd, and where the request changes the receiver until nothing is due any more.
class ChannelTurn
{
public:
    /// @param host     breathes; must outlive the turn, as must the next
    /// @param answer   gets each answer, at its start; zeros where nothing came
    /// @param timeout  for an answer; 0: that of the port
    ChannelTurn(Channel& channel, Host& host, std::span<std::uint8_t> answer = {},
                std::chrono::milliseconds timeout = {});
    ~ChannelTurn();
    ChannelTurn(const ChannelTurn&) = delete;
    ChannelTurn& operator=(const ChannelTurn&) = delete;

    /// Whether it is this thread's turn; if not, Fault() is Busy or Cancelled.
    [[nodiscard]] bool IsMine() const { return m_isMine; }
    /// The same on an open port; else Fault() is NotOpen.
    [[nodiscard]] bool MayAsk();
    /// What went wrong last; None after a request that succeeded.
    [[nodiscard]] CommandFault Fault() const { return m_fault; }
    /// What came last.
    [[nodiscard]] const Delivery& Last() const { return m_last; }
    /// Lets the host breathe between frames that come without a pause. @return false, with the
    /// fault set, if it asked for an end
    bool Breathe();

    // The port. With the turn only.

    int Open(const std::string& devicePath, const PortSettings& settings, int number);
    void Close() { m_channel.Close(); }
    [[nodiscard]] SerialLink& Link() const { return *m_channel.m_link; }

    // What follows needs an open port.

    /// Sends a request and waits for its answer: a time-out is tried again after 500 ms and a
    /// purge, a damaged answer at once, a refusal not at all.
    /// @param request  a frame of at most 261 bytes; it is kept, so it may lie where the answer
    /// goes
    /// @return 1 or 0
    int Ask(std::span<const std::uint8_t> request, Answer expected);
    /// Sends without waiting for an answer.
    /// @param unit     what it is
    /// @param changes  it changes the receiver: nothing may be due before
    /// @return whether it was sent
    bool Send(std::span<const std::uint8_t> bytes, LineUnit unit = LineUnit::Frame,
              bool changes = false);
    /// Sends a BREAK of @p duration. @return whether it was sent
    bool SendBreak(std::chrono::milliseconds duration);
    /// Waits for an answer, or for another frame of one. Of a wait that ends without one the state
    /// is TimedOut and Fault() says why.
    Delivery Next();
    /// The same where only a frame, or a line, will do. @return whether one came
    bool NextFrame();
    /// Lets frames wait for one another to be taken, see SerialLink, until the turn ends.
    void TakeFramesInTurn();
    /// After a frame that is not the one that was due: what still comes is nobody's answer.
    void NoteOdd() { m_channel.NoteOdd(); }
    /// The receiver may still be sending: tells it to stop, throws away what comes until it
    /// acknowledges, and empties the queues. Leaves the fault as it is unless the link is lost.
    void Abort();
    /// Waits while the host breathes. @return false if it asked for an end
    bool Pause(std::chrono::milliseconds duration);
    /// Empties the queues and forgets what is half received. @return 1, 0 if the port failed
    int Purge();

    /// Always false.
    bool Fail(CommandFault fault);
    void Succeed() { m_fault = CommandFault::None; }

private:
    [[nodiscard]] Clock::Duration Now() const { return m_channel.GetClock().Steady(); }
    bool Acquire();
    bool AwaitQuiet(bool changes);
    [[nodiscard]] Clock::Duration QuietUntil(const Arrivals& arrivals, bool changes) const;
    bool Write(std::span<const std::uint8_t> bytes, LineUnit unit);
    void CountSent();
    void CountArrived(const Arrivals& arrivals);
    bool Judge(Answer expected, bool isLast);
    bool PauseAndPurge(bool isLast);
    bool AwaitAbort();
    bool Check(SerialLink::WaitOutcome outcome);
    bool FailOnWrite();

    Channel& m_channel;
    Host& m_host;
    const std::span<std::uint8_t> m_answer;
    std::chrono::milliseconds m_timeout{};
    Clock::Duration m_deadline{}; // of the request under way; 0: none
    std::array<std::uint8_t, 261> m_request{};
    CommandFault m_fault = CommandFault::None;
    Delivery m_last;
    bool m_isMine = false;
    bool m_handsOver = false;
};

} // namespace fieldcore
