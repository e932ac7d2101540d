#include "core/tilt/CalibrationStatus.h"

#include "core/platform/Calendar.h"
#include "core/resources/StringTable.h"

namespace fieldcore {

namespace {

constexpr int kCompleted = 1;
constexpr double kSecondsPerHour = 3600.0;

} // namespace

int CalibrationTextId(const std::optional<TiltReading>& reading, const LastCalibrationRun& lastRun)
{
    if (!reading) {
        return text::kTiltNotCompleted;
    }
    if (reading->calibrationState != kCompleted) {
        if (lastRun.isFailed) {
            return text::kTiltFailed;
        }
        if (lastRun.isAborted) {
            return text::kTiltAborted;
        }
    }
    constexpr std::array kTexts{text::kTiltNotCompleted, text::kTiltCompleted, text::kTiltRunning,
                                text::kTiltFailed, text::kTiltExpired}; // by their numbers
    const auto state = static_cast<std::size_t>(reading->calibrationState);
    const bool isTold = reading->calibrationValid && !reading->error1 && !reading->error2;
    return isTold && state < kTexts.size() ? kTexts[state] : text::kTiltNotCompleted;
}

double SecondsOf(const std::optional<TiltTime>& time)
{
    return time ? time->week * kWeekS + time->secondsOfWeek : kUnknownTimeS;
}

long long RemainingSeconds(const std::optional<TiltCalibration>& record,
                           const std::optional<TiltReading>& reading)
{
    if (!record || !reading || reading->calibrationState != kCompleted || !reading->calibrated) {
        return 0;
    }
    const double nowS = SecondsOf(reading->time);
    const double madeS = SecondsOf(record->calibrated);
    if (nowS == kUnknownTimeS || madeS == kUnknownTimeS) {
        return 0;
    }
    const double leftS = madeS + record->validityHours * kSecondsPerHour - nowS;
    return leftS > 0.0 ? static_cast<long long>(leftS) : 0;
}

std::wstring RemainText(long long seconds)
{
    return FormatText(text::kTiltRemain, static_cast<int>(seconds / 86400),
                      static_cast<int>(seconds / 3600 % 24), static_cast<int>(seconds / 60 % 60),
                      static_cast<int>(seconds % 60));
}

std::wstring ExpiryText(int hours)
{
    return FormatText(text::kTiltExpiry, hours / 24, hours % 24);
}

const std::array<TiltChoice, kSensitivities>& SensitivityChoices()
{
    static constexpr std::array<TiltChoice, kSensitivities> kChoices{{
        {text::kTiltSensitivity130, 130},
        {text::kTiltSensitivity70, 70},
        {text::kTiltSensitivity40, 40},
        {text::kTiltSensitivity20, 20},
        {text::kTiltSensitivity8, 8},
    }};
    return kChoices;
}

const std::array<TiltChoice, kSpeeds>& SpeedChoices()
{
    static constexpr std::array<TiltChoice, kSpeeds> kChoices{{
        {text::kTiltFast, 0},
        {text::kTiltMedium, 1},
        {text::kTiltSlow, 2},
    }};
    return kChoices;
}

int SensitivityPlace(double arcMinutes)
{
    if (arcMinutes >= 100.0) {
        return 0;
    }
    if (arcMinutes >= 55.0) {
        return 1;
    }
    if (arcMinutes >= 30.0) {
        return 2;
    }
    return arcMinutes > 10.0 ? 3 : 4;
}

int SpeedPlace(int viscosity)
{
    for (std::size_t i = 0; i < kSpeeds; ++i) {
        if (SpeedChoices()[i].value == viscosity) {
            return static_cast<int>(i);
        }
    }
    return 1;
}

} // namespace fieldcore
