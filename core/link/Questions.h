#pragma once

#include "core/link/Command.h"
#include "core/platform/AutoResetEvent.h"
#include "core/platform/Clock.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace fieldcore {

/// How often something is asked again and again.
struct Rhythm
{
    Clock::Duration interval{}; ///< from the end of a round to the next one
    /// After each round that nobody answered the pause is twice as long, up to this.
    Clock::Duration longestPause{};
};

/// What is asked of the receiver in the background, again and again: status, sky, tilt. A thread of
/// its own asks one question after the other, each when it is due, through a face of its own, so
/// that no window waits for an answer that nobody asked for. Any thread; what asks runs on the
/// thread of the questions and must not wait for another one. Where memory runs out a question
/// counts as not answered, and where there is no thread nothing is asked, see HasThread(); both are
/// tried again.
class Questions
{
public:
    /// How long an answer may take here unless SetReplyTimeout() says otherwise: whoever wants the
    /// line waits for the question under way.
    static constexpr std::chrono::milliseconds kReplyTimeout{600};

    /// One round of a question. @return whether the receiver answered, be it with a refusal
    using Ask = std::function<bool(CCommand& command)>;
    using Id = int;

    /// @param command  whose line is used; must outlive the object
    /// @param hasThread  false: Step() is called by whoever made the object
    explicit Questions(const CCommand& command, bool hasThread = true);
    /// Ends the question under way and the thread.
    ~Questions();
    Questions(const Questions&) = delete;
    Questions& operator=(const Questions&) = delete;

    /// Asks at once and then in the rhythm.
    Id Add(Rhythm rhythm, Ask ask) { return Put({0, rhythm, std::move(ask)}); }
    /// Tells the receiver something, as soon as it can be and in the order of the calls; once more
    /// if it was given up for somebody who wants quiet. Nobody waits for it.
    void Once(std::function<void(CCommand& command)> tell);
    /// Once it is back, the question is not asked any more. One that is under way is given up.
    void Remove(Id id);
    /// Asks as soon as it can be.
    void Hurry(Id id);

    /// false: the system had none to give. The next Add(), Once() or Hurry() asks for it again.
    [[nodiscard]] bool HasThread();

    /// Of the rounds that begin from now on.
    void SetReplyTimeout(std::chrono::milliseconds timeout) { m_timeout = timeout; }

    /// As long as it lives nothing is asked in the background; a question that is under way is
    /// given up. For who opens and closes the port, or changes what the questions look at.
    class Quiet
    {
    public:
        /// Of the questions of @p command; nothing happens if there were none yet.
        explicit Quiet(CCommand& command);
        ~Quiet();
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;

    private:
        Questions* const m_questions;
    };
    /// Whether somebody wants quiet: he may be talking to the user about the link.
    [[nodiscard]] bool IsQuiet() const { return m_quiet > 0; }

    /// The face of the thread that asks: for what lives in a question.
    [[nodiscard]] CCommand& Face() { return m_command; }

    /// Asks what is due, each question once. @return how long until the next one is due
    Clock::Duration Step();

private:
    struct Question
    {
        Id id;
        Rhythm rhythm;
        Ask ask;
        bool isOnce = false;
        Clock::Duration due{};
        int silent = 0; // rounds, one after the other
    };
    /// Never asked anything; gives up what is under way when it has to end.
    class Background final : public SilentHost
    {
    public:
        bool Breathe() override { return !stop; }

        std::atomic<bool> stop = false;
    };

    Id Put(Question question);
    void StartThread();
    void Run();
    void AwaitEnd(std::unique_lock<std::mutex>& lock);

    const Clock& m_clock;
    Background m_host;
    CCommand m_command; // the thread's own face
    const bool m_hasThread;
    AutoResetEvent m_wake;
    AutoResetEvent m_hasEnded; // the thread is about to
    std::atomic<std::chrono::milliseconds> m_timeout = kReplyTimeout;

    std::mutex m_mutex; // guards these
    std::condition_variable m_idle;
    std::list<Question> m_questions;
    Id m_lastId = 0;
    Id m_running = 0;             // 0: none
    std::atomic<int> m_quiet = 0; // read by anyone
    bool m_ends = false;

    std::thread m_thread;
};

} // namespace fieldcore
