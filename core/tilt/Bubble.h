#pragma once

#include "core/link/Replies.h"

namespace fieldcore {

/// The circle that the middle of the bubble stays in, and the rim that the tolerance ring stays in,
/// pixels of a vial 96 pixels wide.
inline constexpr int kBubbleReach = 31;
inline constexpr int kBubbleRim = 46;
inline constexpr int kVialWidth = 96;

/// What the bubble is drawn with, and what it means.
struct BubbleRules
{
    double sensitivityArcMin = 40.0; ///< tilt for 2 mm of travel; one that cannot be counts as 40
    double toleranceM = 0.02;        ///< how far the antenna may stand beside the point
    double antennaHeightM = 0.0;     ///< 0 or less: not known
};

/// What there is to see in the vial.
struct BubblePicture
{
    bool isNotReady = true;
    bool needsCalibration = false;
    bool showBubble = false;
    bool isWithinTolerance = false; ///< holds while the bubble is shown, as do the next three
    int x = 0;                      ///< of the bubble's middle, pixels to the right
    int y = 0;                      ///< pixels downwards
    int ringRadius = 0;             ///< of the tolerance, pixels; 0: none

    friend bool operator==(const BubblePicture&, const BubblePicture&) = default;
};

/// All three angles are numbers.
[[nodiscard]] bool IsUsable(const TiltReading& reading);

/// The sensor is there and has started.
[[nodiscard]] bool IsReady(const TiltReading& reading);

/// The sensor works and must be calibrated before it is believed.
[[nodiscard]] bool NeedsCalibration(const TiltReading& reading);

/// Pixels of travel in a radian of tilt, on a display of 96 pixels an inch.
[[nodiscard]] double BubbleScale(double sensitivityArcMin);

/// @param reading  one that IsUsable(), of any size: the bubble stays within kBubbleReach of the
///                 middle. A pole that leans by more than a right angle is never within tolerance.
[[nodiscard]] BubblePicture PictureOf(const TiltReading& reading, const BubbleRules& rules);

} // namespace fieldcore
