#pragma once

#include "core/link/Command.h"
#include "core/link/FrameLog.h"
#include "core/platform/Clock.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <mutex>
#include <span>
#include <system_error>
#include <vector>

namespace fieldcore {

/// What went over the line in one piece.
struct ExchangedFrame
{
    std::uint64_t number = 0; ///< counted from 1 on
    Clock::UtcTime time;
    Direction direction = Direction::Sent;
    LineUnit unit = LineUnit::Frame;
    std::vector<std::uint8_t> bytes;
};

/// The last that went over the line, frames and all else; the oldest go first. Any thread.
class FrameHistory
{
public:
    static constexpr std::size_t kCapacity = 10000; // frames

    /// @param clock  must outlive the object
    explicit FrameHistory(const Clock& clock) : m_clock(clock) {}

    void Add(Direction direction, LineUnit unit, std::span<const std::uint8_t> bytes);

    /// Keeps what passes a channel from now on; the object must outlive the channel's use of it.
    [[nodiscard]] LineObserver Observer();

    /// Those behind number @p last, oldest first; 0: all that are kept.
    [[nodiscard]] std::vector<ExchangedFrame> After(std::uint64_t last) const;

    /// Forgets them; the numbers go on.
    void Clear();

private:
    const Clock& m_clock;
    mutable std::mutex m_mutex; // guards what follows
    std::deque<ExchangedFrame> m_frames;
    std::uint64_t m_count = 0;
};

/// Replaces @p file by an exchange log of these, each with its time; see FrameLogLine().
/// @return what went wrong; the old file is then still there
[[nodiscard]] std::error_code SaveFrameLog(const std::filesystem::path& file,
                                           std::span<const ExchangedFrame> frames);

} // namespace fieldcore
