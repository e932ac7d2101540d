#pragma once

#include "core/host/MessageTarget.h"
#include "core/link/ChannelTurn.h"
#include "core/link/DirectoryListing.h"
#include "core/link/FrameBuffer.h"

#include <cstdint>
#include <string_view>

namespace fieldcore {

/// Where the records of a listing go.
struct ListingTarget
{
    DirectoryTable& table;
    MessageTarget* window; ///< null: nobody is told
    unsigned message;      ///< see kFileListMessage
    bool hasMore = false;  ///< there were files beyond the end of the table
};

// Lists the files in the receiver's memory, in one turn on the channel. Each answers 1, or 0 with
// the fault of the turn set. The end of a listing is not posted.
// @param frame  for requests and answers; the turn's answers come to it

/// See CCommand::RequestFiles_Pica.
int ListPicaFiles(ChannelTurn& turn, FrameBuffer& frame, int mode, std::uint8_t variant,
                  ListingTarget& target);
/// See CCommand::RequestFiles_Lark.
int ListLarkFiles(ChannelTurn& turn, FrameBuffer& frame, std::wstring_view pattern,
                  ListingTarget& target);
/// Whether a Lark has a file of exactly this name.
int HasLarkFile(ChannelTurn& turn, FrameBuffer& frame, std::wstring_view name);

} // namespace fieldcore
