#pragma once

#include "core/link/ConnectChoice.h"
#include "core/link/Receiver.h"
#include "core/link/ReceiverTypes.h"
#include "core/link/Replies.h"
#include "core/platform/Clock.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

namespace fieldcore {

class CCommand;
class CConnect;

/// What the user has to be asked before the link goes on.
enum class LinkQuestion
{
    None,
    Reconnect,    ///< Lost, and Bluetooth: whether to connect again
    OtherReceiver ///< Reconnecting: it is another receiver than before
};

/// Keeps a program connected to its receiver: asks its status every two seconds, notices a loss,
/// and connects again when the receiver is back. It acts by itself only in Tick(), which is called
/// a few times a second: by a question in the background, or by the thread of the command channel.
/// What the user wants (connecting, ending, an answer) comes from the thread of the command
/// channel, and keeps the questions in the background quiet meanwhile. Any thread may look.
///
/// The link is lost when the port is gone, or when kMostMissed questions in a row were answered by
/// no good answer. The port that is gone is looked for at every tick; one that is there but does
/// not help is tried again after a pause that grows from kFirstPause to kLongestPause.
///
/// So it is with a cable. A Bluetooth link that is lost stays so until the user was asked whether
/// to connect again. What is reached again is asked who it is: if it is another receiver than
/// before, the user is told, and it is checked as the first one was; one that is not acceptable is
/// not kept. No tick asks the user: it leaves a Question(), and the program calls AskUser() from
/// where a message may be shown.
///
/// It decides how long that counts which the line knows of the receiver: the last values outlive a
/// loss; another receiver, or the end of the connection, leaves nothing of them.
class ReceiverLink
{
public:
    /// How often the status is asked for; how long it waits between attempts after a loss.
    static constexpr std::chrono::seconds kPollInterval{2};
    static constexpr std::chrono::seconds kFirstPause{2};
    static constexpr std::chrono::seconds kPauseGrowth{2};
    static constexpr std::chrono::seconds kLongestPause{10};
    static constexpr int kMostMissed = 3;

    /// What is known of the receiver at the other end of @p command begins anew.
    /// @param command  not owned; must outlive this object
    explicit ReceiverLink(CCommand& command);

    // The thread of the command channel.

    /// Lets the user connect, and checks that the receiver is acceptable.
    /// @param connect  made for the same channel
    /// @return 1 if connected; 0 with the port closed, or with nothing changed while the channel is
    ///         busy
    int Connect(CConnect& connect);
    /// The same where the port is open already: nobody is asked to prepare a receiver.
    int Adopt(CConnect& connect);
    /// Ends the connection, or the attempts to get it back.
    /// @return 0, and nothing changes, while the channel is busy
    int Disconnect();
    /// Asks what Question() says, through the channel's host, and does as the user says: connects
    /// again, or takes the other receiver if it is acceptable. Not from inside a request. What he
    /// does not want ends the connection.
    /// @param connect  made for Target() and the same channel, to reconnect
    /// @return 1 if connected; 0 too with nothing changed while the channel is busy, or if there is
    ///         no question
    int AskUser(CConnect& connect);

    /// Does what is due.
    void Tick() { Tick(m_command); }
    /// The same on another thread. @param asking  its face of the channel
    void Tick(CCommand& asking);

    // Any thread.

    [[nodiscard]] LinkState State() const { return Copied(m_heard.link); }
    /// What AskUser() would ask; the link waits for it.
    [[nodiscard]] LinkQuestion Question() const { return Copied(m_question); }
    /// Where the receiver is, or was last; its device path or port number.
    [[nodiscard]] ConnectTarget Target() const { return Copied(m_target); }
    /// What is known of the receiver; who it is outlives the connection.
    [[nodiscard]] Receiver Heard() const { return Copied(m_heard); }
    /// Whoever asks in rounds puts it back, from the thread that ticks. The state of the link, the
    /// status, what is in view and the tilt stay as they are: others ask for them meanwhile.
    void Put(Receiver heard);

    /// How many times a connection has been made: another number may be another receiver.
    [[nodiscard]] unsigned Connections() const { return m_connections; }
    /// How many receivers there have been: one that comes back behind itself counts once.
    [[nodiscard]] unsigned Receivers() const { return m_receivers; }

    /// Told when the state or the status has changed, on the thread that changed it. It may look,
    /// but not act. Empty: nobody. While nothing ticks.
    void SetObserver(std::function<void()> observer) { m_observer = std::move(observer); }

private:
    template <typename Value>
    [[nodiscard]] Value Copied(const Value& value) const
    {
        const std::scoped_lock lock(m_mutex);
        return value;
    }
    void KeepStatus(TimedValue<StatusReply> status);
    void Poll(CCommand& asking);
    void Lose(CCommand& asking, Clock::Duration pause);
    void TryAgain(CCommand& asking);
    [[nodiscard]] bool IsOther(CCommand& asking, const SerialReply& serial);
    int MeetOther(CConnect& connect);
    void Meet(ReceiverIdentity identity);
    void Resume();
    void GiveUp(CCommand& asking);
    void Forget();
    [[nodiscard]] bool IsPortThere() const;
    void Enter(LinkState state, LinkQuestion question = LinkQuestion::None);

    CCommand& m_command;
    SupportedTypeFlags m_supported; // by whoever connected last
    ReceiverIdentity m_other;       // that is asked about
    int m_missed = 0;               // questions without a good answer, one after the other
    Clock::Duration m_due{};        // of the next question or attempt
    Clock::Duration m_pause{};
    bool m_wasAway = false; // the port, when it was last looked for
    std::atomic<unsigned> m_connections = 0;
    std::atomic<unsigned> m_receivers = 0;
    std::atomic<bool> m_isTicking = false;
    std::function<void()> m_observer;

    // Changed while nobody else acts; guarded for those who look.
    std::mutex& m_mutex; // of the line
    Receiver& m_heard;   // the line's
    ConnectTarget m_target;
    LinkQuestion m_question = LinkQuestion::None;
};

} // namespace fieldcore
