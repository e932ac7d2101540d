#pragma once

#include "core/link/FrameReader.h"

#include <cstddef>

namespace fieldcore {

// Numeric text fields of a frame: decimal digits of fixed width, read at the cursor. A field
// that holds no number is 0.

/// Values beyond the range of int are cut to it.
[[nodiscard]] int IntegerField(FrameReader& frame, std::size_t width);

[[nodiscard]] double RealField(FrameReader& frame, std::size_t width);

} // namespace fieldcore
