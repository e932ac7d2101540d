#pragma once

#include "core/host/Host.h"
#include "core/link/CommandFault.h"
#include "core/planning/AlmanacRecord.h"
#include "core/planning/AlmanacSource.h"
#include "core/platform/Clock.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <system_error>

namespace fieldcore {

class CCommand;

enum class AlmanacResult
{
    Done,
    NotWritten,  ///< the temporary file could not be made or nothing could be written
    TooFew,      ///< four satellites or fewer; the almanac is as it was
    BrokenOff,   ///< the same, and the receiver did not answer for others
    NotReplaced, ///< the temporary file could not take its place; the almanac is as it was, or
                 ///< new but not safe from a power cut, where only its folder could not be synced
    NotRead,     ///< there is no almanac
    Cancelled,   ///< by the user; the almanac is as it was
};

/// What became of the requests of a download.
struct AlmanacTally
{
    int received = 0;
    int missing = 0;                         ///< the receiver has none of that satellite
    int lost = 0;                            ///< no answer, or a damaged one
    CommandFault fault = CommandFault::None; ///< of the last one that was lost

    /// Counts one more request.
    void Note(CommandFault outcome);
};

/// What to tell the user: string-table numbers. Both 0: nothing.
struct AlmanacMessage
{
    int text = 0;
    int caption = 0;
    BoxIcon icon = BoxIcon::None;
    std::wstring words{}; ///< what stands in place of the text if that has gaps to fill
};
[[nodiscard]] AlmanacMessage MessageOf(AlmanacResult result);
/// What to tell of a download that lost answers, beside or in place of its result: how many
/// satellites came, and why not the others. Nothing if all was answered.
[[nodiscard]] AlmanacMessage MessageOf(AlmanacResult result, const AlmanacTally& tally);

/// The almanac file in the program's folder: received from the receiver or given, and replaced. All
/// calls come from the thread of the command channel.
class AlmanacStore
{
public:
    /// Called before each request with the PRN that is asked for, 1 to 32, and once with 33 when
    /// all are there. @return false to cancel
    using Progress = std::function<bool(int prn)>;

    /// @param folder  the program's folder; it is made if it is not there
    explicit AlmanacStore(std::filesystem::path folder);

    /// Asks for one satellite after the other and writes each record into the temporary file. The
    /// record of a satellite that the receiver does not have is the one before it again. Takes up
    /// to two reply time-outs and half a second for each of 32 requests. Cancelling, through
    /// @p progress or the host of @p command, sends the abort command and removes the file.
    /// @param size  the file's size, bytes
    AlmanacResult Download(CCommand& command, std::size_t& size, const Progress& progress = {});

    /// Puts the temporary file in place of the almanac, whole and safely on the medium, if it has
    /// enough satellites; else removes it.
    /// @param size    as Download() said
    /// @param source  where the almanac comes from, kept beside it
    AlmanacResult Commit(std::size_t size, const AlmanacSource& source = {});

    /// Download() and Commit(); asks the receiver for its serial number between them.
    AlmanacResult Update(CCommand& command, const Progress& progress = {});
    /// Of the last Download().
    [[nodiscard]] const AlmanacTally& Tally() const { return m_tally; }

    /// Writes @p records into the temporary file, in order of PRN, and Commit()s it. Those whose
    /// PRN is not 1 to 32 are left out; the values are not looked at. After any result but Done the
    /// temporary file is gone.
    AlmanacResult Import(std::span<const AlmanacRecord> records, const AlmanacSource& source = {});

    /// The system's word on the last NotWritten or NotReplaced, for developers.
    [[nodiscard]] std::error_code LastError() const { return m_error; }

    /// Import()s the nominal almanac of @p now unless there is a file already: what a program that
    /// has never seen a receiver plans with.
    /// @return whether it is there now and was not before
    bool PutNominal(Clock::UtcTime now);

private:
    /// @param handle  of the empty temporary file, to be closed, if there is no error
    std::error_code OpenTemporary(int& handle) const;
    AlmanacResult Receive(CCommand& command, int handle, std::size_t& size,
                          const Progress& progress);

    std::filesystem::path m_folder;
    std::error_code m_error;
    AlmanacTally m_tally;
};

} // namespace fieldcore
