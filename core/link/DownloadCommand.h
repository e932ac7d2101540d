#pragma once

#include "core/link/FileCommands.h"
#include "core/link/ReceivedFile.h"
#include "core/platform/FileOperations.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>
#include <system_error>
#include <utility>

namespace fieldcore {

/// The command that fetches a file of the receiver, a part of CCommand.
class DownloadCommand : public FileCommands
{
public:
    /// Called with the bytes that have arrived of the file.
    /// @return false to cancel
    using BytesArrived = std::function<bool(std::uint32_t bytes)>;

    explicit DownloadCommand(Surroundings surroundings) : FileCommands(std::move(surroundings)) {}

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

    bool FetchFile(std::wstring_view name, ReceivedFile& file, const BytesArrived& arrived);
    RunEnd FetchRun(ReceivedFile& file, const BytesArrived& arrived);
    RunEnd TakeBlock(ReceivedFile& file, const BytesArrived& arrived);
    std::int64_t FailDownload(DownloadFault fault, std::error_code error = {});

    FileOperations* m_operations = nullptr; // null: the system's own
    DownloadFault m_downloadFault = DownloadFault::None;
    std::error_code m_fileError;
};

} // namespace fieldcore
