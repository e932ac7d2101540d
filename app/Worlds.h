#pragma once

#include "ui/equipment/ComPort.h"
#include "ui/equipment/RecvFileMan.h"
#include "ui/link/PortChooser.h"
#include "ui/planning/SurveyPlan.h"

#include <vector>

namespace fieldcore {

class Controller;

// What the controller puts around the library's screens. The controller must outlive the screens.
// User-interface thread only.

/// @param parent  of the window that connects; may be null
[[nodiscard]] PlanSurroundings PlanWorld(Controller& controller, QWidget* parent);
[[nodiscard]] CRecvFileMan::Surroundings FilesWorld(Controller& controller, QWidget* parent);
[[nodiscard]] CComPort::Surroundings PortsWorld(Controller& controller);
/// What the simulated receiver can play.
[[nodiscard]] std::vector<ScenarioChoice> Scenarios();

} // namespace fieldcore
