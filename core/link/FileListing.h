#pragma once

#include "core/host/MessageTarget.h"
#include "core/link/ChannelTurn.h"
#include "core/link/DirectoryListing.h"
#include "core/link/FrameBuffer.h"

#include <cstdint>
#include <string_view>

namespace fieldcore {

struct FilePage;

/// Where the records of a listing go.
struct ListingTarget
{
    DirectoryTable& table;
    MessageTarget* window; ///< null: nobody is told
    unsigned message;      ///< see kFileListMessage
};

/// Lists the files in the receiver's memory, in one turn on the channel. Each answers 1, or 0 with
/// the fault of the turn set. The end of a listing is not posted.
class FileListing
{
public:
    /// @param frame  for requests and answers; the turn's answers come to it
    FileListing(ChannelTurn& turn, FrameBuffer& frame) : m_turn(turn), m_frame(frame) {}

    /// See CCommand::RequestFiles_Pica.
    int Pica(int mode, std::uint8_t variant, const ListingTarget& target);
    /// See CCommand::RequestFiles_Lark.
    int Lark(std::wstring_view pattern, const ListingTarget& target);
    /// Whether a Lark has a file of exactly this name.
    int Exists(std::wstring_view name);
    /// Whether there were files beyond the end of the table.
    [[nodiscard]] bool HasMore() const { return m_hasMore; }

private:
    bool AskLark(std::wstring_view pattern);
    int CollectPages(const ListingTarget& target);
    int AskWhether(std::wstring_view name);
    void Store(const ListingTarget& target, std::size_t index, const DirectoryListingData& file);
    int FailOnType() { return Refuse(CommandFault::WrongType); }
    int Refuse(CommandFault fault);

    ChannelTurn& m_turn;
    FrameBuffer& m_frame;
    bool m_isSending = false; // the receiver may be
    bool m_hasMore = false;
};

} // namespace fieldcore
