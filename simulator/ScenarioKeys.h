#pragma once

#include "simulator/Scenario.h"
#include "simulator/Words.h"

namespace fieldcore::simulator {

// The keys of a scenario that take more than one word; docs/simulator.md has their form. Each reads
// what follows the key. False: the words say why.

// Files.

[[nodiscard]] bool ReadFile(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadFiles(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadListing(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadFreeMemory(Words& words, Scenario& scenario);

// Satellites and what hides them.

[[nodiscard]] bool ReadSatellite(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadObstruction(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadListForm(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadAlmanac(Words& words, Scenario& scenario);

// What changes with time: fix, antenna, power, tilt sensor.

[[nodiscard]] bool ReadFix(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadAntenna(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadPowerSource(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltPole(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltPresent(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltCalibration(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltCalibrated(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltValidity(Words& words, Scenario& scenario);

} // namespace fieldcore::simulator
