#include "simulator/Simulator.h"

#include "simulator/LineWorker.h"
#include "simulator/PseudoTerminal.h"
#include "simulator/Responder.h"

#include <utility>

namespace fieldcore::simulator {

Simulator::Simulator(const Scenario& scenario, const Clock& clock, SimulatorOptions options)
    : m_options(std::move(options)), m_responder(std::make_unique<Responder>(scenario, clock)),
      m_terminal(m_options.port == nullptr ? std::make_unique<PseudoTerminal>(m_options.link)
                                           : nullptr),
      m_port(m_terminal ? *m_terminal : *m_options.port),
      m_worker(std::make_unique<LineWorker>(scenario, clock, *m_responder, m_port))
{}

Simulator::~Simulator() = default;

bool Simulator::Start(std::string& error)
{
    const std::scoped_lock lock(m_startMutex);
    if (!m_started) {
        m_started = m_responder->Prepare(m_options, error) && m_worker->Start(error);
    }
    return m_started;
}

std::string Simulator::PortPath() const
{
    return m_started ? m_port.Path() : std::string();
}

void Simulator::AddFault(const FaultRule& rule)
{
    m_responder->AddFault(rule);
}

void Simulator::ClearFaults()
{
    m_responder->ClearFaults();
}

void Simulator::Send(std::span<const std::uint8_t> bytes)
{
    if (m_started) {
        m_worker->Send({bytes.begin(), bytes.end()});
    }
}

void Simulator::HangUp()
{
    if (m_started) {
        m_worker->HangUp();
    }
}

bool Simulator::Plug()
{
    return m_started && m_worker->Plug();
}

void Simulator::SetScripted(Script script)
{
    m_responder->SetScript(std::move(script));
}

std::vector<RecordedBytes> Simulator::Record() const
{
    return m_responder->Record();
}

std::vector<std::vector<std::uint8_t>> Simulator::Requests() const
{
    return m_responder->Requests();
}

std::vector<ReceiverFile> Simulator::Files() const
{
    return m_responder->Files();
}

std::vector<std::uint8_t> Simulator::LastCommand(std::uint8_t type) const
{
    return m_responder->Kept(type);
}

std::size_t Simulator::RequestCount() const
{
    return m_responder->RequestCount();
}

} // namespace fieldcore::simulator
