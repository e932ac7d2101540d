#include "core/link/FrameAssembler.h"

#include <algorithm>

namespace fieldcore {

namespace {

constexpr std::uint8_t kUnsolicitedType = 0x40;
constexpr std::size_t kHeaderLength = 5; // enough to know the length of either kind of frame
constexpr std::size_t kLongestLinePiece = 255;
constexpr std::size_t kShortestLine = 2; // an LF before this index is part of the line

} // namespace

std::optional<Delivery> FrameAssembler::AssembleFrame(ByteQueue& queue, std::size_t available)
{
    available = std::min(available, queue.Size());
    while (available > 0) {
        if (m_count == 0 && available == 1) {
            Append(queue, 1);
            const std::uint8_t byte = m_buffer[0];
            if (byte == kStx) {
                return std::nullopt;
            }
            return byte == kAck || byte == kNak ? Deliver(static_cast<ExchangeState>(byte), 1)
                                                : Deliver(ExchangeState::Malformed, 0);
        }
        if (m_count < kHeaderLength) {
            const std::size_t header = std::min(kHeaderLength - m_count, available);
            Append(queue, header);
            available -= header;
            if (m_count < kHeaderLength) {
                return std::nullopt;
            }
        }
        const std::size_t expected = FrameReader(m_buffer).Length();
        if (expected > m_buffer.size()) {
            return Deliver(ExchangeState::Malformed, 0);
        }
        const std::size_t readNow = std::min(expected - m_count, available);
        if (readNow > kLargestStep) {
            return std::nullopt;
        }
        Append(queue, readNow);
        available -= readNow;
        if (m_buffer[0] != kStx) {
            return Deliver(ExchangeState::Malformed, 0);
        }
        if (m_count == expected) {
            if (m_buffer[2] != kUnsolicitedType) {
                return Deliver(ExchangeState::Frame, expected);
            }
            PutAside();
        }
    }
    return std::nullopt;
}

std::optional<Delivery> FrameAssembler::AssembleLine(ByteQueue& queue)
{
    const std::size_t before = m_count;
    const std::size_t room = m_buffer.size() - m_count;
    const bool tooMuch = queue.Size() > kLongestLinePiece;
    Append(queue, std::min(tooMuch ? kLongestLinePiece : queue.Size(), room));
    queue.Clear();

    const auto begin = m_buffer.begin();
    const auto end = begin + static_cast<std::ptrdiff_t>(m_count);
    const auto first =
        begin + static_cast<std::ptrdiff_t>(std::max(kShortestLine, std::min(before, m_count)));
    const auto lineFeed = first < end ? std::find(first, end, '\n') : end;
    if (lineFeed != end) {
        return Deliver(ExchangeState::Frame, static_cast<std::size_t>(lineFeed - begin));
    }
    if (m_count == m_buffer.size()) {
        return Deliver(ExchangeState::Malformed, 0);
    }
    return std::nullopt;
}

void FrameAssembler::Append(ByteQueue& queue, std::size_t count)
{
    m_count += queue.Take(std::span(m_buffer).subspan(m_count, count));
}

void FrameAssembler::PutAside()
{
    std::copy_n(m_buffer.begin(), m_count, m_unsolicited.begin());
    m_unsolicitedLength = m_count;
    ++m_unsolicitedCount;
    Reset();
}

Delivery FrameAssembler::Deliver(ExchangeState state, std::size_t length)
{
    m_delivered = m_count;
    Reset();
    return {state, length};
}

} // namespace fieldcore
