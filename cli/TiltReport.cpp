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

struct Column
{
    const char* label;
    std::size_t width;
};

constexpr std::array<Column, 4> kColumns{
    {{"state", 17}, {"tilt", 14}, {"components", 30}, {"calibration", 13}}};

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
    const std::string values[] = {StateOf(reading).Words(), Degrees(reading.tiltRad).Words(),
                                  Degrees(reading.t1Rad).Words() + "  " +
                                      Degrees(reading.t2Rad).Words(),
                                  CalibrationOf(reading).Words()};
    std::string line;
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        line += Padded(values[i], kColumns[i].width);
    }
    return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

std::string TiltHeader()
{
    std::string line;
    for (const Column& column : kColumns) {
        line += Padded(column.label, column.width);
    }
    return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

} // namespace fieldcore::cli
