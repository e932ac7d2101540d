#include "core/link/FrameHistory.h"

#include "core/platform/AtomicFile.h"

#include <algorithm>
#include <functional>
#include <string>

namespace fieldcore {

void FrameHistory::Add(Direction direction, LineUnit unit, std::span<const std::uint8_t> bytes)
{
    const Clock::UtcTime now = m_clock.Utc();
    const std::lock_guard lock(m_mutex);
    // The oldest gives its memory to the newest, so that a full history does not allocate.
    ExchangedFrame frame;
    if (m_frames.size() == kCapacity) {
        frame = std::move(m_frames.front());
        m_frames.pop_front();
    }
    frame.number = ++m_count;
    frame.time = now;
    frame.direction = direction;
    frame.unit = unit;
    frame.bytes.assign(bytes.begin(), bytes.end());
    m_frames.push_back(std::move(frame));
}

LineObserver FrameHistory::Observer()
{
    return std::bind_front(&FrameHistory::Add, this);
}

std::vector<ExchangedFrame> FrameHistory::After(std::uint64_t last) const
{
    const std::lock_guard lock(m_mutex);
    const auto first = std::ranges::upper_bound(m_frames, last, {}, &ExchangedFrame::number);
    return {first, m_frames.end()};
}

void FrameHistory::Clear()
{
    const std::lock_guard lock(m_mutex);
    m_frames.clear();
}

std::error_code SaveFrameLog(const std::filesystem::path& file,
                             std::span<const ExchangedFrame> frames)
{
    std::string log;
    for (const ExchangedFrame& frame : frames) {
        log += FrameLogLine(frame.direction, frame.bytes, frame.time);
    }
    return ReplaceFile(file, "fieldcore-frames.tmp", std::as_bytes(std::span(log)));
}

} // namespace fieldcore
