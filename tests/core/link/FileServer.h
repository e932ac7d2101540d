#pragma once

#include "tests/core/link/FarEnd.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace fieldcore::testing {

inline constexpr std::size_t kBlockBytes = 1000;

[[nodiscard]] inline Bytes Number(std::uint32_t value, std::size_t width)
{
    Bytes bytes(width);
    for (std::size_t i = 0; i < width; ++i) {
        bytes[width - 1 - i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
    return bytes;
}

/// Text, filled with blanks.
[[nodiscard]] inline Bytes Field(std::string text, std::size_t width)
{
    text.resize(width, ' ');
    return Ascii(text);
}

[[nodiscard]] inline Bytes PicaRecord(std::uint16_t index, std::string_view name,
                                      std::uint8_t attributes, const Bytes& dateAndTime)
{
    return Joined({Number(index, 2),
                   Field(std::string(name), 8),
                   Number(100, 4),
                   dateAndTime,
                   {attributes, 0}});
}

[[nodiscard]] inline Bytes LarkRecord(std::string_view name, std::uint32_t size,
                                      std::uint8_t attributes = 0, std::uint32_t time = 0x56E5FF00)
{
    return Joined(
        {Field(std::string(name), 14), Number(size, 4), Number(time, 4), {attributes, 0}});
}

/// A page of a listing: type 0x79 or 0x9D.
[[nodiscard]] inline Bytes Page(std::uint8_t type, std::uint8_t number,
                                const std::vector<Bytes>& records)
{
    Bytes data{number, static_cast<std::uint8_t>(records.size())};
    for (const Bytes& record : records) {
        data.insert(data.end(), record.begin(), record.end());
    }
    return Frame(type, data);
}

/// Bytes that differ from block to block.
[[nodiscard]] inline Bytes Content(std::size_t size)
{
    Bytes content(size);
    for (std::size_t i = 0; i < size; ++i) {
        content[i] = static_cast<std::uint8_t>(i * 7 + i / kBlockBytes * 13);
    }
    return content;
}

[[nodiscard]] inline Bytes Block(std::uint32_t offset, std::uint8_t flags, const Bytes& bytes)
{
    return LongFrame(Joined({Number(offset, 4), {flags}, bytes}));
}

/// The blocks of a file from @p offset on, each a frame.
[[nodiscard]] inline std::vector<Bytes> Blocks(const Bytes& content, std::size_t offset)
{
    std::vector<Bytes> blocks;
    do {
        const std::size_t end = std::min(offset + kBlockBytes, content.size());
        blocks.push_back(Block(static_cast<std::uint32_t>(offset), end == content.size() ? 1 : 0,
                               Bytes(content.begin() + static_cast<std::ptrdiff_t>(offset),
                                     content.begin() + static_cast<std::ptrdiff_t>(end))));
        offset = end;
    } while (offset < content.size());
    return blocks;
}

[[nodiscard]] inline std::uint32_t NumberAt(const Bytes& frame, std::size_t at)
{
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        number = number << 8U | frame.at(at + i);
    }
    return number;
}

/// Where a request 0x96 wants the file from.
[[nodiscard]] inline std::uint32_t WantedOffset(const Bytes& request)
{
    return NumberAt(request, 18);
}

} // namespace fieldcore::testing
