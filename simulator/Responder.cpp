#include "simulator/Responder.h"

#include <chrono>
#include <utility>

namespace fieldcore::simulator {

Responder::Responder(const Scenario& scenario, const Clock& clock)
    : m_clock(clock), m_start(clock.Steady()), m_answers(scenario.answers),
      m_latency(std::chrono::milliseconds(scenario.latencyMs)), m_receiver(scenario, clock),
      m_record(Simulator::kRecordLimit), m_faults(scenario.chanceStart)
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
    Pieces pieces = Decide(request);
    ++m_requests; // who waits for the count may rely on the answer being decided
    return pieces;
}

Pieces Responder::Decide(const Request& request)
{
    if (!m_answers || Elapsed() < m_silentUntil) {
        return {};
    }
    const std::vector<Bytes> answer = PlainAnswer(request);
    Clock::Duration silence{};
    Pieces pieces;
    {
        const std::scoped_lock lock(m_mutex);
        pieces = m_faults.Apply(request, answer, silence);
    }
    m_silentUntil = Elapsed() + silence;
    if (!pieces.empty()) {
        pieces.front().wait += m_latency;
    }
    return pieces;
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
    return m_replay ? m_replay->Answer(request.bytes) : m_receiver.Answer(request);
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
