#pragma once

#include "core/link/FileReplies.h"
#include "core/platform/AtomicFile.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace fieldcore {

/// Why a file did not arrive.
enum class DownloadFault
{
    None,
    Name,        ///< no name that a file in the folder may have, or too long for the receiver
    Folder,      ///< the file cannot be made in the folder; see the system's error
    Write,       ///< it cannot be written, synced or renamed: full, taken out...
    NoSuchFile,  ///< the receiver has none of this name
    BeingLogged, ///< the receiver still writes it
    WrongSize,   ///< it ended before the announced size, or goes on beyond it
    Link,        ///< no good block in four attempts, or the link is gone; see the channel's fault
    Cancelled,
};

/// A file of the receiver that is being put together on this machine, block by block, as NAME.part
/// and, once it is whole, as NAME. Knows nothing of the line. One thread.
class ReceivedFile
{
public:
    /// What a block has come to.
    enum class Verdict
    {
        More,  ///< taken; others follow
        Whole, ///< it was the last one: Finish()
        Again, ///< not the one that is due: it has to be asked for again
        Ended, ///< nothing more will come of this file, see Fault()
    };

    /// @param expectedSize  bytes
    /// @param operations    must outlive the object
    ReceivedFile(const std::filesystem::path& folder, std::wstring_view name,
                 std::uint32_t expectedSize, FileOperations& operations);
    /// What came of a file that is not whole stays as NAME.part.
    ~ReceivedFile();
    ReceivedFile(const ReceivedFile&) = delete;
    ReceivedFile& operator=(const ReceivedFile&) = delete;

    /// Makes the folder's last level if it is missing, and the file NAME.part in it.
    /// @return false with the fault set
    bool Open();
    Verdict Take(const FileBlock& block);
    /// Syncs the file and gives it its name. @return false with the fault set
    bool Finish();

    /// Where the next block has to start.
    [[nodiscard]] std::uint32_t Offset() const { return m_taken; }
    [[nodiscard]] DownloadFault Fault() const { return m_fault; }
    [[nodiscard]] std::error_code Error() const { return m_error; }

private:
    [[nodiscard]] std::error_code WritePiece();
    bool Fail(DownloadFault fault, std::error_code error = {});
    Verdict End(DownloadFault fault, std::error_code error = {});

    const std::filesystem::path m_target;
    const std::uint32_t m_expected;
    AtomicFile m_file;
    std::string m_unwritten;   // taken, but not yet in the file
    std::uint32_t m_taken = 0; // never more than expected
    DownloadFault m_fault = DownloadFault::None;
    std::error_code m_error;
};

/// Whether a received file may be kept under @p name: IsPlainFileName(), and not the name of an
/// unfinished one.
[[nodiscard]] bool IsReceivableName(std::wstring_view name);
/// Whether the requests that name a file of the receiver can send @p name.
[[nodiscard]] bool IsReceiverFileName(std::wstring_view name);

} // namespace fieldcore
