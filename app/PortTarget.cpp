#include "app/PortTarget.h"

#include "core/link/ComPrmSet.h"
#include "core/link/Command.h"
#include "core/platform/PortNames.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace fieldcore {

namespace {

constexpr int kThinkingMs = 60; // at least, as in the field: what is slow there is to be seen here

} // namespace

PortTarget::PortTarget(CCommand& command) : m_command(command) {}

PortTarget::~PortTarget() = default;

FoundTarget PortTarget::Resolve(const std::string& port)
{
    const Environment& environment = m_command.GetEnvironment();
    FoundTarget found = FindTarget(environment.Roots(), port);
    if (found.target && m_simulator) {
        m_command.ClosePort(); // or the port would pass for that of the device
        m_simulator.reset();
        m_scenario.clear();
    }
    if (!found.scenario) {
        return found;
    }
    const int cause =
        StartSimulator(found.scenario->empty() ? "lark" : *found.scenario, found.detail);
    found.fault.clear();
    if (cause == 0) {
        found.target = TargetOf(m_simulator->PortPath(), LinkSettings(environment.Roots()),
                                *environment.ports);
        found.detail.clear();
    } else {
        found.fault = FormatText(text::kPortUnusableTarget, FromUtf8(port).substr(0, 40).c_str(),
                                 Text(cause));
    }
    return found;
}

int PortTarget::StartSimulator(const std::string& scenario, std::string& error)
{
    if (m_simulator && scenario == m_scenario) {
        return 0;
    }
    std::optional<simulator::Scenario> loaded = simulator::LoadScenario(scenario, error);
    if (!loaded) {
        std::error_code unknown;
        return std::filesystem::exists(scenario, unknown) ? text::kScenarioDamaged
                                                          : text::kScenarioUnknown;
    }
    loaded->latencyMs = std::max(loaded->latencyMs, kThinkingMs);
    auto started = std::make_unique<simulator::Simulator>(*loaded, m_command.GetClock());
    if (!started->Start(error)) {
        return text::kScenarioNotStarted;
    }
    m_command.ClosePort();
    m_simulator = std::move(started);
    m_scenario = scenario;
    return 0;
}

} // namespace fieldcore
