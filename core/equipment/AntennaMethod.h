#pragma once

#include <string>
#include <string_view>

namespace fieldcore {

/// One way to measure the height of an antenna: from the mark on the ground to some point of the
/// antenna. Where that point is, seen from the axis of the antenna and from its phase centre.
struct AntennaMethod
{
    double radiusM = 0.0;   ///< R, horizontal distance of the point from the axis
    double verticalM = 0.0; ///< V, height of the phase centre above the point
    std::wstring name{};
};

/// A method as the catalogue has it: R, V, a number that does not count, and the name in double
/// quotes, with commas between. A number that is missing or not finite is 0, a missing name empty;
/// a comma ends a field, within the quotes too. A name without quotes is taken as it stands.
[[nodiscard]] AntennaMethod ParseAntennaMethod(std::wstring_view text);

/// How a measured height became a vertical one.
enum class AntennaReduction
{
    None,    ///< it is vertical, and used as it is
    Unknown, ///< used as it is, too: the catalogue does not have its method
    Upright, ///< measured straight up to a point on the axis: V is added
    Slant,   ///< the slant distance to a point off the axis
    TooShort ///< a slant distance that is not longer than the radius: taken for an upright one
};

struct AntennaHeight
{
    double measuredM = 0.0;
    double verticalM = 0.0; ///< from the mark to the phase centre
    double squareM2 = 0.0;  ///< H * H - R * R; 0 if nothing was reduced
    AntennaMethod method;   ///< that was used; R = V = 0 if nothing was reduced
    AntennaReduction reduction = AntennaReduction::None;

    [[nodiscard]] bool IsReduced() const
    {
        return reduction != AntennaReduction::None && reduction != AntennaReduction::Unknown;
    }
};

/// Vertical height: sqrt(H * H - R * R) + V, by Pythagoras on the slant distance H; H + V where
/// the root is not of a positive number. Not contracted: the same bits on every machine.
/// @param measuredM  H, metres; one that is no number gives no number
[[nodiscard]] AntennaHeight ReduceAntennaHeight(double measuredM, const AntennaMethod& method);

} // namespace fieldcore
