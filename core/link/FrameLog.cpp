#include "core/link/FrameLog.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <string_view>

namespace fieldcore {

std::string FrameLogLine(Direction direction, std::span<const std::uint8_t> bytes,
                         Clock::UtcTime time)
{
    using namespace std::chrono;
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const hh_mm_ss ofHour(floor<milliseconds>(time - floor<hours>(time)));
    std::array<char, 48> head{};
    std::snprintf(
        head.data(), head.size(), "%02d:%d.%03d Rcvr %s [",
        static_cast<int>(ofHour.minutes().count()), static_cast<int>(ofHour.seconds().count()),
        static_cast<int>(ofHour.subseconds().count()), direction == Direction::Sent ? "Tx" : "Rx");
    std::string line = head.data();
    line.reserve(bytes.size() * 3 + 25);
    for (const std::uint8_t byte : bytes) {
        line += kDigits[byte >> 4];
        line += kDigits[byte & 0x0F];
        line += ' ';
    }
    line += "]\r\n";
    return line;
}

} // namespace fieldcore
