#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

namespace fieldcore {

/// What replacing a file asks of the operating system, one call each, so that a test can record
/// the calls or let one of them fail.
class FileOperations
{
public:
    virtual ~FileOperations() = default;

    /// Opens @p file for writing, creates it if it is not there, keeps all others out who open it
    /// this way, and empties it. A symbolic link in its place is refused.
    /// @param like  an existing file whose permissions it gets; if there is none, the usual ones
    /// @param handle  for the calls below, if there is no error
    [[nodiscard]] virtual std::error_code Open(const std::filesystem::path& file,
                                               const std::filesystem::path& like, int& handle) = 0;
    [[nodiscard]] virtual std::error_code Write(int handle, std::string_view bytes) = 0;
    /// What was written is on the disk afterwards.
    [[nodiscard]] virtual std::error_code Sync(int handle) = 0;
    virtual void Close(int handle) = 0;
    [[nodiscard]] virtual std::error_code Rename(const std::filesystem::path& from,
                                                 const std::filesystem::path& to) = 0;
    /// The names in @p folder are on the disk afterwards.
    [[nodiscard]] virtual std::error_code SyncFolder(const std::filesystem::path& folder) = 0;
    virtual void Remove(const std::filesystem::path& file) = 0;
};

} // namespace fieldcore
