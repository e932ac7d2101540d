#include "core/link/FrameBuffer.h"

#include "core/platform/Cp932.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace fieldcore {

namespace {

constexpr std::uint8_t kStx = 0x02;
constexpr std::uint8_t kEtx = 0x03;
constexpr std::size_t kHeaderLength = 4;
constexpr std::uint32_t kLastIndex = kFrameBufferSize - 1;
constexpr std::uint32_t kBehindLast = kFrameBufferSize;
constexpr std::size_t kLongestText = 255;
constexpr std::uint32_t kMostData = 255; // of a frame that is sent

} // namespace

void FrameBuffer::BeginPacket(std::uint8_t type, std::uint32_t dataLength, bool clear)
{
    if (m_locked) {
        return;
    }
    if (clear) {
        PacketBuffer.fill(0);
        m_cursor = kHeaderLength;
    }
    PacketBuffer[0] = kStx;
    PacketBuffer[1] = 0x00;
    PacketBuffer[2] = type;
    PacketBuffer[3] = static_cast<std::uint8_t>(dataLength);
    m_dataLength = dataLength;
}

int FrameBuffer::PutByte(std::uint8_t value)
{
    if (m_locked || m_cursor > kLastIndex) {
        return 0;
    }
    PacketBuffer[m_cursor] = value;
    Advance(1);
    return 1;
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
    const std::string bytes = useTextLength ? ToCp932(text) : ToCp932Field(text, width);
    if (m_locked || m_cursor + bytes.size() > PacketBuffer.size()) {
        return;
    }
    std::copy(bytes.begin(), bytes.end(), PacketBuffer.begin() + m_cursor);
    Advance(bytes.size());
}

void FrameBuffer::SetPacketLength(std::uint32_t dataLength)
{
    if (m_locked) {
        return;
    }
    PacketBuffer[3] = static_cast<std::uint8_t>(dataLength);
    m_dataLength = dataLength;
}

void FrameBuffer::EndPacket()
{
    if (m_locked) {
        return;
    }
    const std::size_t end = kHeaderLength + m_dataLength;
    if (end + 1 < PacketBuffer.size()) {
        PacketBuffer[end] = Checksum(end);
        PacketBuffer[end + 1] = kEtx;
    }
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

void FrameBuffer::Advance(std::size_t count)
{
    m_cursor += static_cast<std::uint32_t>(std::min<std::size_t>(count, kBehindLast - m_cursor));
}

std::uint8_t FrameBuffer::GetByte(ByteForm form)
{
    const auto value = static_cast<std::uint8_t>(GetInteger(1));
    if (form == ByteForm::Number) {
        return value;
    }
    // The top bit makes a negative character, which is below '0' like a blank.
    const bool belowZero = value < '0' || value >= 0x80;
    return belowZero ? std::uint8_t{0} : static_cast<std::uint8_t>(value - '0');
}

std::uint16_t FrameBuffer::GetWord()
{
    return static_cast<std::uint16_t>(GetInteger(2));
}

std::uint32_t FrameBuffer::GetTriple()
{
    return GetInteger(3);
}

std::uint32_t FrameBuffer::GetLong()
{
    return GetInteger(4);
}

double FrameBuffer::GetDouble()
{
    const auto bytes = Take(sizeof(double));
    if (bytes.empty()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    std::uint64_t bits = 0;
    for (const std::uint8_t byte : bytes) {
        bits = bits << 8 | byte;
    }
    return std::bit_cast<double>(bits);
}

float FrameBuffer::GetFloat()
{
    return std::bit_cast<float>(GetInteger(sizeof(float)));
}

std::string FrameBuffer::GetChars(std::size_t count)
{
    const auto bytes = Take(count);
    return {bytes.begin(), bytes.end()};
}

std::wstring FrameBuffer::GetText(std::size_t count)
{
    std::string bytes = GetChars(count);
    bytes.resize(std::min(bytes.size(), kLongestText));
    bytes.resize(std::min(bytes.size(), bytes.find('\0')));
    return FromCp932(bytes);
}

void FrameBuffer::Load(std::span<const std::uint8_t> frame)
{
    const std::size_t length = std::min(frame.size(), PacketBuffer.size());
    std::copy_n(frame.begin(), length, PacketBuffer.begin());
    m_dataLength = 0;
    if (length > kHeaderLength) {
        ReadDataLength();
    }
}

void FrameBuffer::ReadDataLength()
{
    m_dataLength = PacketBuffer[3];
    if (GetReplyType() == kLongFrameType) {
        m_dataLength = m_dataLength << 8 | PacketBuffer[4];
    }
}

int FrameBuffer::VerifyChecksum() const
{
    const std::size_t lengthBytes = GetReplyType() == kLongFrameType ? 2 : 1;
    const std::size_t end = 3 + lengthBytes + m_dataLength;
    if (PacketBuffer[0] != kStx || end >= PacketBuffer.size()) {
        return 0;
    }
    return Checksum(end) == PacketBuffer[end] ? 1 : 0;
}

std::span<const std::uint8_t> FrameBuffer::BuiltFrame() const
{
    return std::span(PacketBuffer).first(m_dataLength > kMostData ? 0 : m_dataLength + 6);
}

std::span<const std::uint8_t> FrameBuffer::Take(std::size_t count)
{
    const std::size_t start = m_cursor;
    Advance(count);
    if (count > PacketBuffer.size() - start) {
        return {};
    }
    return std::span(PacketBuffer).subspan(start, count);
}

std::uint32_t FrameBuffer::GetInteger(std::size_t width)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        const std::size_t index = m_cursor + i;
        value = value << 8 | (index < PacketBuffer.size() ? PacketBuffer[index] : 0xFFU);
    }
    Advance(width);
    return value;
}

std::uint8_t FrameBuffer::Checksum(std::size_t end) const
{
    unsigned sum = 0;
    for (std::size_t i = 1; i < end; ++i) {
        sum += PacketBuffer[i];
    }
    return static_cast<std::uint8_t>(sum);
}

} // namespace fieldcore
