#include "core/link/FrameLog.h"

#include "core/platform/LogFile.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <string_view>

namespace fieldcore {

namespace {

std::string StampedLine(std::string_view stamp, Direction direction,
                        std::span<const std::uint8_t> bytes)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string line(stamp);
    line.reserve(bytes.size() * 3 + 25);
    line += direction == Direction::Received ? " Rcvr Rx [" : " Rcvr Tx [";
    for (const std::uint8_t byte : bytes) {
        line += kDigits[byte >> 4];
        line += kDigits[byte & 0x0F];
        line += ' ';
    }
    line += "]\r\n";
    return line;
}

} // namespace

std::string FrameLogLine(Direction direction, std::span<const std::uint8_t> bytes)
{
    return StampedLine("00:1.000", direction, bytes);
}

std::string FrameLogLine(Direction direction, std::span<const std::uint8_t> bytes,
                         Clock::UtcTime time)
{
    using namespace std::chrono;
    const hh_mm_ss ofHour(floor<milliseconds>(time - floor<hours>(time)));
    std::array<char, 32> stamp{};
    std::snprintf(
        stamp.data(), stamp.size(), "%02d:%d.%03d", static_cast<int>(ofHour.minutes().count()),
        static_cast<int>(ofHour.seconds().count()), static_cast<int>(ofHour.subseconds().count()));
    return StampedLine(stamp.data(), direction, bytes);
}

bool AppendToFrameLog(const std::filesystem::path& file, Direction direction,
                      std::span<const std::uint8_t> bytes)
{
    LogFile log;
    return !log.Open(file, LogFile::Start::Append) && !log.Write(FrameLogLine(direction, bytes));
}

} // namespace fieldcore
