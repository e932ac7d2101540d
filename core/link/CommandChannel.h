#pragma once

#include "core/link/ReceiverLine.h"

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <utility>

namespace fieldcore {

/// The rules of an exchange: the frame that was built is sent, the answer is waited for, judged and
/// kept in the same buffer, and what went wrong is tried again where that helps. CCommand adds the
/// requests that the receiver understands.
///
/// An exchange blocks the calling thread for two reply time-outs plus 550 ms at most, and lets
/// the host breathe meanwhile. One that is started from inside such a breath is refused
/// (CommandFault::Busy) and leaves the running one alone. All calls come from one thread.
class CommandChannel : public ReceiverLine
{
public:
    /// What a request is answered with when all is well.
    enum class Answer : int
    {
        Reply = 0, ///< a frame
        Ack = 1,
    };

    explicit CommandChannel(Surroundings surroundings) : ReceiverLine(std::move(surroundings)) {}

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

protected:
    void Build(std::uint8_t type, std::span<const std::uint8_t> data);
    void Build(std::uint8_t type, std::initializer_list<std::uint8_t> data = {});
    /// A request of these bytes that is answered by an acknowledgement.
    int Command(std::uint8_t type, std::initializer_list<std::uint8_t> data);
    /// The exchange itself, for a channel that is already marked as busy.
    int ExchangeKept(Answer expected);
    /// A BREAK, and the wait for one frame. @return 1 if it came undamaged
    int BreakAndCollect(std::chrono::milliseconds duration);
    /// After a failure in the middle of several frames: waits until the rest has come, and throws
    /// it away.
    void LetLineSettle();
    /// The same where the receiver may still be sending: tells it to stop, throws away what comes
    /// until it acknowledges, and empties the queues. Leaves the fault as it is. The channel is
    /// not marked as busy.
    void AbortTransmission();
    /// Before a request: rids the line of answers to earlier ones.
    /// @return false if the host asked for an end
    bool ForgetLateAnswers();
    void Succeed();

private:
    bool Attempt(Answer expected, bool isLast);
    bool Judge(Answer expected, ExchangeState state, bool isLast);
    bool PauseAndPurge(bool isLast);
    bool AwaitQuiet();

    int LastResult = 0;
    int m_suspectExchanges = 0; // that an answer which comes too late might disturb
};

} // namespace fieldcore
