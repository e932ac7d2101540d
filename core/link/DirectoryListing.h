#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace fieldcore {

/// Longest name of a file in the receiver, characters; as bytes of CP932 it is as long at most.
inline constexpr std::size_t kLongestFileName = 14;

/// One file in the receiver's memory, as the listing reports it.
struct DirectoryListingData
{
    /// The attributes of a Pica's file.
    enum PicaAttribute : std::uint8_t
    {
        NotListed = 0x01,
        BeingLogged = 0x20,
        Deleted = 0x80, ///< in the recycle bin
    };

    std::uint8_t pageFlag = 0;               ///< Lark: the page byte; Pica: 128 if more follows
    wchar_t name[kLongestFileName + 1] = {}; ///< Lark: with extension; Pica: without; ends with 0
    std::uint32_t size = 0;                  ///< bytes
    std::uint32_t time = 0;                  ///< seconds since 1980-01-06 00:00
    std::uint8_t attributes = 0;             ///< Lark: not 0 while the file is open
    std::uint8_t spare = 0;
    std::uint16_t fileIndex = 0; ///< Pica: the receiver's number for the file

    /// The name; valid as long as the record is.
    [[nodiscard]] std::wstring_view Name() const { return name; }
};

/// How many files a listing can hold; what the receiver lists beyond them is dropped.
inline constexpr std::size_t kMostFiles = 512;

/// The files of the last listing by their index. Never cleared: an index that a listing does not
/// reach keeps the record of an earlier one. A record that was never filled has no name.
using DirectoryTable = std::array<DirectoryListingData, kMostFiles>;

/// What a listing posts to its window, WM_APP+5: wParam 0 and lParam the index for every record
/// that was stored, in their order, then once wParam 1 when the listing has ended or failed.
inline constexpr unsigned kFileListMessage = 0x8005;

} // namespace fieldcore
