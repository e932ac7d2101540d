#include "simulator/Responder.h"

#include <chrono>
#include <utility>

namespace fieldcore::simulator {

Responder::Responder(const Scenario& scenario, const Clock& clock)
    : m_clock(clock), m_start(clock.Steady()), m_answers(scenario.answers),
      m_latency(std::chrono::milliseconds(scenario.latencyMs)),
      m_record(Simulator::kRecordLimit, Simulator::kRecordBytes), m_receiver(scenario, clock),
      m_faults(scenario.chanceStart)
{
    for (const FaultRule& rule : scenario.faults) {
        m_faults.Add(rule);
    }
}

bool Responder::Prepare(const SimulatorOptions& options, std::string& error)
{
    if (!options.replayFile.empty() && !m_replay.emplace().Load(options.replayFile, error)) {
        return false;
    }
    return options.recordFile.empty() || m_record.OpenFile(options.recordFile, error);
}

Pieces Responder::Answer(const Request& request)
{
    m_record.Add(Direction::ToReceiver, Elapsed(), request.bytes);
    if (request.kind == Request::Kind::Damaged) {
        return {};
    }
    m_goesOn = false;
    {
        const std::scoped_lock lock(m_receiverMutex);
        if (m_requestBytes.size() == Simulator::kRecordLimit) {
            m_requestBytes.pop_front();
        }
        m_requestBytes.push_back(request.bytes);
        m_receiver.StopAnswer();
    }
    Pieces pieces = Decide(request);
    ++m_requests; // who waits for the count may rely on the answer being decided
    return pieces;
}

Pieces Responder::Decide(const Request& request)
{
    if (!m_answers || Elapsed() < m_silentUntil) {
        return {};
    }
    std::vector<Bytes> answer = PlainAnswer(request);
    FaultInjector::Outcome outcome;
    {
        const std::scoped_lock lock(m_mutex, m_receiverMutex);
        m_goesOn = m_receiver.GoesOn();
        outcome = m_faults.Apply(request, std::move(answer), m_goesOn);
    }
    Take(outcome);
    if (!outcome.pieces.empty()) {
        outcome.pieces.front().wait += m_latency;
    }
    return std::move(outcome.pieces);
}

Pieces Responder::Next()
{
    FaultInjector::Outcome outcome;
    {
        const std::scoped_lock lock(m_mutex, m_receiverMutex);
        std::optional<Bytes> frame = m_receiver.NextFrame();
        m_goesOn = frame.has_value();
        outcome = m_faults.ApplyToNext(std::move(frame));
    }
    Take(outcome);
    return std::move(outcome.pieces);
}

void Responder::Take(const FaultInjector::Outcome& outcome)
{
    m_silentUntil = Elapsed() + outcome.silence;
    m_goesOn = m_goesOn && !outcome.ends;
}

std::vector<Bytes> Responder::PlainAnswer(const Request& request)
{
    Simulator::Script script;
    {
        const std::scoped_lock lock(m_mutex);
        script = m_script;
    }
    if (script) {
        Bytes bytes = script(request.bytes);
        return bytes.empty() ? std::vector<Bytes>() : std::vector<Bytes>{std::move(bytes)};
    }
    if (m_replay) {
        return m_replay->Answer(request.bytes);
    }
    const std::scoped_lock lock(m_receiverMutex);
    return m_receiver.Answer(request);
}

std::optional<Piece> Responder::CutRequest(std::span<const std::uint8_t> begun)
{
    const std::scoped_lock lock(m_mutex);
    return m_faults.CutRequest(begun);
}

void Responder::RecordSent(std::span<const std::uint8_t> bytes)
{
    m_record.Add(Direction::FromReceiver, Elapsed(), bytes);
}

std::uint32_t Responder::BaudRate() const
{
    const std::scoped_lock lock(m_receiverMutex);
    return m_receiver.BaudRate();
}

std::vector<Bytes> Responder::Requests() const
{
    const std::scoped_lock lock(m_receiverMutex);
    return {m_requestBytes.begin(), m_requestBytes.end()};
}

std::vector<ReceiverFile> Responder::Files() const
{
    const std::scoped_lock lock(m_receiverMutex);
    std::vector<ReceiverFile> files;
    for (const FileStore::Entry& entry : m_receiver.Files().Entries()) {
        files.push_back(entry.file);
    }
    return files;
}

Bytes Responder::Kept(std::uint8_t type) const
{
    const std::scoped_lock lock(m_receiverMutex);
    return m_receiver.Kept(type);
}

void Responder::AddFault(const FaultRule& rule)
{
    const std::scoped_lock lock(m_mutex);
    m_faults.Add(rule);
}

void Responder::ClearFaults()
{
    const std::scoped_lock lock(m_mutex);
    m_faults.Clear();
}

void Responder::SetScript(Simulator::Script script)
{
    const std::scoped_lock lock(m_mutex);
    m_script = std::move(script);
}

} // namespace fieldcore::simulator
