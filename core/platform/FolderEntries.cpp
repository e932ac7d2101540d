#include "core/platform/FolderEntries.h"

#include <cerrno>
#include <memory>
#include <string_view>

#include <dirent.h>

namespace fieldcore {

std::vector<std::filesystem::path> FolderEntries(const std::filesystem::path& folder,
                                                 std::error_code& error)
{
    std::vector<std::filesystem::path> entries;
    const auto close = [](DIR* opened) { closedir(opened); };
    const std::unique_ptr<DIR, decltype(close)> opened(opendir(folder.c_str()), close);
    errno = opened ? 0 : errno;
    while (const dirent* const entry = opened ? readdir(opened.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            entries.push_back(folder / name);
        }
        errno = 0;
    }
    error = {errno, std::generic_category()};
    return entries;
}

} // namespace fieldcore
