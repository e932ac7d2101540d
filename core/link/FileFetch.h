#pragma once

#include "core/link/ChannelTurn.h"
#include "core/link/FrameBuffer.h"
#include "core/link/ReceivedFile.h"

#include <string_view>

namespace fieldcore {

/// Fetches one file of a Lark, block by block, in one turn on the channel. A damaged, missing or
/// misplaced block is asked for again from its offset, at most three times in a row.
/// @param frame  for requests and answers; the turn's answers come to it
/// @return whether the receiver has sent its last block; else the fault of the transfer or of the
///         turn says why
[[nodiscard]] bool FetchFile(ChannelTurn& turn, FrameBuffer& frame, std::wstring_view name,
                             ReceivedFile& file, const BytesArrived& arrived);

} // namespace fieldcore
