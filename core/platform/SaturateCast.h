#pragma once

#include <concepts>
#include <limits>

namespace fieldcore {

/// A real number cut to a whole one, towards zero. Where a cast would be undefined it gives the
/// nearest number that there is: the type's smallest or largest, and 0 for NaN.
template <std::integral To>
[[nodiscard]] constexpr To SaturateCast(double value)
{
    // The largest number of a 64-bit type has no double of its own; the next one is a power of 2
    // and out of range, so "not below" is right for every type.
    if (value >= static_cast<double>(std::numeric_limits<To>::max())) {
        return std::numeric_limits<To>::max();
    }
    if (value <= static_cast<double>(std::numeric_limits<To>::min())) {
        return std::numeric_limits<To>::min();
    }
    return value == value ? static_cast<To>(value) : To{0}; // NaN is not equal to itself
}

} // namespace fieldcore
