#pragma once

#include "core/link/ConnectSequence.h"
#include "core/link/Receiver.h"
#include "core/link/ReceiverTypes.h"
#include "core/platform/Clock.h"

#include <chrono>
#include <functional>
#include <optional>

namespace fieldcore {

class CCommand;
class CConnect;

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
/// What is reached again is asked who it is. If it is another receiver than before, the user is
/// told so through the channel's host, and it is checked as the first one was: one that is not
/// acceptable is not kept. A tick lasts, then, until the user has read that.
///
/// It owns what is known of the receiver. The last values outlive a loss; another receiver, or the
/// end of the connection, leaves nothing of them.
class ReceiverLink
{
public:
    static constexpr std::chrono::seconds kPollInterval{2};
    static constexpr std::chrono::seconds kFirstPause{2};
    static constexpr std::chrono::seconds kPauseGrowth{2};
    static constexpr std::chrono::seconds kLongestPause{10};
    static constexpr std::chrono::milliseconds kReplyTimeout{600}; ///< at most, while polling
    static constexpr int kMostMissed = 3;

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

    [[nodiscard]] LinkState State() const { return m_heard.link; }
    /// Where the receiver is, or was last; its device path or port number.
    [[nodiscard]] const ConnectTarget& Target() const { return m_target; }
    /// What is known of the receiver; who it is outlives the connection. Whoever else asks it puts
    /// the answers here.
    [[nodiscard]] const Receiver& Heard() const { return m_heard; }
    [[nodiscard]] Receiver& Heard() { return m_heard; }
    /// How long until the next attempt to get the link back; nothing unless lost, zero if only the
    /// port is waited for.
    [[nodiscard]] std::optional<Clock::Duration> UntilNextAttempt() const;

    /// Whether a dialog uses the channel: polls leave it alone.
    [[nodiscard]] bool IsHeld() const { return m_holds > 0; }
    /// How many times a connection has been made: another number may be another receiver.
    [[nodiscard]] unsigned Connections() const { return m_connections; }
    /// How many receivers there have been: one that comes back behind itself counts once.
    [[nodiscard]] unsigned Receivers() const { return m_receivers; }

    /// Told when the state or the status has changed, on the calling thread. It may ask, but not
    /// act. Empty: nobody.
    void SetObserver(std::function<void()> observer) { m_observer = std::move(observer); }

private:
    void Poll();
    void Lose(Clock::Duration pause);
    void TryAgain();
    [[nodiscard]] int Reopen(StatusReply& status, SerialReply& serial);
    [[nodiscard]] int CheckIdentity(const SerialReply& serial);
    void Meet(ReceiverIdentity identity);
    void Forget();
    [[nodiscard]] bool IsPortThere() const;
    void Enter(LinkState state);
    void ShortenTimeout();

    CCommand& m_command;
    ConnectTarget m_target;
    SupportedTypeFlags m_supported; // by whoever connected last
    Receiver m_heard;
    Clock::Duration m_due{}; // of the next question or attempt
    Clock::Duration m_pause{};
    bool m_wasAway = false; // the port, when it was last looked for
    int m_missed = 0;       // questions without a good answer, one after the other
    int m_holds = 0;
    unsigned m_connections = 0;
    unsigned m_receivers = 0;
    bool m_isTicking = false;
    std::function<void()> m_observer;
};

} // namespace fieldcore
