#pragma once

#include "core/link/FrameBuffer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace fieldcore {

/// Bytes that were read from the port and wait to be assembled. Of fixed size once made: nothing
/// allocates while the port is open. Not locked; its owner guards it.
class ByteQueue
{
public:
    explicit ByteQueue(std::size_t capacity = 0) : m_bytes(capacity) {}

    [[nodiscard]] std::size_t Size() const { return m_end - m_begin; }

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const
    {
        return std::span(m_bytes).subspan(m_begin, Size());
    }

    /// Room behind the queued bytes; what was written there is queued by Commit().
    [[nodiscard]] std::span<std::uint8_t> Free() { return std::span(m_bytes).subspan(m_end); }
    void Commit(std::size_t count) { m_end += std::min(count, m_bytes.size() - m_end); }

    /// Takes the oldest bytes.
    /// @return how many there were, at most the size of @p destination
    std::size_t Take(std::span<std::uint8_t> destination)
    {
        const std::size_t count = std::min(destination.size(), Size());
        std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(m_begin), count,
                    destination.begin());
        m_begin += count;
        if (m_begin == m_end) {
            Clear();
        }
        return count;
    }

    void Clear() { m_begin = m_end = 0; }

private:
    std::vector<std::uint8_t> m_bytes;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

/// What the reader of a port has to report to whoever waits for an answer.
enum class ExchangeState : int
{
    Nothing = 0,
    Frame = 1,  ///< a complete frame, or a complete line of text
    Ack = kAck, ///< the lone byte, as the next
    Nak = kNak,
    Malformed = -201,
    TimedOut = -202,
};

/// One report.
struct Delivery
{
    ExchangeState state = ExchangeState::Nothing;
    std::size_t length = 0; ///< bytes of the buffer that belong to it; 0 if malformed
};

/// Makes frames, lone answer bytes or lines of text out of the queued bytes of a port. It reads
/// exactly what the header of a frame announces, so that frames which arrive together are told
/// apart and the bytes of a following one stay queued. Allocates nothing. Not locked.
class FrameAssembler
{
public:
    /// More than this is never taken from the queue in one step.
    static constexpr std::size_t kLargestStep = 512;

    /// One pass over the first @p available queued bytes: ends when they are used up, when a step
    /// would take more than kLargestStep bytes (nothing is taken then), or with a delivery, after
    /// which Buffer() holds what was delivered until the next pass.
    ///
    /// A frame that announces more than the buffer holds is malformed. A frame of type 0x40 is
    /// nobody's answer: it is put aside (see Unsolicited()) and the pass goes on.
    [[nodiscard]] std::optional<Delivery> AssembleFrame(ByteQueue& queue, std::size_t available);

    /// The same for text: a line is complete with an LF at index 2 or later, which is not part
    /// of it, and whatever is queued behind it is lost. So is what exceeds 255 bytes at a time.
    [[nodiscard]] std::optional<Delivery> AssembleLine(ByteQueue& queue);

    /// Forgets a half-assembled frame.
    void Reset() { m_count = 0; }
    /// What is half assembled.
    [[nodiscard]] std::span<const std::uint8_t> HalfAssembled() const
    {
        return std::span(m_buffer).first(m_count);
    }

    [[nodiscard]] std::span<const std::uint8_t> Buffer() const { return m_buffer; }
    /// The bytes that the last delivery was made of, those of malformed input too.
    [[nodiscard]] std::span<const std::uint8_t> DeliveredBytes() const
    {
        return std::span(m_buffer).first(m_delivered);
    }

    /// How many frames of type 0x40 have come.
    [[nodiscard]] unsigned UnsolicitedCount() const { return m_unsolicitedCount; }
    /// The last of them; empty if there was none.
    [[nodiscard]] std::span<const std::uint8_t> Unsolicited() const
    {
        return std::span(m_unsolicited).first(m_unsolicitedLength);
    }

private:
    void Append(ByteQueue& queue, std::size_t count);
    void PutAside();
    Delivery Deliver(ExchangeState state, std::size_t length);

    std::array<std::uint8_t, kFrameBufferSize> m_buffer{};
    std::size_t m_count = 0;     // bytes of the frame so far
    std::size_t m_delivered = 0; // bytes that the last delivery took
    std::array<std::uint8_t, kFrameBufferSize> m_unsolicited{};
    std::size_t m_unsolicitedLength = 0;
    unsigned m_unsolicitedCount = 0;
};

} // namespace fieldcore
