#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

namespace fieldcore::simulator::test {

/// A folder that goes away with its content.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name =
            (std::filesystem::temp_directory_path() / "simulator-test-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        m_path = name;
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    [[nodiscard]] std::filesystem::path operator/(const char* name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

} // namespace fieldcore::simulator::test
