#pragma once

#include "simulator/Scenario.h"
#include "simulator/Words.h"

namespace fieldcore::simulator {

/// The keys of a scenario that are about files; docs/simulator.md has them. False: the words say
/// why.

[[nodiscard]] bool ReadFile(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadFiles(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadListing(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadFreeMemory(Words& words, Scenario& scenario);

} // namespace fieldcore::simulator
