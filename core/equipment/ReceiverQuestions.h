#pragma once

#include "core/link/Receiver.h"

#include <chrono>
#include <memory>

namespace fieldcore {

class CCommand;

/// Asks a connected receiver how it is, and puts what it says into a Receiver. What it does not
/// tell leaves the value of before. The thread of the command channel; each question blocks for its
/// exchanges.
class ReceiverQuestions
{
public:
    /// @param command  not owned, must outlive the object, as must @p clock
    /// @param clock    that is set by the receiver's time; null: the system's, if that is allowed
    explicit ReceiverQuestions(CCommand& command, Clock* clock = nullptr);
    ~ReceiverQuestions();
    ReceiverQuestions(const ReceiverQuestions&) = delete;
    ReceiverQuestions& operator=(const ReceiverQuestions&) = delete;

    /// Another connection: whether its time can be trusted is judged anew.
    void Begin();

    /// Asks for what is not known yet of who it is.
    /// @return whether all of it is known now
    bool AskIdentity(Receiver& receiver);

    // Each of these answers whether the receiver speaks: one that refuses does.

    bool AskStatus(Receiver& receiver);
    bool AskPosition(Receiver& receiver);
    /// Judges the time by the position that came last, and asks for it where that is needed. A
    /// receiver that does not know the time itself is not asked for it.
    bool AskTime(Receiver& receiver);
    bool AskPowerSource(Receiver& receiver);
    /// The satellites that it tracks.
    bool AskTracked(Receiver& receiver);

    /// Whether the receiver answered the last question in whatever way.
    [[nodiscard]] bool IsAnswering() const;

private:
    class Judge;

    void Take(Receiver& receiver, std::chrono::local_seconds jst, int week, double secondsOfWeek,
              Clock::Duration at) const;

    CCommand& m_command;
    Clock* const m_clock;
    std::unique_ptr<Judge> m_judge;
};

} // namespace fieldcore
