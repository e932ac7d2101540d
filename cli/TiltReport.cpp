#include "cli/TiltReport.h"

#include <array>
#include <numbers>
#include <utility>
#include <vector>

namespace fieldcore::cli {

namespace {

Value StateOf(const TiltReading& reading)
{
    static constexpr std::array<std::pair<const char*, const char*>, 4> kStates{{
        {"starting", "starting"},
        {"measuring", "measuring"},
        {"moving", "moving too fast"},
        {"out-of-range", "out of range"},
    }};
    if (!reading.sensorPresent) {
        return Value::Word("absent", "no sensor");
    }
    const auto state = static_cast<std::size_t>(reading.state);
    return state < kStates.size() ? Value::Word(kStates[state].first, kStates[state].second)
                                  : Value::Unknown();
}

Value CalibrationOf(const TiltReading& reading)
{
    static constexpr std::array<std::pair<const char*, const char*>, 5> kStates{{
        {"none", "not completed"},
        {"completed", "completed"},
        {"running", "running"},
        {"failed", "failed"},
        {"expired", "too old"},
    }};
    const auto state = static_cast<std::size_t>(reading.calibrationState);
    const bool isKnown =
        reading.calibrationValid && !reading.error1 && !reading.error2 && state < kStates.size();
    return isKnown ? Value::Word(kStates[state].first, kStates[state].second) : Value::Unknown();
}

Value Degrees(double rad)
{
    return Value::Real(rad * 180.0 / std::numbers::pi, 4, "deg");
}

std::string LineOf(std::string state, std::string tilt, std::string first, std::string second,
                   std::string calibration)
{
    return TableLine({{std::move(state), 17},
                      {std::move(tilt), 14},
                      {std::move(first), 17},
                      {std::move(second), 18},
                      {std::move(calibration), 0}});
}

} // namespace

void AddTilt(Report& report, const TiltSettings& tilt)
{
    const TiltReading reading = tilt.Reading().value_or(TiltReading{});
    report.Add("state", "state", StateOf(reading));
    report.Add("tiltDeg", "tilt", Degrees(reading.tiltRad));
    report.Add("t1Deg", "first component", Degrees(reading.t1Rad));
    report.Add("t2Deg", "second component", Degrees(reading.t2Rad));
    report.Add("calibrated", "calibrated", Value::YesNo(reading.calibrated));
    report.Add("calibration", "calibration", CalibrationOf(reading));
    report.Add("expiryHours", "valid for",
               tilt.Record() ? Value::Integer(tilt.Record()->validityHours, "h")
                             : Value::Unknown());
    const long long leftS = RemainingSeconds(tilt.Record(), tilt.Reading());
    report.Add("remainingSeconds", "still valid for",
               leftS > 0 ? Value::Integer(leftS, "s") : Value::Unknown());
}

std::string TiltLine(const TiltSettings& tilt)
{
    const TiltReading reading = tilt.Reading().value_or(TiltReading{});
    return LineOf(StateOf(reading).Words(), Degrees(reading.tiltRad).Words(),
                  Degrees(reading.t1Rad).Words(), Degrees(reading.t2Rad).Words(),
                  CalibrationOf(reading).Words());
}

std::string TiltHeader()
{
    return LineOf("STATE", "TILT", "FIRST COMPONENT", "SECOND COMPONENT", "CALIBRATION");
}

} // namespace fieldcore::cli
