#pragma once

#include "core/equipment/FileDestination.h"
#include "core/equipment/ReceiverFiles.h"
#include "core/equipment/TransferProgress.h"
#include "core/host/Host.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace fieldcore {

/// Fetching the selected files of the rows: the checks, the questions and the order of things.
/// Made for one download. Messages go to the channel's host. The thread that uses the library.
class FileDownload
{
public:
    /// How a download ended.
    enum class End
    {
        NotStarted, ///< nothing was to be done, or the user left the destination dialog
        Failed,     ///< the user was told; files that were finished stay
        Cancelled,  ///< by the user, in a transfer
        Done,
    };

    /// What is around a download; a test brings its own.
    struct Surroundings
    {
        /// Shows the destination dialog. @return false unless the user starts
        std::function<bool(FileDestination&)> askDestination;
        /// Called for every block, about 1000 bytes: paint at most ten times a second.
        /// @return false to cancel. Empty: nobody watches
        std::function<bool(const TransferProgress&)> watch;
        Folders folders = Folders();
        /// Bytes that can be written to a folder. Empty: the system is asked
        std::function<std::optional<std::uint64_t>(const std::filesystem::path&)> freeBytes;
    };

    /// @param files  with rows; must outlive the object
    FileDownload(ReceiverFiles& files, Surroundings surroundings);

    /// The whole of it, with its last message.
    End Run();

    /// Whether there is something to fetch, and none of it is being logged or has a name that
    /// could leave the folder. @param total  bytes of all selected files
    /// @return 1 to go on
    int stCheckDownloadSelect(std::uint64_t& total);
    /// The destination, then file by file.
    End stStartDownload(std::uint64_t total);

    /// @p folder with the folder for the day of a row.
    [[nodiscard]] std::filesystem::path stAppendDateFolderPath(const std::filesystem::path& folder,
                                                               int row) const;
    /// @return 1 if @p folder has more than 1.2 times @p size bytes left
    [[nodiscard]] int stIsEnoughMemoryLeft(const std::filesystem::path& folder,
                                           std::uint32_t size) const;
    /// The rule of it. Free space counts one byte less for each 4 GiB.
    [[nodiscard]] static bool IsEnough(std::uint32_t size, std::uint64_t freeBytes);
    /// Asks before the first file that would be overwritten; not again after a yes.
    /// @return 1 to go on
    int stIsExistingFile(const std::filesystem::path& file);

private:
    std::vector<int> Selected(const FileDestination& destination, std::uint64_t& total);
    End FetchRow(int row, const FileDestination& destination, TransferMeter& meter);
    End Fetch(const std::filesystem::path& folder, const std::wstring& name, TransferMeter& meter);
    End Fail(int textId, int captionId);
    void Say(int textId, int captionId, BoxIcon icon);

    ReceiverFiles& m_files;
    Surroundings m_surroundings;
    DirectoryListingData m_record; // of the row, or of the one before it that had one
    bool m_overwrite = false;
};

} // namespace fieldcore
