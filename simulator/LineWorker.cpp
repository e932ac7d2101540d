#include "simulator/LineWorker.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <system_error>
#include <utility>

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

} // namespace

LineWorker::LineWorker(const Scenario& scenario, const Clock& clock, Responder& responder,
                       Port& port)
    : m_clock(clock), m_responder(responder), m_paced(scenario.pacing == Pacing::Baud),
      m_checksRate(scenario.checksRate), m_port(port), m_transmitter(m_paced, scenario.baudRate),
      m_baudRate(scenario.baudRate), m_heardRate(scenario.baudRate)
{}

LineWorker::~LineWorker()
{
    if (m_thread.joinable()) {
        {
            const std::scoped_lock lock(m_mutex);
            m_stopping = true;
        }
        m_port.Wake();
        m_thread.join();
    }
}

bool LineWorker::Start(std::string& error)
{
    if (!m_port.Open(error)) {
        return false;
    }
    try {
        m_thread = std::thread([this] { Run(); });
    } catch (const std::system_error& fault) {
        m_port.Close();
        error = "no thread: " + fault.code().message();
        return false;
    }
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
    std::optional<Clock::Duration> limit = NextDue();
    if (limit) {
        limit = m_clock.RealTime(*limit - m_clock.Steady());
    }
    m_pipeFull = !m_port.Wait(limit, m_pipeFull) && m_pipeFull;
}

void LineWorker::Read()
{
    std::array<std::uint8_t, 4096> buffer{};
    const auto bytes = std::span(buffer).first(m_port.Read(buffer));
    if (!bytes.empty() && !IsHeard()) {
        static_cast<void>(
            m_responder.Answer({Request::Kind::Damaged, {bytes.begin(), bytes.end()}}));
        return;
    }
    for (std::size_t i = 0; i < bytes.size() && m_port.IsOpen(); ++i) {
        TakeIn(bytes[i]);
    }
    if (!bytes.empty()) {
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
    return !m_checksRate || m_port.ControllerRate() == m_heardRate;
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
    if (!m_port.IsOpen()) {
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
    while (!m_pipeFull && m_port.IsOpen()) {
        const Clock::Duration now = m_clock.Steady();
        const Piece* const piece = m_transmitter.Current(now);
        if (piece == nullptr || !WriteCurrent(now)) {
            return;
        }
        if (piece->hangsUp) {
            m_port.WaitUntilRead(kLastBytesLimit);
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
        const std::size_t count = m_port.Write(due);
        m_transmitter.Sent(count);
        m_pipeFull = count < due.size();
    }
    return m_transmitter.IsCurrentDone();
}

void LineWorker::Lose(Clock::Duration backAfter)
{
    m_port.Close();
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
    return m_port.Open(ignored);
}

void LineWorker::Send(Bytes bytes)
{
    Post([this, piece = Piece{std::move(bytes)}] {
        if (m_port.IsOpen()) {
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
    m_port.Wake();
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

} // namespace fieldcore::simulator
