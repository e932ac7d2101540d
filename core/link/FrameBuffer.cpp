#include "core/link/FrameBuffer.h"

#include "core/platform/Cp932.h"

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
    PacketBuffer[0] = kStx;
    PacketBuffer[1] = 0x00;
    PacketBuffer[2] = type;
    SetPacketLength(dataLength);
}

int FrameBuffer::PutByte(std::uint8_t value)
{
    if (m_cursor > kLastIndex) {
        return 0;
    }
    PacketBuffer[m_cursor++] = value;
    return 1;
}

void FrameBuffer::PutText(std::wstring_view text, std::size_t width, bool useTextLength)
{
    const std::string bytes = useTextLength ? ToCp932(text) : ToCp932Field(text, width);
    const std::size_t room = PacketBuffer.size() - m_cursor;
    if (bytes.size() <= room) {
        std::copy(bytes.begin(), bytes.end(), PacketBuffer.begin() + m_cursor);
    }
    m_cursor += static_cast<std::uint32_t>(std::min(bytes.size(), room));
}

void FrameBuffer::SetPacketLength(std::uint32_t dataLength)
{
    PacketBuffer[3] = static_cast<std::uint8_t>(dataLength);
    m_dataLength = dataLength;
}

void FrameBuffer::EndPacket()
{
    const std::size_t end = kFrameDataStart + std::size_t{m_dataLength};
    if (end + 1 < PacketBuffer.size()) {
        PacketBuffer[end] = FrameChecksum(PacketBuffer, end);
        PacketBuffer[end + 1] = kEtx;
    }
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
