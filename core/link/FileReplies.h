#pragma once

#include "core/link/DirectoryListing.h"
#include "core/link/FrameReader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace fieldcore {

// The receiver's answers about files, read out of a frame as in Replies.h: nothing for a frame of
// another type, one shorter than what it announces, or one with more records than a page holds.

inline constexpr std::size_t kPicaPageFiles = 9;
inline constexpr std::size_t kLarkPageFiles = 8;

/// One page of a listing.
struct FilePage
{
    int number = 0;    ///< from 0; of a Lark 0 to 127
    bool last = false; ///< no other follows
    std::size_t count = 0;
    std::array<DirectoryListingData, kPicaPageFiles> files; ///< the first @c count are valid
};

/// A page of a Pica, reply 0x79. The time is the record's date, hour and minute (UTC) and 9 hours;
/// 0 where they are no date since 1980-01-06, the last second that fits where they are beyond it.
[[nodiscard]] std::optional<FilePage> ParsePicaFilePage(FrameReader frame);

/// A page of a Lark, frame 0x9D.
[[nodiscard]] std::optional<FilePage> ParseLarkFilePage(FrameReader frame);

/// A piece of a file, long frame 0x95.
struct FileBlock
{
    enum Flag : std::uint8_t
    {
        Last = 0x01,
        NoSuchFile = 0x02,
        Open = 0x04, ///< being written by the receiver
    };

    std::uint32_t offset = 0; ///< in the file
    std::uint8_t flags = 0;
    std::span<const std::uint8_t> bytes; ///< at most 1000; inside the frame
};
/// Nothing either for a frame that does not end in ETX.
[[nodiscard]] std::optional<FileBlock> ParseFileBlock(FrameReader frame);

} // namespace fieldcore
