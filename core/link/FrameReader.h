#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace fieldcore {

/// Size of every buffer that holds a frame, bytes.
inline constexpr std::size_t kFrameBufferSize = 1024;

// What a frame begins and ends with, and the answers of a lone byte.
inline constexpr std::uint8_t kStx = 0x02;
inline constexpr std::uint8_t kEtx = 0x03;
inline constexpr std::uint8_t kAck = 0x06;
inline constexpr std::uint8_t kNak = 0x15;

/// The type of the only frames that carry a 16-bit data length.
inline constexpr std::uint8_t kLongFrameType = 0x95;

/// Where the data of a short frame begin.
inline constexpr std::size_t kFrameDataStart = 4;

/// How a byte is read.
enum class ByteForm
{
    Number,
    Digit, ///< an ASCII digit as its value; any character below '0' is 0
};

/// Reads one frame of the receiver's protocol from left to right. A view: it owns no bytes and must
/// not outlive them; copying it copies the cursor.
///
/// A frame is STX, status, type, data length n, n data bytes, checksum, ETX; a long frame (type
/// 0x95, received only) has two length bytes. The checksum is the sum of everything between STX
/// and itself, modulo 256. Integers are big-endian.
///
/// Nothing is ever read outside the bytes: what lies behind them reads as 0xFF, and a copy of
/// several bytes is made only if all of them are there. Any thread, one at a time.
class FrameReader
{
public:
    /// @param bytes   a frame from its STX on, or the buffer that it stands at the start of
    /// @param cursor  the first byte to read
    explicit FrameReader(std::span<const std::uint8_t> bytes, std::size_t cursor = kFrameDataStart)
        : m_bytes(bytes), m_cursor(cursor)
    {}

    /// The frame's type; 0 if there is none.
    [[nodiscard]] std::uint8_t Type() const { return m_bytes.size() > 2 ? m_bytes[2] : 0; }
    /// Where its data begin.
    [[nodiscard]] std::size_t DataStart() const
    {
        return kFrameDataStart + (Type() == kLongFrameType ? 1 : 0);
    }
    /// The data length of the header; 0 if there is none.
    [[nodiscard]] std::uint32_t DataLength() const;
    /// Whether STX stands first and the checksum is right. ETX is not looked at.
    [[nodiscard]] bool IsIntact() const;
    /// The data; empty if they are not there as a whole.
    [[nodiscard]] std::span<const std::uint8_t> Data() const;
    /// Bytes of the frame from STX to ETX, as its header announces them.
    [[nodiscard]] std::size_t Length() const { return DataStart() + DataLength() + 2; }

    [[nodiscard]] std::size_t Cursor() const { return m_cursor; }
    void Skip(std::size_t count);
    std::uint8_t Byte(ByteForm form = ByteForm::Number);
    std::uint16_t Word() { return static_cast<std::uint16_t>(Unsigned(2)); }
    std::uint32_t Triple() { return Unsigned(3); }
    std::uint32_t Long() { return Unsigned(4); }
    /// @param width  bytes, up to 4
    std::uint32_t Unsigned(std::size_t width);
    /// An IEEE 754 double; NaN if it is not there.
    double Double();
    /// The next @p count bytes as they are; empty if they are not there.
    std::span<const std::uint8_t> Bytes(std::size_t count);
    /// The same as characters.
    std::string Chars(std::size_t count);
    /// @p count bytes of CP932 as text, at most 255 bytes of them; a zero byte ends the text.
    std::wstring Text(std::size_t count);

private:
    std::span<const std::uint8_t> m_bytes;
    std::size_t m_cursor;
};

/// The checksum of a frame: of everything between STX and the byte at @p end.
[[nodiscard]] std::uint8_t FrameChecksum(std::span<const std::uint8_t> frame, std::size_t end);

} // namespace fieldcore
