#pragma once

#include "core/platform/Clock.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace fieldcore {

/// Which way bytes went, seen from the controller.
enum class Direction : int
{
    Sent = 0,
    Received = 1,
};

/// One line of an exchange log: a fixed stamp, "Tx" or "Rx" and the bytes in hexadecimal, as
/// "00:1.000 Rcvr Tx [02 00 08 00 08 03 ]" with CR LF.
[[nodiscard]] std::string FrameLogLine(Direction direction, std::span<const std::uint8_t> bytes);

/// The same with minutes and seconds of the hour in place of the fixed stamp, as "09:4.250".
[[nodiscard]] std::string FrameLogLine(Direction direction, std::span<const std::uint8_t> bytes,
                                       Clock::UtcTime time);

/// Appends a line with the fixed stamp to @p file, which is made if it is missing.
/// @return false if it could not be written
[[nodiscard]] bool AppendToFrameLog(const std::filesystem::path& file, Direction direction,
                                    std::span<const std::uint8_t> bytes);

} // namespace fieldcore
