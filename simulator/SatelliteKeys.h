#pragma once

#include "simulator/Scenario.h"
#include "simulator/Words.h"

namespace fieldcore::simulator {

/// The lines of a scenario that tell about satellites and what hides them; docs/simulator.md has
/// their form. Each reads what follows the key.
/// @return false, with the cause in @p words, if that is wrong

[[nodiscard]] bool ReadSatellite(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadObstruction(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadListForm(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadAlmanac(Words& words, Scenario& scenario);

} // namespace fieldcore::simulator
