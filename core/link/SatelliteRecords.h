#pragma once

#include "core/link/FrameDescriber.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace fieldcore {

/// Reads the records of a satellite list, whose width depends on the satellite and the format.
/// @param offset      of the first record; moved on
/// @param severalFrames  the list comes in several frames, whose header is another one
/// @return false if the data end in a record, or the count is no number
[[nodiscard]] bool ReadSatellites(std::span<const std::uint8_t> data, std::size_t& offset,
                                  bool severalFrames, std::vector<DescribedField>& fields);

} // namespace fieldcore
