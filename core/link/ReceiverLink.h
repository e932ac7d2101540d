#pragma once

#include "core/link/ConnectSequence.h"
#include "core/link/ReceiverTypes.h"
#include "core/link/Replies.h"
#include "core/platform/Clock.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace fieldcore {

class CCommand;
class CConnect;

enum class LinkState
{
    NotConnected,
    Connecting, ///< the user connects
    Connected,
    Lost,        ///< waiting to try again
    Reconnecting ///< trying
};

/// What the user has to be asked before the link goes on.
enum class LinkQuestion
{
    None,
    Reconnect,    ///< Lost, and Bluetooth: whether to connect again
    OtherReceiver ///< Reconnecting: it is another receiver than before
};

/// What the state is called, for the user.
[[nodiscard]] const wchar_t* LinkStateText(LinkState state);

/// How old a value is, for the user: seconds, then minutes; "--" for nothing.
[[nodiscard]] std::wstring AgeText(std::optional<Clock::Duration> age);

/// A value with the time at which the receiver gave it.
template <typename Value>
struct TimedValue
{
    Value value;
    Clock::Duration at; ///< of the channel's clock
};

/// Which receiver it is that a program is connected to.
struct LinkedReceiver
{
    std::wstring model;  ///< its name; the type number if it has none
    std::wstring type;   ///< as it calls itself
    std::wstring serial; ///< the long one; empty if it tells none

    /// Model and serial number, for the user.
    [[nodiscard]] std::wstring Name() const;
};

/// Keeps a program connected to its receiver: asks its status every two seconds, notices a loss,
/// and connects again when the receiver is back. It acts only in Tick(), which the program calls a
/// few times a second, and does nothing while the channel is busy or somebody holds it. What it
/// does blocks for an exchange at most, with a shorter reply time-out than the dialogs have. The
/// thread that uses the channel.
///
/// A link is lost when the far end hangs up, or when kMostMissed questions one after the other got
/// no good answer. The port that is gone is looked for at every tick; one that is there but does
/// not help is tried again after a pause that grows from kFirstPause to kLongestPause.
///
/// So it is with a cable. A Bluetooth link that is lost stays so until the user was asked whether
/// to connect again. What is reached again is asked who it is: if it is another receiver than
/// before, the user is told, and it is checked as the first one was; one that is not acceptable is
/// not kept. No tick asks the user: it leaves a Question(), and the program calls AskUser() from
/// where a message may be shown.
class ReceiverLink
{
public:
    static constexpr std::chrono::seconds kPollInterval{2};
    static constexpr std::chrono::seconds kFirstPause{2};
    static constexpr std::chrono::seconds kPauseGrowth{2};
    static constexpr std::chrono::seconds kLongestPause{10};
    static constexpr std::chrono::milliseconds kReplyTimeout{600}; ///< at most, while polling
    static constexpr int kMostMissed = 3;
    /// From this age on a value is stale.
    static constexpr std::chrono::seconds kStaleAge{5};

    /// Keeps the link off the channel as long as it lives: for a dialog that uses it.
    class Hold
    {
    public:
        explicit Hold(ReceiverLink& link) : m_link(link) { ++m_link.m_holds; }
        ~Hold() { --m_link.m_holds; }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        ReceiverLink& m_link;
    };

    /// @param command  not owned; must outlive this object
    explicit ReceiverLink(CCommand& command) : m_command(command) {}

    /// Lets the user connect, and checks that the receiver is acceptable.
    /// @param connect  made for @p target and the same channel
    /// @return 1 if connected; 0 with the port closed, or with nothing changed while the channel is
    ///         busy
    int Connect(CConnect& connect, const ConnectTarget& target);
    /// The same where the port is open already: nobody is asked to prepare a receiver.
    int Adopt(CConnect& connect, const ConnectTarget& target);
    /// Ends the connection, or the attempts to get it back.
    /// @return 0, and nothing changes, while the channel is busy
    int Disconnect();
    /// Does what is due.
    void Tick();
    /// What AskUser() would ask; the link waits for it.
    [[nodiscard]] LinkQuestion Question() const { return m_question; }
    /// Asks that through the channel's host and does as the user says: connects again, or takes the
    /// other receiver if it is acceptable. Not from inside a request. What he does not want ends
    /// the connection.
    /// @param connect  made for Target() and the same channel, to reconnect
    /// @return 1 if connected; 0 too with nothing changed while the channel is busy or held, or if
    ///         there is no question
    int AskUser(CConnect& connect);

    [[nodiscard]] LinkState State() const { return m_state; }
    /// Where the receiver is, or was last; its device path or port number.
    [[nodiscard]] const ConnectTarget& Target() const { return m_target; }
    /// Who answers, or answered last; nothing before the first connection, or if it did not tell.
    [[nodiscard]] const std::optional<LinkedReceiver>& Receiver() const { return m_receiver; }
    /// The last status; nothing before the first, or since another connection was made.
    [[nodiscard]] const std::optional<TimedValue<StatusReply>>& Status() const { return m_status; }
    /// How old the status is; nothing without one.
    [[nodiscard]] std::optional<Clock::Duration> StatusAge() const;
    [[nodiscard]] bool IsStatusStale() const;
    /// How long until the next attempt to get the link back; nothing unless lost, and while the
    /// user is to be asked; zero if only the port is waited for.
    [[nodiscard]] std::optional<Clock::Duration> UntilNextAttempt() const;

    /// Whether a dialog uses the channel: polls leave it alone.
    [[nodiscard]] bool IsHeld() const { return m_holds > 0; }
    /// How many times a connection has been made: another number may be another receiver.
    [[nodiscard]] unsigned Connections() const { return m_connections; }

    /// Told when the state or the status has changed, on the calling thread. It may ask, but not
    /// act. Empty: nobody.
    void SetObserver(std::function<void()> observer) { m_observer = std::move(observer); }

private:
    void Poll();
    void Lose(Clock::Duration pause);
    void TryAgain();
    [[nodiscard]] int Reopen(SerialReply& serial);
    [[nodiscard]] bool IsOther(const SerialReply& serial);
    int MeetOther(CConnect& connect);
    void Resume();
    void GiveUp();
    [[nodiscard]] bool IsPortThere() const;
    void Enter(LinkState state);
    void ShortenTimeout();

    CCommand& m_command;
    ConnectTarget m_target;
    SupportedTypeFlags m_supported; // by whoever connected last
    std::optional<LinkedReceiver> m_receiver;
    LinkedReceiver m_other; // that is asked about
    LinkQuestion m_question = LinkQuestion::None;
    LinkState m_state = LinkState::NotConnected;
    std::optional<TimedValue<StatusReply>> m_status;
    Clock::Duration m_due{}; // of the next question or attempt
    Clock::Duration m_pause{};
    bool m_wasAway = false; // the port, when it was last looked for
    int m_missed = 0;       // questions without a good answer, one after the other
    int m_holds = 0;
    unsigned m_connections = 0;
    bool m_isTicking = false;
    std::function<void()> m_observer;
};

} // namespace fieldcore
