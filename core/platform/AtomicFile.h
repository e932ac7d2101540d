#pragma once

#include "core/platform/FileOperations.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>
#include <system_error>

namespace fieldcore {

/// Replaces a file as a whole: the new content is written under a temporary name in the same
/// folder, synced, and renamed over the file. Whatever happens on the way, a flat battery
/// included, the file holds either all of the old or all of the new content.
///
/// From Open() on nobody else who uses the same temporary name can replace the file, so what is
/// read from it then is still true at Commit(). One thread at a time.
class AtomicFile
{
public:
    /// What becomes of a temporary file that was not committed.
    enum class Unfinished
    {
        Remove,
        Keep, ///< for who wants to look at it or to go on; Open() makes a new one
    };

    /// @param file  what is replaced; if it is a symbolic link, the file that the link leads to
    /// @param temporaryName  without a folder
    /// @param operations  must outlive the object
    AtomicFile(const std::filesystem::path& file, const std::filesystem::path& temporaryName,
               FileOperations& operations = FileOperations::Instance(),
               Unfinished unfinished = Unfinished::Remove);

    /// Gives up what was not committed; the old file stays.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Begins a new content; what was written since an earlier call is given up. Refused if
    /// something other than a regular file is there to be replaced.
    [[nodiscard]] std::error_code Open();
    /// Goes on with what was left under the temporary name, which has to be this user's, see
    /// FileOperations::OpenLeft(). It is read with Read() to its end, or cut, before it is written
    /// to.
    [[nodiscard]] std::error_code OpenLeft();
    [[nodiscard]] std::error_code Read(std::span<char> bytes, std::size_t& count);
    [[nodiscard]] std::error_code Cut(std::uint64_t size);

    [[nodiscard]] std::error_code Write(std::string_view bytes);

    /// Puts the new content in the file's place; once only.
    /// @return no error if it is there to stay. After an error the old file is still there, unless
    /// it was the folder that could not be synced: then the new one is, but may not outlive a
    /// power cut.
    [[nodiscard]] std::error_code Commit();

private:
    void Abandon();

    FileOperations& m_operations;
    std::filesystem::path m_file;
    std::filesystem::path m_temporary;
    const Unfinished m_unfinished;
    int m_handle = -1;
};

/// Replaces @p file by one with @p content: Open(), Write() and Commit() of an AtomicFile.
/// @param temporaryName  without a folder
/// @return what went wrong; as after these, the old file is then still there
[[nodiscard]] std::error_code ReplaceFile(const std::filesystem::path& file,
                                          const std::filesystem::path& temporaryName,
                                          std::span<const std::byte> content);

} // namespace fieldcore
