#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace fieldcore {

// What is shown of a file in the receiver, and what it is called. No state; any thread.

/// A receiver's file as it stands in the list: up to the first dot, 14 characters at most.
[[nodiscard]] std::wstring FileRowName(std::wstring_view name);

/// "YY/MM/DD", without a time of day and without a shift to a time zone. From the year 2100 on
/// the year has three digits.
/// @param seconds  since 1980-01-06 00:00
[[nodiscard]] std::wstring FileDateText(std::uint32_t seconds);

/// The folder of that day, "2016-04-21". As it stands for the last two digits of the year, those of
/// 80 and above lie in the last century, and the others in this one.
[[nodiscard]] std::wstring DateFolderName(std::uint32_t seconds);

/// "hh:mm" of the same moment.
[[nodiscard]] std::wstring FileTimeText(std::uint32_t seconds);

/// Kilobytes with one decimal and no unit below 1000 of them, else megabytes with "M".
[[nodiscard]] std::wstring FileSizeText(double bytes);
/// What stands behind such a text where there is room for a unit.
[[nodiscard]] const wchar_t* FileSizeUnit(std::wstring_view sizeText);

/// Extension of the receiver's files, with its dot.
/// @param q02Format  the receiver writes the newer format
/// @param version    firmware version; 0.0 when unknown
/// @param live       false: the name that a deleted file has
[[nodiscard]] const wchar_t* FileExtension(bool q02Format, double version, bool live);

/// "約 3 MB" and the like, for a sum of files.
[[nodiscard]] std::wstring TotalSizeText(std::uint64_t bytes);

/// "約 20 秒" and the like: how long @p bytes take at @p bitsPerSecond, ten bits a byte. A rate of
/// 0 counts as 9600.
[[nodiscard]] std::wstring TransferTimeText(std::uint64_t bytes, std::uint32_t bitsPerSecond);

// Amounts of bytes as every language writes them.

/// "812 B", "47.1 KB", "3.06 MB": three digits, of units of 1024.
[[nodiscard]] std::wstring ByteCountText(std::uint64_t bytes);

/// "11.4 KB/s"; "--" for a rate that is not known: 0, less, or no number.
[[nodiscard]] std::wstring ByteRateText(double bytesPerSecond);

} // namespace fieldcore
