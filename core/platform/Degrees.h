#pragma once

#include <numbers>

namespace fieldcore {

/// Angles are radians in the library; degrees exist in files, in published tables and for
/// libraries that want them.
[[nodiscard]] constexpr double RadiansOf(double degrees)
{
    return degrees * (std::numbers::pi / 180.0);
}

[[nodiscard]] constexpr double DegreesOf(double radians)
{
    return radians * (180.0 / std::numbers::pi);
}

// A pole stays a latitude: no rounding beyond 90 degrees.
static_assert(DegreesOf(std::numbers::pi / 2) == 90.0);

} // namespace fieldcore
