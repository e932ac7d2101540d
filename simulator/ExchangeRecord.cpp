#include "simulator/ExchangeRecord.h"

#include "core/platform/NumberText.h"

#include <system_error>
#include <utility>

namespace fieldcore::simulator {

namespace {

constexpr std::string_view kSent = " Rcvr Tx [";
constexpr std::string_view kReceived = " Rcvr Rx [";

} // namespace

std::string LogLine(Direction direction, std::span<const std::uint8_t> bytes)
{
    constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string line("00:1.000");
    line += direction == Direction::ToReceiver ? kSent : kReceived;
    line.reserve(line.size() + bytes.size() * 3 + 3);
    for (const std::uint8_t byte : bytes) {
        line += kHex[byte >> 4U];
        line += kHex[byte & 0x0FU];
        line += ' ';
    }
    return line + "]\r\n";
}

bool ParseLogLine(std::string_view line, RecordedBytes& piece, std::string& error)
{
    const auto fail = [&](std::string cause) {
        error = std::move(cause);
        return false;
    };
    RecordedBytes read;
    std::size_t open = line.find(kSent);
    if (open == std::string_view::npos) {
        open = line.find(kReceived);
        read.direction = Direction::FromReceiver;
    }
    if (open == std::string_view::npos) {
        return fail("neither \"Rcvr Tx [\" nor \"Rcvr Rx [\" stands in it");
    }
    std::string_view hex = line.substr(open + kSent.size());
    const std::size_t close = hex.find(']');
    if (close == std::string_view::npos) {
        return fail("the closing \"]\" is missing");
    }
    hex = hex.substr(0, close);
    while (!hex.empty()) {
        const auto byte = NumberOf<std::uint8_t>(hex.substr(0, 2), 16);
        if (!byte || hex.size() < 3 || hex[2] != ' ') {
            return fail("\"" + std::string(hex.substr(0, 3)) +
                        "\" is not two hexadecimal digits and a blank");
        }
        read.bytes.push_back(*byte);
        hex.remove_prefix(3);
    }
    if (read.bytes.empty()) {
        return fail("there are no bytes between the brackets");
    }
    piece = std::move(read);
    return true;
}

bool ExchangeRecord::OpenFile(const std::filesystem::path& path, std::string& error)
{
    const std::scoped_lock lock(m_mutex);
    const std::error_code fault = m_file.Open(path, LogFile::Start::New);
    if (fault) {
        error = path.string() + ": " + fault.message();
    }
    return !fault;
}

void ExchangeRecord::Add(Direction direction, Clock::Duration time,
                         std::span<const std::uint8_t> bytes)
{
    const std::scoped_lock lock(m_mutex);
    m_bytes += bytes.size();
    while (!m_pieces.empty() && (m_pieces.size() >= m_limit || m_bytes > m_byteLimit)) {
        m_bytes -= m_pieces.front().bytes.size();
        m_pieces.pop_front();
    }
    m_pieces.push_back({direction, time, {bytes.begin(), bytes.end()}});
    if (m_file.IsOpen() && !m_isTorn) { // nothing behind half a line
        m_isTorn = static_cast<bool>(m_file.Write(LogLine(direction, bytes)));
    }
}

std::vector<RecordedBytes> ExchangeRecord::Pieces() const
{
    const std::scoped_lock lock(m_mutex);
    return {m_pieces.begin(), m_pieces.end()};
}

} // namespace fieldcore::simulator
