#pragma once

#include "core/link/LayoutReader.h"
#include "core/link/SatelliteReplies.h"

#include <cstdint>

namespace fieldcore {

// A satellite list, reply 0x17, record by record.

/// What stands in front of the records.
struct SatelliteHead
{
    int frameNumber = 0; // of a list in several frames, as the next
    int last = 0;
    std::uint8_t format = 0;
    int count = 0;
    bool isText = false; ///< the records' fields are digits
};

/// @param in          of the list's data, from their start
/// @param isOneFrame  the layout is that of a list in a single frame
[[nodiscard]] SatelliteHead ReadSatelliteHead(LayoutReader& in, bool isOneFrame);

/// Reads the next record; in.IsComplete() says whether all of it is there.
[[nodiscard]] ListedSatellite ReadSatellite(LayoutReader& in, const SatelliteHead& head);

} // namespace fieldcore
