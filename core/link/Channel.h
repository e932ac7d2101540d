#pragma once

#include "core/link/Receiver.h"
#include "core/link/SerialLink.h"
#include "core/platform/AutoResetEvent.h"
#include "core/platform/SimulatedPort.h"
#include "core/settings/Environment.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace fieldcore {

/// What is known of the receiver at the other end of a line, and the lock that guards it.
struct KnownReceiver
{
    mutable std::mutex mutex;
    Receiver receiver; // guarded by mutex
};

/// The line to a receiver: its port, whose turn it is to use it, and what is known of answers that
/// may still come. One owner at a time: everything is said and heard in a ChannelTurn. Any thread.
class Channel
{
public:
    explicit Channel(Environment environment) : m_environment(std::move(environment)) {}
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    [[nodiscard]] const Clock& GetClock() const { return m_environment.GetClock(); }
    [[nodiscard]] std::string PathOf(int portNumber) const;

    [[nodiscard]] bool IsOpen() const
    {
        return OfLink([](const SerialLink&) { return true; });
    }
    /// Whether the calling thread has the turn, or waits for it.
    [[nodiscard]] bool IsMine() const;
    /// An answer was not the one that was due: the line must be quiet before the next request.
    void NoteOdd() { m_isOdd = true; }
    /// Of the open port: its COM number, 0 if it is none or no port is open.
    [[nodiscard]] int PortNumber() const
    {
        return OfLink([this](const SerialLink&) { return m_portNumber; });
    }
    /// Of the open port, bit/s; 0 if none is open.
    [[nodiscard]] std::uint32_t BaudRate() const
    {
        return OfLink([](const SerialLink& link) { return link.AppliedLineSettings().baudRate; });
    }

    /// One for the line: whoever asks the receiver puts the answers here.
    [[nodiscard]] KnownReceiver& Known() { return m_known; }

    /// Sees what passes the ports that are opened, see LineObserver. Empty: nobody does.
    void SetObserver(LineObserver observer);
    /// See SerialLink; empty while no port is open.
    [[nodiscard]] std::vector<std::uint8_t> RecentNoise() const
    {
        return OfLink([](const SerialLink& link) { return link.RecentNoise(); });
    }

    /// The transport's last error; reading it clears it.
    LinkError TakeLinkError();
    /// What the port failed of last.
    [[nodiscard]] PortFault LastFault() const;

private:
    friend class ChannelTurn;

    [[nodiscard]] bool IsMineLocked() const;

    /// Answers that may still come.
    struct Doubt
    {
        int due = 0;                 ///< answers to what was sent
        Clock::Duration dueUntil{};  ///< then they are not expected any more
        Clock::Duration sentAt{};    ///< the last request
        unsigned deliveries = 0;     ///< that are accounted for
        Clock::Duration longest{-1}; ///< an answer took; less than 0: none came yet
    };

    /// A thread that waits for its turn.
    struct Waiter
    {
        std::thread::id thread;
        AutoResetEvent isNext{};
    };

    /// Wakes the one whose turn it is. With m_turns held.
    void TellNext();
    [[nodiscard]] int Open(const std::string& devicePath, const PortSettings& settings, int number);
    void Close();
    void NoteFault(PortFault fault);
    /// What @p read tells of the open port; zero or nothing while none is open.
    template <typename Read>
    std::invoke_result_t<Read, const SerialLink&> OfLink(Read read) const
    {
        const std::scoped_lock lock(m_mutex);
        return m_link ? read(*m_link) : std::invoke_result_t<Read, const SerialLink&>();
    }

    const Environment m_environment;

    mutable std::mutex m_turns;     // guards these
    std::thread::id m_owner;        // of the turn; none: nobody's
    std::vector<Waiter*> m_waiting; // for it, in the order in which they came

    Doubt m_doubt;                     // the owner's alone
    std::atomic<bool> m_isOdd = false; // damaged bytes came, or some that nobody waited for

    std::unique_ptr<SimulatedPort> m_simulated; // the owner's alone; behind the open port, or null
    mutable std::mutex m_mutex;                 // guards these; the owner alone replaces the link
    std::unique_ptr<SerialLink> m_link;
    int m_portNumber = 0;
    LineObserver m_observer;
    PortFault m_fault;

    KnownReceiver m_known;
};

} // namespace fieldcore
