#pragma once

#include <cstdint>
#include <span>

namespace fieldcore {

// Numeric text fields of a frame: decimal digits of fixed width. A number stands at the start,
// behind blanks; what follows it is ignored, and a field that holds none is 0. Nothing is
// allocated.

/// Values beyond the range of int are cut to it.
[[nodiscard]] int IntegerField(std::span<const std::uint8_t> field);

/// What the C library reads as a number counts as one: "inf" and "nan" do too.
[[nodiscard]] double RealField(std::span<const std::uint8_t> field);

} // namespace fieldcore
