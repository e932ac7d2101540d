#include "core/link/FrameLog.h"

#include <chrono>
#include <string_view>

#include <fmt/format.h>

namespace fieldcore {

std::string HexOf(std::span<const std::uint8_t> bytes)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string hex;
    hex.reserve(bytes.size() * 3);
    for (const std::uint8_t byte : bytes) {
        hex += {kDigits[byte >> 4], kDigits[byte & 0x0F], ' '};
    }
    return hex;
}

std::string FrameLogLine(Direction direction, std::span<const std::uint8_t> bytes,
                         Clock::UtcTime time)
{
    using namespace std::chrono;
    const hh_mm_ss ofHour(floor<milliseconds>(time - floor<hours>(time)));
    return fmt::format("{:02}:{}.{:03} Rcvr {} [{}]\r\n", ofHour.minutes().count(),
                       ofHour.seconds().count(), ofHour.subseconds().count(),
                       direction == Direction::Sent ? "Tx" : "Rx", HexOf(bytes));
}

} // namespace fieldcore
