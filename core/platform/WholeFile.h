#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace fieldcore {

/// The content of a file. Whatever lies under the name, reading ends. Any thread.
/// @param limit  a longer file is read up to here, bytes
/// @return nothing if there is no such regular file or it cannot be read
[[nodiscard]] std::optional<std::vector<std::uint8_t>>
ReadWholeFile(const std::filesystem::path& file, std::size_t limit);

/// What tells a file from the one that it was before and from one that takes its place: when it was
/// last written, to the nanosecond, its number in the file system, and its size. Any thread.
/// @return empty if there is none
[[nodiscard]] std::string FileIdentity(const std::filesystem::path& file);

/// Renames a damaged file to NAME.damaged-1, -2 and so on, so that it can still be looked at.
/// @return its new path, empty if it has kept its name
[[nodiscard]] std::filesystem::path SetFileAside(const std::filesystem::path& file);

} // namespace fieldcore
