#pragma once

#include "core/host/MessageTarget.h"
#include "core/link/CommandChannel.h"
#include "core/link/DirectoryListing.h"

#include <cstdint>
#include <string_view>

namespace fieldcore {

/// The commands that list, delete and recover files in the receiver's memory, a part of CCommand.
/// Which of them a receiver understands depends on its family. Names are those of the receiver;
/// the by-name commands send nothing and answer 0 (CommandFault::TooLong) for an empty name, one
/// of more than 14 bytes, which would be cut to that of another file, and one with "*" or "?".
class FileCommands : public CommandChannel
{
public:
    explicit FileCommands(Surroundings surroundings) : CommandChannel(std::move(surroundings)) {}

    // Listings. They fill the table and post to the window as kFileListMessage says, with
    // the number @p message; the end is always posted, also where 0 is answered. When the user
    // cancels one, or FileExists(), the receiver is told to stop.

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

private:
    int ListPages_Pica(int mode, std::uint8_t variant, DirectoryTable& table, MessageTarget* window,
                       unsigned message);
    int ListPages_Lark(DirectoryTable& table, MessageTarget* window, unsigned message);
    int CollectPages_Lark(DirectoryTable& table, MessageTarget* window, unsigned message);
    int AskWhether(std::wstring_view name, bool& more);
    bool BuildListRequest(std::wstring_view pattern);
    int CommandByName(std::uint8_t type, std::wstring_view name);
};

/// Whether the by-name commands can send @p name.
[[nodiscard]] bool IsReceiverFileName(std::wstring_view name);

} // namespace fieldcore
