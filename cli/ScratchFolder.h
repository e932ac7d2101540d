#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace fieldcore::cli {

/// A folder that goes away with what is in it.
class ScratchFolder
{
public:
    ScratchFolder()
    {
        std::error_code ignored;
        std::string name =
            (std::filesystem::temp_directory_path(ignored) / "fieldcore-XXXXXX").string();
        if (mkdtemp(name.data()) != nullptr) {
            m_path = name;
        }
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// Empty if it could not be made.
    [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace fieldcore::cli
