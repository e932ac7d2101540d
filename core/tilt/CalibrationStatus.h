#pragma once

#include "core/link/Replies.h"

#include <array>
#include <optional>
#include <string>

namespace fieldcore {

// What the user is told of the tilt sensor's calibration, and what he can choose. Values in, texts
// out; any thread.

/// How the last calibration run of this program ended; neither: it came to its end, or there was
/// none.
struct LastCalibrationRun
{
    bool isAborted = false;
    bool isFailed = false;
};

/// The status, a number of the string table.
/// @param reading  nothing: it could not be read
[[nodiscard]] int CalibrationTextId(const std::optional<TiltReading>& reading,
                                    const LastCalibrationRun& lastRun);

/// A moment that is not known.
inline constexpr double kUnknownTimeS = 1e308;

/// Seconds of GPS time, or kUnknownTimeS.
[[nodiscard]] double SecondsOf(const std::optional<TiltTime>& time);

/// How long the calibration is still valid.
/// @return whole seconds, 0 if it is not valid or that is not known
[[nodiscard]] long long RemainingSeconds(const std::optional<TiltCalibration>& record,
                                         const std::optional<TiltReading>& reading);

/// "あと1日2時間3分4秒". @param seconds  0 or more
[[nodiscard]] std::wstring RemainText(long long seconds);

/// "30日0時間". @param hours  0 or more
[[nodiscard]] std::wstring ExpiryText(int hours);

/// An entry of a list: its text, a number of the string table, and what it stands for.
struct TiltChoice
{
    int textId;
    int value;
};

inline constexpr std::size_t kSensitivities = 5;
inline constexpr std::size_t kSpeeds = 3;
/// Arc minutes for 2 mm.
[[nodiscard]] const std::array<TiltChoice, kSensitivities>& SensitivityChoices();
/// Viscosities.
[[nodiscard]] const std::array<TiltChoice, kSpeeds>& SpeedChoices();
/// The place of the entry that stands for a value; the nearest one for a sensitivity, the second
/// for an unknown speed.
[[nodiscard]] int SensitivityPlace(double arcMinutes);
[[nodiscard]] int SpeedPlace(int viscosity);

} // namespace fieldcore
