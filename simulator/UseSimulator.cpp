#include "simulator/UseSimulator.h"

#include "core/platform/SimulatedPort.h"
#include "simulator/Simulator.h"

#include <memory>
#include <optional>
#include <string>

namespace fieldcore {

namespace {

class Running final : public SimulatedPort
{
public:
    Running(const simulator::Scenario& scenario, const Clock& clock) : m_simulator(scenario, clock)
    {}

    [[nodiscard]] bool Start(std::string& error) { return m_simulator.Start(error); }
    [[nodiscard]] std::string Path() const override { return m_simulator.PortPath(); }

private:
    simulator::Simulator m_simulator;
};

std::unique_ptr<SimulatedPort> StartScenario(const std::string& name, const Clock& clock,
                                             std::string& error)
{
    const std::optional<simulator::Scenario> scenario = simulator::LoadScenario(name, error);
    if (!scenario) {
        return nullptr;
    }
    auto running = std::make_unique<Running>(*scenario, clock);
    return running->Start(error) ? std::move(running) : nullptr;
}

} // namespace

void UseSimulator()
{
    SetSimulatorStarter(StartScenario);
}

} // namespace fieldcore
