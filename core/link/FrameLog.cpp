#include "core/link/FrameLog.h"

#include <fstream>
#include <string_view>

namespace fieldcore {

std::string FrameLogLine(Direction direction, std::span<const std::uint8_t> bytes)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string line;
    line.reserve(bytes.size() * 3 + 25);
    // The stamp is a fixed text, not a reading of a clock.
    line += direction == Direction::Received ? "00:1.000 Rcvr Rx [" : "00:1.000 Rcvr Tx [";
    for (const std::uint8_t byte : bytes) {
        line += kDigits[byte >> 4];
        line += kDigits[byte & 0x0F];
        line += ' ';
    }
    line += "]\r\n";
    return line;
}

bool AppendToFrameLog(const std::filesystem::path& file, Direction direction,
                      std::span<const std::uint8_t> bytes)
{
    std::ofstream log(file, std::ios::binary | std::ios::app);
    log << FrameLogLine(direction, bytes) << std::flush;
    return log.good();
}

} // namespace fieldcore
