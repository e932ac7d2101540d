#pragma once

#include "core/link/FrameBuffer.h"

#include <cstddef>

namespace fieldcore {

// Numeric text fields of a frame: decimal digits of fixed width, read at the cursor. A field
// that holds no number is 0.

/// Values beyond the range of int are cut to it.
[[nodiscard]] int IntegerField(FrameBuffer& frame, std::size_t width);

[[nodiscard]] double RealField(FrameBuffer& frame, std::size_t width);

} // namespace fieldcore
