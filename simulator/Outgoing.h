#pragma once

#include "core/platform/Clock.h"
#include "simulator/Frame.h"

#include <vector>

namespace fieldcore::simulator {

/// Something that happens on the line: bytes in one write, then perhaps the end of the port.
struct Piece
{
    Bytes bytes;
    Clock::Duration wait{};        ///< quiet time on the line before it
    bool hangsUp = false;          ///< the port goes away behind the bytes
    Clock::Duration backAfter{-1}; ///< and comes back after this; negative: never
};

using Pieces = std::vector<Piece>;

} // namespace fieldcore::simulator
