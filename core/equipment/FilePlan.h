#pragma once

#include "core/link/CommandFault.h"
#include "core/link/DirectoryListing.h"
#include "core/link/ReceivedFile.h"
#include "core/link/ReceivedName.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace fieldcore {

/// What is done with files of the receiver.
enum class FileAction
{
    Fetch,
    Delete,
    Recover,
};

/// What became of one file.
enum class FileOutcome
{
    Planned,
    Done,
    NotReached, ///< the work ended before it
    // Left out:
    AlreadyThere, ///< in the same size
    BeingLogged,
    // Failed:
    NameRefused, ///< no file here may have its name, or no request can say it
    NoSpace,     ///< less than is demanded before it begins; or the system does not say, see error
    Kept,        ///< one of its name is there, and is not to be replaced
    FolderRefused, ///< see error, as for the next two
    DiskFull,
    NotWritten,
    NoSuchFile,
    WrongSize,     ///< other than it was listed
    RequestFailed, ///< see fault
};

/// One file of a plan.
struct PlannedFile
{
    DirectoryListingData record;
    std::size_t index = 0;  ///< of the record in the table of the listing
    std::wstring name;      ///< by which the receiver is asked for it
    bool isFetched = false; ///< it is on this machine already
    FileOutcome outcome = FileOutcome::Planned;
    CommandFault fault = CommandFault::None;
    std::error_code error{};
    std::filesystem::path path{};          ///< where it is fetched to
    NameFault nameFault = NameFault::None; ///< if that is why it is not kept here
    TransferStart start{};                 ///< how its transfer began

    /// Whether it was tried, or was to be, and could not be done.
    [[nodiscard]] bool HasFailed() const { return outcome >= FileOutcome::NameRefused; }
    /// Whether the receiver has said something to it, if only no.
    [[nodiscard]] bool WasAnswered() const;
    /// Japanese: why it failed, as far as it is known, and what to do about it.
    [[nodiscard]] std::wstring CauseText() const;
    /// What the terminal says of it; the message is about a file that is named before it.
    [[nodiscard]] const TerminalFault& Terminal() const;
};

/// Which files, where to, and why not: the same for a screen and for a terminal. A FileRunner does
/// it and notes what became of each. One thread.
struct FilePlan
{
    FileAction action = FileAction::Fetch;
    /// The receiver is asked as the window of its files demands: the extension is read again for
    /// each file, and deleting goes by the name without it. Otherwise a request means exactly the
    /// file that was listed, and nothing else is asked.
    bool isByRow = false;
    std::filesystem::path folder{}; ///< where fetched files go
    bool makesFolder = false;       ///< if it is not there
    bool dateFolders = false;       ///< below it, one for each day of observation
    std::vector<PlannedFile> files{};
    ReceivedNames names{}; ///< of those that are to be fetched

    /// Files of that outcome, and their bytes as listed.
    [[nodiscard]] int Count(FileOutcome outcome) const;
    [[nodiscard]] std::uint64_t Bytes(FileOutcome outcome) const;
    /// Bytes of those planned that are in @p where in the same size, or in the folder of their day.
    [[nodiscard]] std::uint64_t BytesAlreadyIn(const std::filesystem::path& where) const;
    /// Where a file goes.
    [[nodiscard]] std::filesystem::path FolderOf(const PlannedFile& file) const;
    void LeaveOutFetched();
    /// The one that failed last, sooner one that was tried; null if none did.
    [[nodiscard]] const PlannedFile* Failed() const;
};

} // namespace fieldcore
