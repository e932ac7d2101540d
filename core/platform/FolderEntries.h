#pragma once

#include <filesystem>
#include <system_error>
#include <vector>

namespace fieldcore {

/// What stands in @p folder, as whole paths in no order. The iterator of the C++ library would end
/// the program where memory runs out.
/// @param error  none, or why not all of it could be read
[[nodiscard]] std::vector<std::filesystem::path> FolderEntries(const std::filesystem::path& folder,
                                                               std::error_code& error);

} // namespace fieldcore
