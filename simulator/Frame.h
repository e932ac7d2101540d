#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace fieldcore::simulator {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint8_t kStx = 0x02;
inline constexpr std::uint8_t kEtx = 0x03;
inline constexpr std::uint8_t kAck = 0x06;
inline constexpr std::uint8_t kNak = 0x15;
inline constexpr std::uint8_t kLongFrame = 0x95; ///< the one type with a 16-bit length
inline constexpr std::size_t kFrameOverhead = 6; ///< bytes of a frame that are not data

/// A whole frame: STX, status 0, type, length, data, check byte, ETX. At most 255 data bytes; for
/// type 0x95, whose length has two bytes, 65535.
[[nodiscard]] Bytes MakeFrame(std::uint8_t type, std::span<const std::uint8_t> data);
[[nodiscard]] Bytes MakeFrame(std::uint8_t type, std::string_view text);

/// The sum of @p bytes modulo 256.
[[nodiscard]] std::uint8_t CheckSum(std::span<const std::uint8_t> bytes);

/// The data part of a reply, written from left to right. Numbers are big-endian.
class DataWriter
{
public:
    DataWriter& U8(std::uint64_t value) { return Integer(value, 1); }
    DataWriter& U16(std::uint64_t value) { return Integer(value, 2); }
    DataWriter& U24(std::uint64_t value) { return Integer(value, 3); }
    DataWriter& U32(std::uint64_t value) { return Integer(value, 4); }
    DataWriter& F32(double value);
    DataWriter& F64(double value);
    /// Exactly @p width bytes: cut, or filled with blanks on the right.
    DataWriter& Text(std::string_view text, std::size_t width);
    /// Decimal digits, filled with zeros on the left; what does not fit becomes all nines.
    DataWriter& Digits(long value, std::size_t width);
    /// A decimal number with one decimal, filled with blanks on the left.
    DataWriter& Tenths(double value, std::size_t width);

    /// Room for @p count bytes that the caller fills in at once.
    [[nodiscard]] std::span<std::uint8_t> Room(std::size_t count);

    [[nodiscard]] const Bytes& Data() const { return m_data; }
    [[nodiscard]] Bytes Frame(std::uint8_t type) const { return MakeFrame(type, m_data); }

private:
    DataWriter& Integer(std::uint64_t value, unsigned width);

    Bytes m_data;
};

} // namespace fieldcore::simulator
