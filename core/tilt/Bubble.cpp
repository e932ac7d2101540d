#include "core/tilt/Bubble.h"

#include "core/platform/SaturateCast.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace fieldcore {

namespace {

constexpr int kMeasuring = 1;

/// Moves the bubble to @p u, @p v, or to where that direction meets the circle it stays in.
void Place(BubblePicture& picture, double u, double v)
{
    u = std::trunc(u);
    v = std::trunc(v);
    constexpr double kReach = kBubbleReach;
    const double square = u * u + v * v; // exact as long as it decides
    if (square > kReach * kReach) {
        u = std::trunc(u / std::sqrt(square) * kReach);
        v = std::copysign(std::trunc(std::sqrt(kReach * kReach - u * u)), v);
    }
    picture.x = static_cast<int>(u);
    picture.y = static_cast<int>(v);
}

int RingRadius(const BubbleRules& rules, double scale)
{
    constexpr int kAroundBubble = kBubbleRim - kBubbleReach;
    // Beside the point by so much, the antenna would move the bubble to the rim.
    const double atRimM = std::sin(kBubbleRim / scale) * rules.antennaHeightM;
    if (!(atRimM > 0.0)) {
        return kBubbleRim;
    }
    const int radius =
        SaturateCast<int>(std::min<double>(rules.toleranceM / atRimM * kBubbleRim, kBubbleRim));
    return std::min(radius + kAroundBubble, kBubbleRim);
}

} // namespace

bool IsUsable(const TiltReading& reading)
{
    return std::isfinite(reading.t1Rad) && std::isfinite(reading.t2Rad) &&
           std::isfinite(reading.tiltRad);
}

bool IsReady(const TiltReading& reading)
{
    return reading.sensorPresent && reading.state != 0;
}

bool NeedsCalibration(const TiltReading& reading)
{
    return IsReady(reading) && !reading.calibrated;
}

double BubbleScale(double sensitivityArcMin)
{
    constexpr double kDefault = 40.0;
    constexpr double kPixelsPerMm = 96.0 / 25.4;
    constexpr double kRadPerMm = std::numbers::pi / 21600.0; // of one arc minute in 2 mm
    const double scale = kPixelsPerMm / (sensitivityArcMin * kRadPerMm);
    return sensitivityArcMin > 0.0 && std::isnormal(scale) ? scale
                                                           : kPixelsPerMm / (kDefault * kRadPerMm);
}

BubblePicture PictureOf(const TiltReading& reading, const BubbleRules& rules)
{
    BubblePicture picture;
    picture.isNotReady = !IsReady(reading);
    picture.needsCalibration = NeedsCalibration(reading);
    picture.showBubble = !picture.isNotReady && reading.state == kMeasuring && reading.calibrated;
    if (!picture.showBubble) {
        return picture;
    }
    const double scale = BubbleScale(rules.sensitivityArcMin);
    double u = reading.t2Rad * scale;
    double v = -reading.t1Rad * scale;
    constexpr double kFar = 1e9; // pixels; squares of more may not fit a double
    if (!(std::max(std::fabs(u), std::fabs(v)) < kFar)) {
        const double most = std::max(std::fabs(reading.t1Rad), std::fabs(reading.t2Rad));
        u = reading.t2Rad / most * kFar;
        v = -reading.t1Rad / most * kFar;
    }
    Place(picture, u, v);
    picture.isWithinTolerance = true;
    if (rules.antennaHeightM > 0.0) {
        // Beyond a right angle the sine falls again, to 0 for a pole upside down.
        picture.isWithinTolerance =
            std::fabs(reading.tiltRad) <= std::numbers::pi / 2.0 &&
            std::sin(reading.tiltRad) * rules.antennaHeightM < rules.toleranceM;
        picture.ringRadius = RingRadius(rules, scale);
    }
    return picture;
}

} // namespace fieldcore
