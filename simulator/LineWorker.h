#pragma once

#include "core/platform/Clock.h"
#include "simulator/Port.h"
#include "simulator/RequestParser.h"
#include "simulator/Responder.h"
#include "simulator/Transmitter.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace fieldcore::simulator {

/// The thread behind the port: takes in requests, sends what is due, and sleeps in between until
/// a byte, a call or the next due moment comes. Everything on the line happens on this thread;
/// other threads hand it calls.
class LineWorker
{
public:
    /// @param clock, responder, port  must outlive the worker
    LineWorker(const Scenario& scenario, const Clock& clock, Responder& responder, Port& port);
    ~LineWorker(); ///< stops the thread
    LineWorker(const LineWorker&) = delete;
    LineWorker& operator=(const LineWorker&) = delete;

    [[nodiscard]] bool Start(std::string& error);

    // Any thread from here on.
    void Send(Bytes bytes); ///< returns at once
    // Both return when it is done; on the thread itself, too.
    void HangUp();
    bool Plug();

private:
    void Run();
    void Sleep();
    [[nodiscard]] std::optional<Clock::Duration> NextDue() const;
    void Read();
    /// Whether the controller speaks at the receiver's rate, so far as that counts.
    [[nodiscard]] bool IsHeard();
    void TakeIn(std::uint8_t byte);
    void Write();
    /// Sends what the current piece may send.
    /// @return false if a part of it must wait
    [[nodiscard]] bool WriteCurrent(Clock::Duration now);
    void Lose(Clock::Duration backAfter);
    bool PlugNow();

    /// Runs @p call on the thread; waits for it unless called there.
    void Call(const std::function<void()>& call);
    void RunCalls();
    void Post(std::function<void()> call);

    const Clock& m_clock;
    Responder& m_responder;
    const bool m_paced;
    const bool m_checksRate;

    // The thread's own.
    Port& m_port;
    RequestParser m_parser;
    Transmitter m_transmitter;
    std::uint32_t m_baudRate;     // as commands have set it
    std::uint32_t m_heardRate;    // at which the receiver listens, which follows a little later
    Clock::Duration m_rateFrom{}; // when it does
    bool m_pipeFull = false;
    bool m_sendsOn = false;       // what is being sent belongs to an answer that goes on
    Clock::Duration m_lastByte{}; // when the last byte of a request came
    std::optional<Clock::Duration> m_plugDue; // when the port comes back

    std::thread m_thread;
    std::mutex m_mutex;
    std::condition_variable m_called;
    std::vector<std::function<void()>> m_calls; // guarded by m_mutex
    bool m_stopping = false;                    // guarded by m_mutex
};

} // namespace fieldcore::simulator
