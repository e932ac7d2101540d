#pragma once

#include "simulator/Steps.h"

#include <cstdint>
#include <optional>

namespace fieldcore::simulator {

/// What the pole does that carries the tilt sensor.
enum class PoleMotion : std::uint8_t
{
    Still,
    Swaying, ///< to and fro about its lean, along both components
    Falling  ///< leans further from a moment on, until it lies on the ground
};

/// The tilt sensor of a scenario. Angles are radians here, degrees in the scenario's text.
struct TiltSettings
{
    static constexpr double kMaxTiltRad = 0.2617993877991494;  ///< 15 degrees; beyond: out of range
    static constexpr double kMaxRateRadS = 0.0872664625997165; ///< 5 degrees/s; above: too fast

    // A pole that leans a little, half a degree in all.
    double t1Rad = 0.006;
    double t2Rad = 0.008;
    PoleMotion motion = PoleMotion::Still;
    double swayRad = 0.0;     ///< amplitude
    double swayPeriodS = 2.0; ///< greater than 0
    double fallRadS = 0.0;    ///< how fast it falls
    double fallFromS = 0.0;   ///< from this second on

    double startingS = 0.0;     ///< so long after it appears it does not measure yet
    Steps present;              ///< 1: the sensor is there; empty: always
    int errors = 0;             ///< the two error bits, 0 to 3
    double calibrationS = 20.0; ///< how long a calibration takes, greater than 0
    bool calibrationFails = false;
    std::uint16_t validityH = 720;
    bool isCalibrated = true;          ///< at the start
    std::optional<double> calibratedH; ///< so many hours before the start; none: in the factory
};

} // namespace fieldcore::simulator
