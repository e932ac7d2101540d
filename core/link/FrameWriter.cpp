#include "core/link/FrameWriter.h"

#include "core/platform/Cp932.h"

#include <algorithm>
#include <string>

namespace fieldcore {

namespace {

constexpr std::uint8_t kStx = 0x02;
constexpr std::uint8_t kEtx = 0x03;

} // namespace

void FrameWriter::Header(std::uint8_t type, std::uint32_t dataLength)
{
    m_buffer[0] = kStx;
    m_buffer[1] = 0x00;
    m_buffer[2] = type;
    m_buffer[3] = static_cast<std::uint8_t>(dataLength);
}

bool FrameWriter::Byte(std::uint8_t value)
{
    if (m_cursor >= m_buffer.size()) {
        return false;
    }
    m_buffer[m_cursor++] = value;
    return true;
}

void FrameWriter::Word(std::uint16_t value)
{
    Byte(static_cast<std::uint8_t>(value >> 8));
    Byte(static_cast<std::uint8_t>(value));
}

void FrameWriter::Long(std::uint32_t value)
{
    Word(static_cast<std::uint16_t>(value >> 16));
    Word(static_cast<std::uint16_t>(value));
}

void FrameWriter::Bytes(std::span<const std::uint8_t> bytes)
{
    for (const std::uint8_t byte : bytes) {
        Byte(byte);
    }
}

void FrameWriter::Text(std::wstring_view text, std::size_t width)
{
    Put(ToCp932Field(text, width));
}

void FrameWriter::Text(std::wstring_view text)
{
    Put(ToCp932(text));
}

void FrameWriter::Put(std::string_view text)
{
    const std::size_t room = m_buffer.size() - m_cursor;
    if (text.size() <= room) {
        std::copy(text.begin(), text.end(),
                  m_buffer.begin() + static_cast<std::ptrdiff_t>(m_cursor));
    }
    m_cursor += std::min(text.size(), room);
}

void FrameWriter::End(std::uint32_t dataLength)
{
    const std::size_t end = kFrameDataStart + dataLength;
    if (end + 1 < m_buffer.size()) {
        m_buffer[end] = FrameChecksum(m_buffer, end);
        m_buffer[end + 1] = kEtx;
    }
}

} // namespace fieldcore
