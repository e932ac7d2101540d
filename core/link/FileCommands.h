#pragma once

#include "core/host/MessageTarget.h"
#include "core/link/CommandChannel.h"
#include "core/link/DirectoryListing.h"
#include "core/link/ReceivedFile.h"
#include "core/platform/FileOperations.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>
#include <system_error>

namespace fieldcore {

/// The commands for the files in the receiver's memory, a part of CCommand. Which of them a
/// receiver understands depends on its family. Names are those of the receiver; the by-name
/// commands send nothing and answer 0 (CommandFault::TooLong) for an empty name, one of more than
/// 14 bytes, which would be cut to that of another file, and one with "*" or "?".
class FileCommands : public CommandChannel
{
public:
    /// Called with the bytes that have arrived of the file.
    /// @return false to cancel
    using BytesArrived = std::function<bool(std::uint32_t bytes)>;

    explicit FileCommands(Surroundings surroundings) : CommandChannel(std::move(surroundings)) {}

    // Listings. They fill the table and post to the window as kFileListMessage says, with
    // the number @p message; the end is always posted, also where 0 is answered.

    /// Lists the files of a Pica, a request a page and 57 pages at most. Only those that may be
    /// listed and fit @p mode are stored; page p, entry k goes to index 9p + k whatever the ones
    /// before it were.
    /// @param mode  1 live files, 0 deleted ones
    /// @param typeNumber  of the receiver: the two Pica types ask differently
    /// @param window  null: nobody is told
    /// @return 1; 0 if it failed, with what came until then in the table
    int RequestFiles_Pica(int mode, std::uint32_t typeNumber, DirectoryTable& table,
                          MessageTarget* window, unsigned message = kFileListMessage);

    /// Lists the files of a Lark that match @p pattern, such as "*.Q01". Page p, entry k goes to
    /// index 8p + k. A page out of order, and a page after 128 others, ends the listing with 0.
    int RequestFiles_Lark(std::wstring_view pattern, DirectoryTable& table, MessageTarget* window,
                          unsigned message = kFileListMessage);

    /// Whether a Lark has a file of exactly this name. Fills no table, posts nothing.
    /// @return 1 or 0; of a 0 that is no answer Fault() says why
    int FileExists(std::wstring_view name);

    // Each 1 if the receiver acknowledged.

    int DeleteFile_Pica(std::uint16_t fileIndex);
    int RecoverFile_Pica(std::uint16_t fileIndex);
    int DeleteFile_Lark(std::wstring_view name);
    int RecoverFile_Lark(std::wstring_view name);

    /// Copies a file of a Lark into a folder of this machine. It is written to NAME.part there,
    /// block by block, synced, and renamed to NAME (replacing what has that name) once exactly
    /// @p expectedSize bytes are there; else NAME.part stays, and the next try overwrites it.
    ///
    /// A damaged, missing or misplaced block is asked for again from its offset, at most three
    /// times in a row. A host whose Breathe() answers false, or @p arrived, ends it within one
    /// block. Memory does not grow with the file.
    ///
    /// @param folder  its last level is made if it is missing
    /// @param name  refused unless IsPlainFileName(), or if it ends in ".part"
    /// @return the bytes written; the file is there under its name only if they are
    /// @p expectedSize and GetDownloadFault() is None. -1 when the transfer is incomplete
    std::int64_t DownloadFile(const std::filesystem::path& folder, std::wstring_view name,
                              std::uint32_t expectedSize, const BytesArrived& arrived = {});

    /// Of the last download.
    [[nodiscard]] DownloadFault GetDownloadFault() const { return m_downloadFault; }
    /// What the system said to DownloadFault::Folder or Write.
    [[nodiscard]] std::error_code GetFileError() const { return m_fileError; }

    /// How files are written from now on. @p operations must outlive the channel or the next call.
    void SetFileOperations(FileOperations& operations) { m_operations = &operations; }

private:
    enum class RunEnd;

    int ListPages_Pica(int mode, std::uint8_t variant, DirectoryTable& table, MessageTarget* window,
                       unsigned message);
    int ListPages_Lark(DirectoryTable& table, MessageTarget* window, unsigned message);
    int CollectPages_Lark(DirectoryTable& table, MessageTarget* window, unsigned message);
    int AskWhether(std::wstring_view name, bool& more);
    bool BuildListRequest(std::wstring_view pattern);
    int CommandByName(std::uint8_t type, std::wstring_view name);
    bool FetchFile(std::wstring_view name, ReceivedFile& file, const BytesArrived& arrived);
    RunEnd FetchRun(ReceivedFile& file, const BytesArrived& arrived);
    RunEnd TakeBlock(ReceivedFile& file, const BytesArrived& arrived);
    std::int64_t FailDownload(DownloadFault fault, std::error_code error = {});

    FileOperations* m_operations = nullptr; // null: the system's own
    DownloadFault m_downloadFault = DownloadFault::None;
    std::error_code m_fileError;
};

/// Whether the by-name commands can send @p name.
[[nodiscard]] bool IsReceiverFileName(std::wstring_view name);

} // namespace fieldcore
