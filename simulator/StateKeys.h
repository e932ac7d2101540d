#pragma once

#include "simulator/Scenario.h"
#include "simulator/Words.h"

namespace fieldcore::simulator {

/// The keys of a scenario for what changes with time: fix, antenna, power, tilt sensor;
/// docs/simulator.md has them. False: the words say why.

[[nodiscard]] bool ReadFix(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadAntenna(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadPowerSource(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltPole(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltPresent(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltCalibration(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltCalibrated(Words& words, Scenario& scenario);
[[nodiscard]] bool ReadTiltValidity(Words& words, Scenario& scenario);

} // namespace fieldcore::simulator
