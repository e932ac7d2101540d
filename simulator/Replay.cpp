#include "simulator/Replay.h"

#include "simulator/ExchangeRecord.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace fieldcore::simulator {

bool Replay::Parse(std::string_view log, std::string& error)
{
    std::vector<Exchange> exchanges;
    for (int number = 1; !log.empty(); ++number) {
        const std::string_view line = log.substr(0, log.find('\n'));
        log.remove_prefix(std::min(line.size() + 1, log.size()));
        if (line.find_first_not_of(" \t\r") == std::string_view::npos) {
            continue;
        }
        RecordedBytes piece;
        std::string cause;
        if (!ParseLogLine(line, piece, cause)) {
            error = "line " + std::to_string(number) + ": " + cause;
            return false;
        }
        if (piece.direction == Direction::ToReceiver) {
            exchanges.push_back({std::move(piece.bytes), {}});
        } else if (!exchanges.empty()) {
            exchanges.back().answer.push_back(std::move(piece.bytes));
        }
        // What the receiver said before the first request answers nothing.
    }
    if (exchanges.empty()) {
        error = "there is no request (\"Rcvr Tx\") in it";
        return false;
    }
    m_exchanges = std::move(exchanges);
    m_next = 0;
    return true;
}

bool Replay::Load(const std::filesystem::path& path, std::string& error)
{
    constexpr std::uintmax_t kMaxSize = 64U << 20U;
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    if (failure || size > kMaxSize) {
        error = path.string() + ": " + (failure ? failure.message() : "too big for a replay");
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    const std::string log{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad()) {
        error = path.string() + ": cannot be read";
        return false;
    }
    std::string cause;
    if (!Parse(log, cause)) {
        error = path.string() + ": " + cause;
        return false;
    }
    return true;
}

std::vector<Bytes> Replay::Answer(std::span<const std::uint8_t> request)
{
    for (std::size_t i = 0; i < m_exchanges.size(); ++i) {
        const std::size_t at = (m_next + i) % m_exchanges.size();
        const Exchange& exchange = m_exchanges[at];
        if (std::equal(request.begin(), request.end(), exchange.request.begin(),
                       exchange.request.end())) {
            m_next = (at + 1) % m_exchanges.size();
            return exchange.answer;
        }
    }
    return {};
}

} // namespace fieldcore::simulator
