#include "app/Worlds.h"

#include "app/Controller.h"
#include "core/resources/StringTable.h"
#include "simulator/Scenario.h"
#include "simulator/ShippedScenarios.h"

#include <memory>
#include <optional>
#include <string>

namespace fieldcore {

PlanSurroundings PlanWorld(Controller& controller, QWidget* parent)
{
    PlanSurroundings world;
    world.makeConnect = [&controller, parent](CCommand&) { return controller.MakeConnect(parent); };
    world.conditions = [&controller] {
        const ObservingLimits& limits = controller.Limits();
        return PlanSurroundings::Conditions{limits.maskDeg, limits.satellites, limits.pdop};
    };
    world.skyNotes = [&controller] { return controller.SkyNotes(); };
    return world;
}

CRecvFileMan::Surroundings FilesWorld(Controller& controller, QWidget* parent)
{
    CRecvFileMan::Surroundings world;
    world.makeConnect = PlanWorld(controller, parent).makeConnect;
    return world;
}

CComPort::Surroundings PortsWorld(Controller& controller)
{
    return {controller.ReceiverPorts(), [&controller] { return controller.Target().target; },
            controller.ReceiverSerial()};
}

std::vector<ScenarioChoice> Scenarios()
{
    std::vector<ScenarioChoice> choices;
    for (const simulator::ShippedScenario& shipped : simulator::AllShippedScenarios()) {
        std::string error;
        const auto scenario = simulator::LoadScenario(std::string(shipped.name), error);
        const bool isJapanese = CurrentLanguage() == Language::Japanese;
        choices.push_back(
            {std::string(shipped.name),
             scenario ? QString::fromStdString(isJapanese ? scenario->titleJa : scenario->title)
                      : QString()});
    }
    return choices;
}

} // namespace fieldcore
