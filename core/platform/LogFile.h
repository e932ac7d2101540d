#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

namespace fieldcore {

/// A file that text is added to while it is being read, or until the program is killed: what was
/// written is there at once. Programs that this one starts do not get it. One thread at a time.
class LogFile
{
public:
    enum class Start
    {
        New,   ///< what was in the file is gone
        Append ///< behind it
    };

    LogFile() = default;
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    /// Opens @p file, which is made if it is not there; once.
    [[nodiscard]] std::error_code Open(const std::filesystem::path& file, Start start);
    [[nodiscard]] bool IsOpen() const { return m_descriptor >= 0; }

    /// @return why not all of @p text was written; then the end of the file may be torn
    [[nodiscard]] std::error_code Write(std::string_view text);

private:
    int m_descriptor = -1;
};

} // namespace fieldcore
