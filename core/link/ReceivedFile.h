#pragma once

#include "core/link/ReceivedName.h"
#include "core/link/Replies.h"
#include "core/platform/AtomicFile.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace fieldcore {

/// Why a file did not arrive.
enum class DownloadFault
{
    None,
    Name,        ///< it may not be kept under its name, see CCommand::GetNameFault()
    Folder,      ///< the file cannot be made in the folder; see the system's error
    Write,       ///< it cannot be written, synced or renamed: full, taken out...
    NoSuchFile,  ///< the receiver has none of this name
    BeingLogged, ///< the receiver still writes it
    WrongSize,   ///< it ended before the announced size, or goes on beyond it
    Link,        ///< no good block in four attempts, or the link is gone; see the channel's fault
    Cancelled,
};

/// Why a transfer did not go on where an earlier one had broken off.
enum class AnewReason
{
    None,          ///< nothing was there to go on with
    NotOurs,       ///< what is there is another user's, has a second name, or is a link
    NoRecord,      ///< nothing says what it is the beginning of
    OtherFile,     ///< of a file of another size or time
    Damaged,       ///< it is no longer what had arrived
    Changed,       ///< the receiver sends other bytes for the end of it
    NotFromMiddle, ///< the receiver sends from the beginning only
};

/// How a transfer began.
struct TransferStart
{
    std::uint32_t continuedAt = 0; ///< bytes that were there; 0: with the first one
    AnewReason reason = AnewReason::None;
};

/// What is known of how a transfer went.
struct Transfer
{
    TransferStart start; ///< when a block was taken and none is compared any more
    DownloadFault fault = DownloadFault::None;
    NameFault name = NameFault::None; ///< of DownloadFault::Name
    std::error_code error;            ///< of Folder and Write: what the system said
};

/// Called with the bytes that are there of a file: those that have arrived, and those that it went
/// on behind.
/// @return false to cancel
using BytesArrived = std::function<bool(std::uint32_t bytes)>;

/// What is said of a reason, each thing once.
struct AnewMeaning
{
    AnewReason reason;
    const char* words; ///< for the terminal, behind "begun anew: "
    int textId;        ///< for the user, a number of the string table
};
/// Any thread.
[[nodiscard]] const AnewMeaning& MeaningOf(AnewReason reason);

/// A file of the receiver that is being put together on this machine, block by block, as NAME.part
/// and, once it is whole, as NAME. Knows nothing of the line. One thread.
///
/// Beside a NAME.part whose file's time is known is NAME.part.info: name, size and time of the
/// file, and for each piece that was written where it ends and a sum over all up to there. A later
/// object of the same three goes on behind the last piece that is still as its sum says, once the
/// receiver has sent the block before that place again and it is the same; else it begins anew.
class ReceivedFile
{
public:
    /// What a block has come to.
    enum class Verdict
    {
        More,  ///< taken; others follow
        Whole, ///< it was the last one: Finish()
        Again, ///< not the one that is due, which is at Offset(): that has to be asked for
        Ended, ///< nothing more will come of this file, see the fault of the transfer
    };

    /// @param expectedSize  bytes
    /// @param time          as the receiver lists it; nothing: it is not known, and the transfer
    ///                      neither goes on nor can be gone on with
    /// @param operations    must outlive the object, as must the next
    /// @param transfer      told how it goes
    ReceivedFile(const std::filesystem::path& folder, std::wstring_view name,
                 std::uint32_t expectedSize, std::optional<std::uint32_t> time,
                 FileOperations& operations, Transfer& transfer);
    /// What came of a file that is not whole stays as NAME.part.
    ~ReceivedFile();
    ReceivedFile(const ReceivedFile&) = delete;
    ReceivedFile& operator=(const ReceivedFile&) = delete;

    /// Makes the folder's last level if it is missing, and the file NAME.part in it, unless one is
    /// there to go on with.
    /// @return false with the fault set
    bool Open();
    Verdict Take(const FileBlock& block);
    /// The next block that is taken has to be the first one. What is there stays until then.
    void BeginAnew(AnewReason reason);
    /// Syncs the file and gives it its name. @return false with the fault set
    bool Finish();

    /// Where the next block has to start.
    [[nodiscard]] std::uint32_t Offset() const { return m_taken; }
    /// Whether the next block is still compared with what is there.
    [[nodiscard]] bool IsComparing() const { return m_taken < m_held; }

private:
    AnewReason ReadLeft();
    AnewReason ReadPieces(std::string_view pieces);
    bool ReadPiece(std::uint32_t size, std::uint64_t& sum, std::string& tail);
    bool OpenNew();
    void CloseInfo();
    bool Compare(const FileBlock& block, std::size_t count);
    [[nodiscard]] std::string InfoHead() const;
    [[nodiscard]] std::error_code WritePiece();
    bool Fail(DownloadFault fault, std::error_code error = {});
    Verdict End(DownloadFault fault, std::error_code error = {});

    FileOperations& m_operations;
    Transfer& m_transfer;
    const std::filesystem::path m_target;
    const std::filesystem::path m_infoFile;
    const std::uint32_t m_expected;
    const std::optional<std::uint32_t> m_time;
    AtomicFile m_file;
    int m_info = -1; // the open info file

    std::string m_unwritten;     // taken, but not yet in the file
    std::uint32_t m_taken = 0;   // or, while it is compared, seen; never more than expected
    std::uint32_t m_written = 0; // bytes in the file
    std::uint64_t m_sum = 0;     // over them
    std::uint32_t m_held = 0;    // bytes that an earlier transfer has left
    std::string m_tail;          // the last of them, as many as are compared
    bool m_opensNew = false;     // with the next block
};

} // namespace fieldcore
