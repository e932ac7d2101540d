#include "core/link/FrameBuffer.h"

#include "core/link/FrameWriter.h"

#include <algorithm>

namespace fieldcore {

namespace {

constexpr std::uint32_t kLastIndex = kFrameBufferSize - 1;
constexpr std::uint32_t kMostData = 255; // of a frame that is sent

} // namespace

template <typename View, typename Work>
auto FrameBuffer::AtCursor(Work work)
{
    View view(PacketBuffer, m_cursor);
    auto result = work(view);
    m_cursor = static_cast<std::uint32_t>(view.Cursor());
    return result;
}

void FrameBuffer::BeginPacket(std::uint8_t type, std::uint32_t dataLength, bool clear)
{
    if (clear) {
        PacketBuffer.fill(0);
        m_cursor = kFrameDataStart;
    }
    FrameWriter(PacketBuffer).Header(type, dataLength);
    m_dataLength = dataLength;
}

int FrameBuffer::PutByte(std::uint8_t value)
{
    return AtCursor<FrameWriter>([&](FrameWriter& out) { return out.Byte(value) ? 1 : 0; });
}

void FrameBuffer::PutWord(std::uint16_t value)
{
    PutByte(static_cast<std::uint8_t>(value >> 8));
    PutByte(static_cast<std::uint8_t>(value));
}

void FrameBuffer::PutLong(std::uint32_t value)
{
    PutWord(static_cast<std::uint16_t>(value >> 16));
    PutWord(static_cast<std::uint16_t>(value));
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

void FrameBuffer::EndPacket()
{
    FrameWriter(PacketBuffer).End(m_dataLength);
}

std::uint32_t FrameBuffer::GetCursor() const
{
    return std::min(m_cursor, kLastIndex);
}

void FrameBuffer::SkipBytes(std::size_t count)
{
    if (m_cursor <= kLastIndex) {
        m_cursor += static_cast<std::uint32_t>(std::min<std::size_t>(count, kLastIndex - m_cursor));
    }
}

std::uint8_t FrameBuffer::GetByte(ByteForm form)
{
    return AtCursor<FrameReader>([form](FrameReader& in) { return in.Byte(form); });
}

std::uint16_t FrameBuffer::GetWord()
{
    return AtCursor<FrameReader>([](FrameReader& in) { return in.Word(); });
}

std::uint32_t FrameBuffer::GetTriple()
{
    return AtCursor<FrameReader>([](FrameReader& in) { return in.Triple(); });
}

std::uint32_t FrameBuffer::GetLong()
{
    return AtCursor<FrameReader>([](FrameReader& in) { return in.Long(); });
}

double FrameBuffer::GetDouble()
{
    return AtCursor<FrameReader>([](FrameReader& in) { return in.Double(); });
}

float FrameBuffer::GetFloat()
{
    return AtCursor<FrameReader>([](FrameReader& in) { return in.Float(); });
}

std::string FrameBuffer::GetChars(std::size_t count)
{
    return AtCursor<FrameReader>([count](FrameReader& in) { return in.Chars(count); });
}

std::wstring FrameBuffer::GetText(std::size_t count)
{
    return AtCursor<FrameReader>([count](FrameReader& in) { return in.Text(count); });
}

void FrameBuffer::Load(std::span<const std::uint8_t> frame)
{
    const std::size_t length = std::min(frame.size(), PacketBuffer.size());
    std::copy_n(frame.begin(), length, PacketBuffer.begin());
    m_dataLength = FrameReader(frame.first(length)).DataLength();
}

int FrameBuffer::VerifyChecksum() const
{
    return Reader().IsIntact(m_dataLength) ? 1 : 0;
}

std::span<const std::uint8_t> FrameBuffer::BuiltFrame() const
{
    return std::span(PacketBuffer).first(m_dataLength > kMostData ? 0 : m_dataLength + 6);
}

} // namespace fieldcore
