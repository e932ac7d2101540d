#pragma once

#include "core/link/FrameReader.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

namespace fieldcore {

/// Writes a request into a buffer from left to right; see FrameReader for what a frame is. A view:
/// the buffer must outlive it. What does not fit is dropped, and the cursor goes on all the same,
/// at most behind the last byte. Any thread, one at a time.
class FrameWriter
{
public:
    /// @param cursor  where the next byte goes
    explicit FrameWriter(std::span<std::uint8_t> buffer, std::size_t cursor = kFrameDataStart)
        : m_buffer(buffer), m_cursor(cursor)
    {}

    /// Writes the first four bytes. @param dataLength  its low byte is what the frame carries
    void Header(std::uint8_t type, std::uint32_t dataLength);
    /// @return false if the byte was dropped
    bool Byte(std::uint8_t value);
    void Word(std::uint16_t value);
    void Long(std::uint32_t value);
    void Bytes(std::span<const std::uint8_t> bytes);
    /// CP932 text, cut or blank-filled to @p width bytes.
    void Text(std::wstring_view text, std::size_t width);
    /// CP932 text as long as it is.
    void Text(std::wstring_view text);
    /// Checksum and ETX behind @p dataLength bytes of data; the cursor is not used.
    void End(std::uint32_t dataLength);

    [[nodiscard]] std::size_t Cursor() const { return m_cursor; }

private:
    void Put(std::string_view text);

    std::span<std::uint8_t> m_buffer;
    std::size_t m_cursor;
};

} // namespace fieldcore
