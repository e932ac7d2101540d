#include "core/link/FrameBuffer.h"

#include <algorithm>

namespace fieldcore {

namespace {

constexpr std::uint32_t kMostData = 255; // of a frame that is sent

} // namespace

void FrameBuffer::BeginPacket(std::uint8_t type, std::uint32_t dataLength, bool clear)
{
    if (clear) {
        PacketBuffer.fill(0);
        m_cursor = kFrameDataStart;
    }
    FrameWriter(PacketBuffer).Header(type, dataLength);
    m_dataLength = dataLength;
}

void FrameBuffer::PutText(std::wstring_view text, std::size_t width, bool useTextLength)
{
    AtCursor<FrameWriter>([&](FrameWriter& out) {
        useTextLength ? out.Text(text) : out.Text(text, width);
        return 1;
    });
}

void FrameBuffer::SetPacketLength(std::uint32_t dataLength)
{
    PacketBuffer[3] = static_cast<std::uint8_t>(dataLength);
    m_dataLength = dataLength;
}

void FrameBuffer::SkipBytes(std::size_t count)
{
    if (m_cursor <= kLastIndex) {
        m_cursor += static_cast<std::uint32_t>(std::min<std::size_t>(count, kLastIndex - m_cursor));
    }
}

void FrameBuffer::Load(std::span<const std::uint8_t> frame)
{
    const std::size_t length = std::min(frame.size(), PacketBuffer.size());
    std::copy_n(frame.begin(), length, PacketBuffer.begin());
    m_dataLength = FrameReader(frame.first(length)).DataLength();
}

std::span<const std::uint8_t> FrameBuffer::BuiltFrame() const
{
    return std::span(PacketBuffer).first(m_dataLength > kMostData ? 0 : m_dataLength + 6);
}

} // namespace fieldcore
