#pragma once

#include "core/platform/Clock.h"

#include <cstdint>
#include <span>
#include <string>

namespace fieldcore {

/// Which way bytes went, seen from the controller.
enum class Direction : int
{
    Sent = 0,
    Received = 1,
};

/// The moment that stands in a log whose lines have no time of their own.
inline constexpr Clock::UtcTime kNoLogTime{std::chrono::seconds(1)};

/// Bytes in hexadecimal, with a blank behind each: "02 00 ".
[[nodiscard]] std::string HexOf(std::span<const std::uint8_t> bytes);

/// One line of an exchange log: minutes and seconds of the hour, "Tx" or "Rx" and the bytes in
/// hexadecimal, as "00:1.000 Rcvr Tx [02 00 08 00 08 03 ]" with CR LF.
[[nodiscard]] std::string FrameLogLine(Direction direction, std::span<const std::uint8_t> bytes,
                                       Clock::UtcTime time = kNoLogTime);

} // namespace fieldcore
