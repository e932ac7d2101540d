#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace fieldcore {

/// Which way a frame went, seen from the controller.
enum class Direction : int
{
    Sent = 0,
    Received = 1,
};

/// One line of an exchange log: a fixed stamp, "Tx" or "Rx" and the bytes in hexadecimal, as
/// "00:1.000 Rcvr Tx [02 00 08 00 08 03 ]" with CR LF.
[[nodiscard]] std::string FrameLogLine(Direction direction, std::span<const std::uint8_t> bytes);

/// Appends such a line to @p file, which is made if it is missing.
/// @return false if it could not be written
[[nodiscard]] bool AppendToFrameLog(const std::filesystem::path& file, Direction direction,
                                    std::span<const std::uint8_t> bytes);

} // namespace fieldcore
