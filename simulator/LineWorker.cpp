#include "simulator/LineWorker.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace fieldcore::simulator {

namespace {

using std::chrono::milliseconds;

// A request that stops in the middle is given up after this silence, so that the next one starts
// clean.
constexpr milliseconds kRequestGap{500};

// What is still in the pipe when the port goes away is lost. Bytes that a rule lets through before
// its hang-up are to arrive, if somebody reads them.
constexpr milliseconds kLastBytesLimit{200};

// The answer to a change of the rate still goes out at the old one.
constexpr milliseconds kRateChange{200};

// A pipe that somebody emptied without reading it does not tell; it is tried again after this.
constexpr milliseconds kFullPipePause{50};

// The worker whose thread this is: a script may call its own simulator.
thread_local const LineWorker* t_running = nullptr;

timespec ToTimespec(Clock::Duration duration)
{
    const Clock::Duration positive = std::max(duration, Clock::Duration::zero());
    const auto whole = std::chrono::floor<std::chrono::seconds>(positive);
    timespec value{};
    value.tv_sec = static_cast<std::time_t>(whole.count());
    value.tv_nsec = static_cast<long>((positive - whole).count());
    return value;
}

} // namespace

LineWorker::LineWorker(const Scenario& scenario, const Clock& clock, Responder& responder)
    : m_clock(clock), m_responder(responder), m_paced(scenario.pacing == Pacing::Baud),
      m_checksRate(scenario.checksRate), m_transmitter(m_paced, scenario.baudRate),
      m_baudRate(scenario.baudRate), m_heardRate(scenario.baudRate)
{}

LineWorker::~LineWorker()
{
    if (m_thread.joinable()) {
        {
            const std::scoped_lock lock(m_mutex);
            m_stopping = true;
        }
        Wake();
        m_thread.join();
    }
    if (m_wakeUp >= 0) {
        close(m_wakeUp);
    }
}

bool LineWorker::Start(const std::filesystem::path& link, std::string& error)
{
    if (m_wakeUp < 0) {
        m_wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    }
    if (m_wakeUp < 0) {
        error = "no event descriptor: " + std::generic_category().message(errno);
        return false;
    }
    if ((m_terminal.Link().empty() && !m_terminal.SetLink(link, error)) ||
        !m_terminal.Open(error)) {
        return false;
    }
    m_thread = std::thread([this] { Run(); });
    return true;
}

void LineWorker::Run()
{
    t_running = this;
    for (;;) {
        Sleep();
        RunCalls();
        {
            const std::scoped_lock lock(m_mutex);
            if (m_stopping) {
                return;
            }
        }
        if (m_plugDue && m_clock.Steady() >= *m_plugDue) {
            PlugNow();
        }
        Read();
        Write();
    }
}

std::optional<Clock::Duration> LineWorker::NextDue() const
{
    std::optional<Clock::Duration> due = m_plugDue;
    const auto consider = [&](std::optional<Clock::Duration> other) {
        if (other && (!due || *other < *due)) {
            due = other;
        }
    };
    if (m_pipeFull) {
        consider(m_clock.Steady() + kFullPipePause);
    } else if (m_transmitter.IsEmpty() && m_responder.GoesOn()) {
        consider(m_clock.Steady());
    } else {
        consider(m_transmitter.NextDue());
    }
    if (!m_parser.Begun().empty()) {
        consider(m_lastByte + kRequestGap);
    }
    return due;
}

void LineWorker::Sleep()
{
    std::array<pollfd, 2> waits{};
    waits[0] = {m_wakeUp, POLLIN, 0};
    waits[1] = {m_terminal.Master(), POLLIN, 0}; // a descriptor of -1 is not looked at
    if (m_pipeFull) {
        waits[1].events |= POLLOUT;
    }
    const std::optional<Clock::Duration> due = NextDue();
    timespec limit{};
    if (due) {
        limit = ToTimespec(m_clock.RealTime(*due - m_clock.Steady()));
    }
    const int events = ppoll(waits.data(), waits.size(), due ? &limit : nullptr, nullptr);
    if ((waits[0].revents & POLLIN) != 0) {
        eventfd_t ignored = 0;
        eventfd_read(m_wakeUp, &ignored);
    }
    m_pipeFull = m_pipeFull && events != 0 && (waits[1].revents & POLLOUT) == 0;
}

void LineWorker::Read()
{
    std::array<std::uint8_t, 4096> bytes{};
    const ssize_t count =
        m_terminal.IsOpen() ? read(m_terminal.Master(), bytes.data(), bytes.size()) : -1;
    if (count > 0 && !IsHeard()) {
        const std::span<const std::uint8_t> noise(bytes.data(), static_cast<std::size_t>(count));
        static_cast<void>(
            m_responder.Answer({Request::Kind::Damaged, {noise.begin(), noise.end()}}));
        return;
    }
    for (ssize_t i = 0; i < count && m_terminal.IsOpen(); ++i) {
        TakeIn(bytes[static_cast<std::size_t>(i)]);
    }
    if (count > 0) {
        m_lastByte = m_clock.Steady();
    } else if (!m_parser.Begun().empty() && m_clock.Steady() >= m_lastByte + kRequestGap) {
        if (const std::optional<Request> rest = m_parser.GiveUp()) {
            m_transmitter.Queue(m_responder.Answer(*rest), m_clock.Steady());
        }
    }
}

bool LineWorker::IsHeard()
{
    if (m_clock.Steady() >= m_rateFrom) {
        m_heardRate = m_baudRate;
    }
    return !m_checksRate || m_terminal.ControllerRate() == m_heardRate;
}

void LineWorker::TakeIn(std::uint8_t byte)
{
    const std::optional<Request> request = m_parser.Feed(byte);
    if (!m_parser.Begun().empty()) {
        if (const std::optional<Piece> cut = m_responder.CutRequest(m_parser.Begun())) {
            Lose(cut->backAfter);
            return;
        }
    }
    if (!request) {
        return;
    }
    Pieces pieces = m_responder.Answer(*request);
    if (request->kind != Request::Kind::Damaged) {
        if (m_sendsOn) {
            m_transmitter.DropUnsent();
        }
        m_sendsOn = m_responder.GoesOn();
    }
    if (!m_terminal.IsOpen()) {
        return; // a script has hung up
    }
    if (!pieces.empty()) {
        // The pseudo-terminal brought the request at once; on a cable it would still be coming.
        pieces.front().wait += m_transmitter.LineTime(request->bytes.size());
    }
    m_transmitter.Queue(std::move(pieces), m_clock.Steady());
    if (m_responder.BaudRate() != m_baudRate) {
        m_baudRate = m_responder.BaudRate();
        m_rateFrom = m_clock.Steady() + kRateChange;
        m_transmitter.SetBaudRate(m_baudRate, m_rateFrom);
    }
}

void LineWorker::Write()
{
    // One frame a turn: between two of them the receiver listens.
    if (!m_pipeFull && m_transmitter.IsEmpty() && m_responder.GoesOn()) {
        m_transmitter.Queue(m_responder.Next(), m_clock.Steady());
    }
    while (!m_pipeFull && m_terminal.IsOpen()) {
        const Clock::Duration now = m_clock.Steady();
        const Piece* const piece = m_transmitter.Current(now);
        if (piece == nullptr || !WriteCurrent(now)) {
            return;
        }
        if (piece->hangsUp) {
            m_terminal.WaitUntilRead(kLastBytesLimit);
            Lose(piece->backAfter);
            return;
        }
        m_transmitter.Next(now);
    }
}

bool LineWorker::WriteCurrent(Clock::Duration now)
{
    const Piece& piece = *m_transmitter.Current(now);
    if (m_transmitter.Begin() && !piece.bytes.empty()) {
        m_responder.RecordSent(piece.bytes);
    }
    const std::span<const std::uint8_t> due = m_transmitter.DueBytes(now);
    if (!due.empty()) {
        const ssize_t count = write(m_terminal.Master(), due.data(), due.size());
        m_transmitter.Sent(count > 0 ? static_cast<std::size_t>(count) : 0);
        m_pipeFull = count < static_cast<ssize_t>(due.size());
    }
    return m_transmitter.IsCurrentDone();
}

void LineWorker::Lose(Clock::Duration backAfter)
{
    m_terminal.Close();
    m_responder.StopAnswer();
    m_transmitter.Clear();
    m_pipeFull = false;
    m_parser = RequestParser();
    m_plugDue.reset();
    if (backAfter >= Clock::Duration::zero()) {
        m_plugDue = m_clock.Steady() + backAfter;
    }
}

bool LineWorker::PlugNow()
{
    m_plugDue.reset();
    std::string ignored; // the path stays away, which is what the controller sees
    return m_terminal.Open(ignored);
}

void LineWorker::Send(Bytes bytes)
{
    Post([this, piece = Piece{std::move(bytes)}] {
        if (m_terminal.IsOpen()) {
            m_transmitter.Queue({piece}, m_clock.Steady());
        }
    });
}

void LineWorker::HangUp()
{
    Call([this] { Lose(Clock::Duration(-1)); });
}

bool LineWorker::Plug()
{
    bool plugged = false;
    Call([&] { plugged = PlugNow(); });
    return plugged;
}

void LineWorker::Call(const std::function<void()>& call)
{
    if (t_running == this) {
        call();
        return;
    }
    bool isDone = false;
    Post([&] {
        call();
        const std::scoped_lock lock(m_mutex);
        isDone = true;
        m_called.notify_all();
    });
    std::unique_lock lock(m_mutex);
    m_called.wait(lock, [&] { return isDone; });
}

void LineWorker::Post(std::function<void()> call)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_calls.push_back(std::move(call));
    }
    Wake();
}

void LineWorker::RunCalls()
{
    std::vector<std::function<void()>> calls;
    {
        const std::scoped_lock lock(m_mutex);
        calls.swap(m_calls);
    }
    for (const std::function<void()>& call : calls) {
        call();
    }
}

void LineWorker::Wake() const
{
    eventfd_write(m_wakeUp, 1);
}

} // namespace fieldcore::simulator
