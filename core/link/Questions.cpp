#include "core/link/Questions.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <system_error>

namespace fieldcore {

namespace {

constexpr Clock::Duration kLongestWait = std::chrono::hours(1);
constexpr int kMostDoublings = 16;
constexpr Clock::Duration kPauseWithoutMemory = std::chrono::seconds(1);

} // namespace

Questions::Questions(const CCommand& command, bool hasThread)
    : m_clock(command.GetClock()), m_command(command, m_host), m_hasThread(hasThread)
{
    StartThread();
}

bool Questions::HasThread()
{
    const std::scoped_lock lock(m_mutex);
    return m_thread.joinable();
}

void Questions::StartThread()
{
    if (!m_hasThread || m_thread.joinable()) {
        return;
    }
    try {
        m_thread = std::thread(&Questions::Run, this);
    } catch (const std::system_error&) {
        return;
    }
}

Questions::~Questions()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_ends = true;
        m_host.stop = true;
    }
    m_wake.Set();
    if (m_thread.joinable()) {
        static_cast<void>(m_clock.Wait(m_hasEnded, kLongestWait)); // a clock sees who waits in it
        m_thread.join();
    }
}

void Questions::Once(std::function<void(CCommand& command)> tell)
{
    Put({0,
         {},
         [tell = std::move(tell)](CCommand& command) {
             tell(command);
             return true;
         },
         true});
}

Questions::Id Questions::Put(Question question)
{
    const std::scoped_lock lock(m_mutex);
    StartThread();
    question.id = ++m_lastId;
    question.due = m_clock.Steady();
    m_questions.push_back(std::move(question));
    m_wake.Set();
    return m_lastId;
}

void Questions::Remove(Id id)
{
    std::unique_lock lock(m_mutex);
    if (m_running == id) {
        ++m_quiet; // or it could be asked anew before this thread has seen its end
        AwaitEnd(lock);
        --m_quiet;
        m_wake.Set();
    }
    m_questions.remove_if([id](const Question& question) { return question.id == id; });
}

void Questions::Hurry(Id id)
{
    const std::scoped_lock lock(m_mutex);
    StartThread();
    for (Question& question : m_questions) {
        if (question.id == id) {
            question.due = m_clock.Steady();
            question.silent = 0;
        }
    }
    m_wake.Set();
}

Questions::Quiet::Quiet(CCommand& command)
    : m_questions(command.HasBackground() ? &command.Background() : nullptr)
{
    if (m_questions != nullptr) {
        std::unique_lock lock(m_questions->m_mutex);
        ++m_questions->m_quiet;
        m_questions->AwaitEnd(lock);
    }
}

Questions::Quiet::~Quiet()
{
    if (m_questions != nullptr) {
        {
            const std::scoped_lock lock(m_questions->m_mutex);
            --m_questions->m_quiet;
        }
        m_questions->m_wake.Set();
    }
}

/// Gives up the question under way and waits until it has ended; not for the one that calls.
void Questions::AwaitEnd(std::unique_lock<std::mutex>& lock)
{
    if (std::this_thread::get_id() == m_thread.get_id()) {
        return;
    }
    const Id ending = m_running;
    m_host.stop = ending != 0;
    m_idle.wait(lock, [&] { return m_running == 0 || m_running != ending; });
}

Clock::Duration Questions::Step()
{
    std::unique_lock lock(m_mutex);
    for (auto at = m_questions.begin(); at != m_questions.end() && m_quiet == 0 && !m_ends;) {
        if (at->due > m_clock.Steady()) {
            ++at;
            continue;
        }
        Question& question = *at; // stays in its place: whoever removes it waits for its end
        m_running = question.id;
        m_host.stop = false; // what was to end has ended
        lock.unlock();
        m_command.SetReplyTimeout(m_timeout);
        bool isAnswered = false;
        bool hasMemory = true;
        try {
            isAnswered = question.ask(m_command) || m_host.stop;
        } catch (const std::bad_alloc&) {
            hasMemory = false;
        }
        lock.lock();
        question.silent = isAnswered ? 0 : std::min(question.silent + 1, kMostDoublings);
        const Clock::Duration pause =
            std::min(question.rhythm.interval * (1 << question.silent),
                     std::max(question.rhythm.longestPause, question.rhythm.interval));
        question.due =
            m_clock.Steady() + (hasMemory ? pause : std::max(pause, kPauseWithoutMemory));
        m_running = 0;
        m_idle.notify_all();
        at = question.isOnce && hasMemory && !m_host.stop ? m_questions.erase(at) : std::next(at);
    }
    Clock::Duration wait = kLongestWait;
    for (const Question& question : m_questions) {
        wait = std::min(wait, question.due - m_clock.Steady());
    }
    return m_quiet > 0 ? kLongestWait : std::max(wait, Clock::Duration::zero());
}

void Questions::Run()
{
    for (;;) {
        const Clock::Duration wait = Step();
        {
            const std::scoped_lock lock(m_mutex);
            if (m_ends) {
                m_hasEnded.Set();
                return;
            }
        }
        static_cast<void>(m_clock.Wait(m_wake, wait));
    }
}

} // namespace fieldcore
