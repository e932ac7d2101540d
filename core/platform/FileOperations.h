#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>
#include <system_error>

namespace fieldcore {

/// What replacing a file asks of the operating system, one call each, so that a test can record
/// the calls or let one of them fail. Any thread.
class FileOperations
{
public:
    /// Those of the system.
    static FileOperations& Instance();
    virtual ~FileOperations() = default;

    /// Makes @p file for writing and keeps all others out who open it this way. It is always a new
    /// one: what is left under its name, a link or another user's file among it, is not opened for
    /// writing but loses the name, once nobody has it open this way any more.
    /// @param like  if this is a file of the user's, the new one gets its permissions; else the
    /// usual ones
    /// @param handle  for the calls below, if there is no error
    [[nodiscard]] virtual std::error_code Open(const std::filesystem::path& file,
                                               const std::filesystem::path& like, int& handle);
    /// Opens a file that was left, to go on with it, and keeps all others out. Refused unless it is
    /// a regular file of this user's that has this one name and is reached without a link.
    /// @return no_such_file_or_directory if nothing is there
    [[nodiscard]] virtual std::error_code OpenLeft(const std::filesystem::path& file, int& handle);
    /// Reads on. @param count  of bytes that were read; 0 at the end
    [[nodiscard]] virtual std::error_code Read(int handle, std::span<char> bytes,
                                               std::size_t& count);
    /// Leaves the first @p size bytes. Writing goes on behind them.
    [[nodiscard]] virtual std::error_code Cut(int handle, std::uint64_t size);
    [[nodiscard]] virtual std::error_code Write(int handle, std::string_view bytes);
    /// What was written is on the disk afterwards.
    [[nodiscard]] virtual std::error_code Sync(int handle);
    virtual void Close(int handle);
    [[nodiscard]] virtual std::error_code Rename(const std::filesystem::path& from,
                                                 const std::filesystem::path& to);
    /// The names in @p folder are on the disk afterwards.
    [[nodiscard]] virtual std::error_code SyncFolder(const std::filesystem::path& folder);
    virtual void Remove(const std::filesystem::path& file);
};

} // namespace fieldcore
