#include "core/platform/SimulatedPort.h"

#include <mutex>
#include <utility>

namespace fieldcore {

namespace {

struct Named
{
    std::mutex mutex;
    SimulatorStarter starter; // guarded by mutex
};

Named& TheNamed()
{
    static Named named;
    return named;
}

} // namespace

void SetSimulatorStarter(SimulatorStarter starter)
{
    const std::scoped_lock lock(TheNamed().mutex);
    TheNamed().starter = std::move(starter);
}

std::unique_ptr<SimulatedPort> StartSimulatedPort(const std::string& scenario, const Clock& clock,
                                                  std::string& error)
{
    SimulatorStarter starter;
    {
        const std::scoped_lock lock(TheNamed().mutex);
        starter = TheNamed().starter;
    }
    if (!starter) {
        error = "This program has no simulated receiver: link Fieldcore::simulator and call "
                "fieldcore::UseSimulator() before \"sim:\" is opened.";
        return nullptr;
    }
    std::unique_ptr<SimulatedPort> port = starter(scenario, clock, error);
    if (!port) {
        error = "The simulated receiver does not start: " + error + ".";
    }
    return port;
}

} // namespace fieldcore
