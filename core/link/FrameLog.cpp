#include "core/link/FrameLog.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <string_view>

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
    std::array<char, 48> head{};
    std::snprintf(
        head.data(), head.size(), "%02d:%d.%03d Rcvr %s [",
        static_cast<int>(ofHour.minutes().count()), static_cast<int>(ofHour.seconds().count()),
        static_cast<int>(ofHour.subseconds().count()), direction == Direction::Sent ? "Tx" : "Rx");
    return head.data() + HexOf(bytes) + "]\r\n";
}

} // namespace fieldcore
