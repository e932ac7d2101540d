#include "simulator/ScenarioKeys.h"

#include "core/platform/Degrees.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

namespace fieldcore::simulator {

namespace {

constexpr double kMaxS = 1e9; // of the receiver, 30 years

/// @param value  the place of the word among @p names
/// @param fault  what there is to say of a word that is not
bool ReadName(Words& words, std::span<const std::string_view> names, const char* fault, int& value)
{
    const auto found = std::find(names.begin(), names.end(), words.Take());
    if (found == names.end()) {
        return words.Fail(fault);
    }
    value = static_cast<int>(found - names.begin());
    return true;
}

bool ReadFixKind(Words& words, int& kind)
{
    constexpr std::string_view kKinds[] = {"none",         "searching", "single",
                                           "differential", "float",     "fixed"};
    return ReadName(words, kKinds, "a fix is none, searching, single, differential, float or fixed",
                    kind);
}

bool ReadAntennaState(Words& words, int& state)
{
    constexpr std::string_view kStates[] = {"good", "weak", "dead"};
    return ReadName(words, kStates, "an antenna is good, weak or dead", state);
}

bool ReadSource(Words& words, int& source)
{
    return words.Integer("the source", 0, 255, source);
}

bool ReadPresence(Words& words, int& value)
{
    bool present = false;
    const bool good = words.YesNo("the sensor's presence", present);
    value = present ? 1 : 0;
    return good;
}

/// SECONDS VALUE, as often as it stands there, each later than the one before.
bool ReadSteps(Words& words, bool (*readValue)(Words&, int&), Steps& steps)
{
    while (!words.AtEnd()) {
        Step step;
        if (!words.Real("the second of a change", 0.0, kMaxS, step.fromS) ||
            !readValue(words, step.value)) {
            return false;
        }
        if (!steps.empty() && step.fromS <= steps.back().fromS) {
            return words.Fail("a change must be later than the one before");
        }
        steps.push_back(step);
    }
    return true;
}

bool ReadAngle(Words& words, std::string_view what, double maxDeg, double& rad)
{
    double deg = 0.0;
    const bool good = words.Real(what, -maxDeg, maxDeg, deg);
    rad = RadiansOf(deg);
    return good;
}

} // namespace

bool ReadFix(Words& words, Scenario& scenario)
{
    scenario.laterFixes.clear();
    return ReadFixKind(words, scenario.fixKind) &&
           ReadSteps(words, ReadFixKind, scenario.laterFixes);
}

bool ReadAntenna(Words& words, Scenario& scenario)
{
    scenario.laterAntennas.clear();
    int state = 0;
    const bool good = ReadAntennaState(words, state) &&
                      ReadSteps(words, ReadAntennaState, scenario.laterAntennas);
    scenario.antenna = static_cast<AntennaState>(state);
    return good;
}

bool ReadPowerSource(Words& words, Scenario& scenario)
{
    scenario.laterPowerSources.clear();
    return ReadSource(words, scenario.powerSource) &&
           ReadSteps(words, ReadSource, scenario.laterPowerSources);
}

bool ReadTiltPole(Words& words, Scenario& scenario)
{
    TiltSettings& tilt = scenario.tilt;
    const std::string motion(words.Take());
    if (motion == "still") {
        tilt.motion = PoleMotion::Still;
        return words.AtEnd() || (ReadAngle(words, "the first component", 90.0, tilt.t1Rad) &&
                                 ReadAngle(words, "the second component", 90.0, tilt.t2Rad));
    }
    if (motion == "swaying") {
        tilt.motion = PoleMotion::Swaying;
        return ReadAngle(words, "the amplitude", 90.0, tilt.swayRad) &&
               (words.AtEnd() || words.Real("the period", 0.01, 3600.0, tilt.swayPeriodS));
    }
    if (motion == "falling") {
        tilt.motion = PoleMotion::Falling;
        double degS = 0.0;
        const bool good = words.Real("degrees a second", 0.0, 90.0, degS);
        tilt.fallRadS = RadiansOf(degS);
        return good &&
               (words.AtEnd() || words.Real("the second of the fall", 0.0, kMaxS, tilt.fallFromS));
    }
    return words.Fail("a pole is still, swaying or falling");
}

bool ReadTiltPresent(Words& words, Scenario& scenario)
{
    scenario.tilt.present.assign(1, Step{});
    return ReadPresence(words, scenario.tilt.present.front().value) &&
           ReadSteps(words, ReadPresence, scenario.tilt.present);
}

bool ReadTiltCalibration(Words& words, Scenario& scenario)
{
    const std::string_view ends = words.Take();
    if (ends != "succeeds" && ends != "fails") {
        return words.Fail("a calibration succeeds or fails");
    }
    scenario.tilt.calibrationFails = ends == "fails";
    return words.AtEnd() || words.Real("its seconds", 0.1, 86'400.0, scenario.tilt.calibrationS);
}

bool ReadTiltCalibrated(Words& words, Scenario& scenario)
{
    TiltSettings& tilt = scenario.tilt;
    const std::string_view when = words.Peek();
    tilt.isCalibrated = when != "no";
    tilt.calibratedH.reset();
    if (when == "no" || when == "factory") {
        words.Take();
        return true;
    }
    return words.Real("hours since the calibration", 0.0, 100'000.0, tilt.calibratedH.emplace());
}

bool ReadTiltValidity(Words& words, Scenario& scenario)
{
    int hours = 0;
    const bool good = words.Integer("the validity", 0, 65535, hours);
    scenario.tilt.validityH = static_cast<std::uint16_t>(hours);
    return good;
}

} // namespace fieldcore::simulator
