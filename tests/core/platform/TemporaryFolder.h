#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace fieldcore {

/// All bytes of a file; none of one that is not there.
[[nodiscard]] inline std::string ContentOf(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// A folder of its own for one test, removed with all that is in it.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "fieldcore-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("cannot create " + name);
        }
        // Without symbolic links on the way, so that resolved paths can be compared with it.
        m_path = std::filesystem::canonical(name);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }

    /// Writes a file below the folder, with the folders on the way.
    std::filesystem::path Write(const std::filesystem::path& name, std::string_view content) const
    {
        std::filesystem::path file = m_path / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

    /// Makes a symbolic link below the folder, with the folders on the way.
    std::filesystem::path Link(const std::filesystem::path& name,
                               const std::filesystem::path& target) const
    {
        std::filesystem::path link = m_path / name;
        std::filesystem::create_directories(link.parent_path());
        std::filesystem::create_symlink(target, link);
        return link;
    }

private:
    std::filesystem::path m_path;
};

} // namespace fieldcore
