#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <system_error>
#include <vector>

namespace fieldcore {

// Files that are replaced as a whole: whoever reads one sees the old content or the new, also
// after a crash or a flat battery. All calls may come from any thread.

/// Writes @p content to @p file as it is: it may be cut if the machine stops. A symbolic link in
/// its place is not followed.
/// @return what went wrong
[[nodiscard]] std::error_code WriteWholeFile(const std::filesystem::path& file,
                                             std::span<const std::uint8_t> content);

/// Puts @p temporary in the place of @p target, in the same folder, once its content is safely on
/// the medium.
/// @return what went wrong; @p target is then as it was, and @p temporary still there. Only a
/// folder that cannot be synced does not count: the new file is in place by then
[[nodiscard]] std::error_code ReplaceFile(const std::filesystem::path& temporary,
                                          const std::filesystem::path& target);

/// @param limit  a longer file is read up to here
/// @return nothing (an empty vector) if there is no such regular file or it cannot be read
[[nodiscard]] std::vector<std::uint8_t> ReadWholeFile(const std::filesystem::path& file,
                                                      std::size_t limit);

} // namespace fieldcore
