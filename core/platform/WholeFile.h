#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace fieldcore {

/// The content of a file. Whatever lies under the name, reading ends. Any thread.
/// @param limit  a longer file is read up to here, bytes
/// @return nothing if there is no such regular file or it cannot be read
[[nodiscard]] std::optional<std::vector<std::uint8_t>>
ReadWholeFile(const std::filesystem::path& file, std::size_t limit);

} // namespace fieldcore
