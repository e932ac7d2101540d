#include "core/link/Channel.h"

#include "core/platform/PosixSerialDevice.h"

#include <algorithm>
#include <utility>

namespace fieldcore {

bool Channel::IsMine() const
{
    const std::scoped_lock lock(m_turns);
    return IsMineLocked();
}

bool Channel::IsMineLocked() const
{
    const std::thread::id self = std::this_thread::get_id();
    return m_owner == self ||
           std::ranges::find(m_waiting, self, &Waiter::thread) != m_waiting.end();
}

void Channel::TellNext()
{
    if (m_owner == std::thread::id() && !m_waiting.empty()) {
        m_waiting.front()->isNext.Set();
    }
}

std::string Channel::PathOf(int portNumber) const
{
    return (m_environment.ports != nullptr ? *m_environment.ports : PortNames())
        .DevicePath(portNumber);
}

int Channel::Open(const std::string& devicePath, const PortSettings& settings, int number)
{
    std::unique_ptr<SimulatedPort> simulated;
    const PortNameResult named = PortNames().Parse(devicePath);
    if (named.port && named.port->kind == PortKind::Simulator) {
        PortFault fault{LinkError::Open, {}, 0};
        simulated = StartSimulatedPort(named.port->scenario, GetClock(), fault.text);
        if (!simulated) {
            NoteFault(std::move(fault));
            return 0;
        }
    }
    auto link = std::make_unique<SerialLink>(m_environment.makeDevice
                                                 ? m_environment.makeDevice()
                                                 : std::make_unique<PosixSerialDevice>(),
                                             GetClock());
    {
        const std::scoped_lock lock(m_mutex);
        link->SetObserver(m_observer);
    }
    if (link->Open(simulated ? simulated->Path() : devicePath, settings) == 0) {
        NoteFault(link->TakeFault());
        return 0;
    }
    m_simulated = std::move(simulated);
    m_doubt = {};
    m_isOdd = false;
    const std::scoped_lock lock(m_mutex);
    m_link = std::move(link);
    m_portNumber = number;
    return 1;
}

void Channel::Close()
{
    if (!m_link) {
        return;
    }
    m_link->Close();
    {
        const std::scoped_lock lock(m_mutex);
        m_link.reset();
    }
    m_simulated.reset();
}

void Channel::SetObserver(LineObserver observer)
{
    const std::scoped_lock lock(m_mutex);
    m_observer = std::move(observer);
    if (m_link) {
        m_link->SetObserver(m_observer);
    }
}

LinkError Channel::TakeLinkError()
{
    const std::scoped_lock lock(m_mutex);
    const LinkError error = m_link ? m_link->TakeErrorCode() : LinkError::None;
    const LinkError before = std::exchange(m_fault.error, LinkError::None);
    return error != LinkError::None ? error : before;
}

PortFault Channel::LastFault() const
{
    const std::scoped_lock lock(m_mutex);
    return m_fault;
}

void Channel::NoteFault(PortFault fault)
{
    const std::scoped_lock lock(m_mutex);
    m_fault = std::move(fault);
}

} // namespace fieldcore
