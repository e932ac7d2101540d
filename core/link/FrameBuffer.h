#pragma once

#include "core/link/FrameReader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace fieldcore {

/// One frame of the receiver's protocol, being built or being read, with a cursor.
///
/// A frame is STX, status, type, data length n, n data bytes, checksum, ETX; a long frame (type
/// 0x95, received only) has two length bytes. The checksum is the sum of everything between STX
/// and itself, modulo 256. Integers are big-endian.
///
/// Nothing ever happens outside the 1024 bytes: a write behind the last byte is dropped, a read
/// there yields 0xFF, a copy of several bytes is made only if it lies inside the buffer
/// entirely. The cursor shows 1023 at the most. One thread.
class FrameBuffer
{
public:
    using ByteForm = fieldcore::ByteForm;

    // Building a frame. Each writes at the cursor and advances it.

    /// Writes the first four bytes.
    /// @param dataLength  more than 255 makes a frame that cannot be sent
    /// @param clear  zero the buffer first and put the cursor behind the header
    void BeginPacket(std::uint8_t type, std::uint32_t dataLength, bool clear = true);
    /// @return 0 if the byte was dropped
    int PutByte(std::uint8_t value);
    void PutWord(std::uint16_t value)
    {
        PutByte(static_cast<std::uint8_t>(value >> 8));
        PutByte(static_cast<std::uint8_t>(value));
    }
    void PutLong(std::uint32_t value)
    {
        PutWord(static_cast<std::uint16_t>(value >> 16));
        PutWord(static_cast<std::uint16_t>(value));
    }
    /// Writes CP932 text, cut or blank-filled to @p width bytes.
    /// @param useTextLength  the width is the converted text's own length instead
    void PutText(std::wstring_view text, std::size_t width, bool useTextLength = false);
    /// Puts right a data length that is known only after the data are written: cursor minus 4.
    void SetPacketLength(std::uint32_t dataLength);
    /// Writes checksum and ETX behind the data; the cursor is not used.
    void EndPacket();

    // Reading a frame. Each reads at the cursor and advances it.

    [[nodiscard]] std::uint8_t GetReplyType() const { return PacketBuffer[2]; }
    [[nodiscard]] std::uint32_t GetDataLength() const { return m_dataLength; }
    /// Puts the cursor on the first data byte of a short frame.
    void ResetReadPos() { m_cursor = kFrameDataStart; }
    [[nodiscard]] std::uint32_t GetCursor() const { return std::min(m_cursor, kLastIndex); }
    /// Moves the cursor on, at most to the last byte.
    void SkipBytes(std::size_t count);
    std::uint8_t GetByte(ByteForm form = ByteForm::Number)
    {
        return AtCursor([=](FrameReader& in) { return in.Byte(form); });
    }
    std::uint16_t GetWord() { return AtCursor(&FrameReader::Word); }
    std::uint32_t GetTriple() { return AtCursor(&FrameReader::Triple); }
    std::uint32_t GetLong() { return AtCursor(&FrameReader::Long); }
    /// An IEEE 754 double; NaN if it does not lie inside the buffer.
    double GetDouble() { return AtCursor(&FrameReader::Double); }
    /// @p count raw characters, as they are; empty if they do not lie inside the buffer.
    std::string GetChars(std::size_t count)
    {
        return AtCursor([=](FrameReader& in) { return in.Chars(count); });
    }
    /// @p count bytes of CP932 as text, at most 255 bytes of them; a zero byte ends the text.
    std::wstring GetText(std::size_t count)
    {
        return AtCursor([=](FrameReader& in) { return in.Text(count); });
    }

    /// Puts a received frame in place and takes its data length from its header. Anything that
    /// is too short to have one counts as a frame without data.
    void Load(std::span<const std::uint8_t> frame);

    /// @return 1 if STX stands first and the checksum is right (ETX is not looked at), else 0
    [[nodiscard]] int VerifyChecksum() const { return Reader().IsIntact() ? 1 : 0; }

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return PacketBuffer; }
    /// The frame in the buffer, to be read from its data on.
    [[nodiscard]] FrameReader Reader() const { return FrameReader(PacketBuffer); }
    /// The frame that was built: data length + 6 bytes; empty if that does not make a frame.
    [[nodiscard]] std::span<const std::uint8_t> BuiltFrame() const;

protected:
    void SetDataLength(std::uint32_t length) { m_dataLength = length; }
    /// Takes the data length from the header of the frame in the buffer.
    void ReadDataLength() { m_dataLength = Reader().DataLength(); }

    std::array<std::uint8_t, kFrameBufferSize> PacketBuffer{};

private:
    /// Reads at the cursor and moves it on.
    template <typename Read>
    std::invoke_result_t<Read, FrameReader&> AtCursor(Read read)
    {
        FrameReader in(PacketBuffer, m_cursor);
        auto result = std::invoke(read, in);
        m_cursor = static_cast<std::uint32_t>(in.Cursor());
        return result;
    }

    static constexpr std::uint32_t kLastIndex = kFrameBufferSize - 1;

    std::uint32_t m_dataLength = 0;
    std::uint32_t m_cursor = kFrameDataStart; // 1024: behind the last byte
};

} // namespace fieldcore
