#include "app/PortTarget.h"

#include "core/equipment/ComPrmSet.h"
#include "core/link/Command.h"
#include "core/link/ConnectChoice.h"
#include "core/platform/PortNames.h"
#include "core/platform/Utf8.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kThinkingMs = 60; // at least, as in the field: what is slow there is to be seen here

} // namespace

PortTarget::PortTarget(CCommand& command, const PortNames& names, SettingsRoots& roots,
                       const Clock& clock)
    : m_command(command), m_names(names), m_roots(roots), m_clock(clock)
{}

PortTarget::~PortTarget() = default;

std::optional<ConnectTarget> PortTarget::Resolve(const std::string& port, std::wstring& fault)
{
    const PortNameResult named = m_names.Parse(port);
    if (!named.port) {
        fault = FromUtf8(named.fault);
        return std::nullopt;
    }
    if (named.port->kind == PortKind::Device) {
        if (m_simulator) {
            m_command.ClosePort(); // or the port would pass for that of the device
            m_simulator.reset();
            m_scenario.clear();
        }
        return TargetOf(named.port->path, LinkSettings(m_roots), m_names);
    }
    if (!StartSimulator(named.port->scenario.empty() ? "lark" : named.port->scenario, fault)) {
        return std::nullopt;
    }
    return TargetOf(m_simulator->PortPath(), LinkSettings(m_roots), m_names);
}

bool PortTarget::StartSimulator(const std::string& scenario, std::wstring& fault)
{
    if (m_simulator && scenario == m_scenario) {
        return true;
    }
    std::string error;
    std::optional<simulator::Scenario> loaded = simulator::LoadScenario(scenario, error);
    if (loaded) {
        loaded->latencyMs = std::max(loaded->latencyMs, kThinkingMs);
    }
    auto started = loaded ? std::make_unique<simulator::Simulator>(*loaded, m_clock) : nullptr;
    if (!started || !started->Start(error)) {
        fault = FromUtf8(error);
        return false;
    }
    m_command.ClosePort();
    m_simulator = std::move(started);
    m_scenario = scenario;
    return true;
}

} // namespace fieldcore
