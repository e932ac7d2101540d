#pragma once

#include "core/platform/Clock.h"
#include "core/platform/LogFile.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore::simulator {

enum class Direction : std::uint8_t
{
    ToReceiver,  ///< sent by the controller: "Tx"
    FromReceiver ///< sent by the receiver: "Rx"
};

/// Bytes that went over the line in one piece.
struct RecordedBytes
{
    Direction direction = Direction::ToReceiver;
    Clock::Duration time{}; ///< since the simulator was started, in its clock
    std::vector<std::uint8_t> bytes;
};

/// Reads a line that LogLine() wrote, with or without its line end.
/// @param error  what is wrong with it; untouched on success
[[nodiscard]] bool ParseLogLine(std::string_view line, RecordedBytes& piece, std::string& error);

/// One line of an exchange log, with CR LF: `00:1.000 Rcvr Tx [02 00 08 00 08 03 ]`. The time at
/// its start is the same in every line; the log has it so.
[[nodiscard]] std::string LogLine(Direction direction, std::span<const std::uint8_t> bytes);

/// What went over the line: the last pieces in memory, all of them in a file if one is open.
/// Any thread.
class ExchangeRecord
{
public:
    /// @param limit, byteLimit  pieces and bytes kept in memory; older ones are forgotten first
    ExchangeRecord(std::size_t limit, std::size_t byteLimit)
        : m_limit(limit), m_byteLimit(byteLimit)
    {}

    /// Writes every further piece to a new file at @p path, a line each.
    [[nodiscard]] bool OpenFile(const std::filesystem::path& path, std::string& error);

    void Add(Direction direction, Clock::Duration time, std::span<const std::uint8_t> bytes);
    [[nodiscard]] std::vector<RecordedBytes> Pieces() const; ///< oldest first

private:
    mutable std::mutex m_mutex;
    const std::size_t m_limit;
    const std::size_t m_byteLimit;
    std::deque<RecordedBytes> m_pieces; // guarded by m_mutex
    std::size_t m_bytes = 0;            // guarded by m_mutex: of m_pieces
    LogFile m_file;                     // guarded by m_mutex
    bool m_isTorn = false;              // guarded by m_mutex: the file could not be written
};

} // namespace fieldcore::simulator
