#pragma once

#include "core/link/ChannelTurn.h"
#include "core/link/FrameBuffer.h"
#include "core/link/ReceivedFile.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace fieldcore {

/// Called with the bytes that are there of a file: those that have arrived, and those that it went
/// on behind.
/// @return false to cancel
using BytesArrived = std::function<bool(std::uint32_t bytes)>;

/// Fetches one file of a Lark, block by block, in one turn on the channel.
class FileFetch
{
public:
    /// @param frame  for requests and answers; the turn's answers come to it
    FileFetch(ChannelTurn& turn, FrameBuffer& frame, ReceivedFile& file,
              const BytesArrived& arrived)
        : m_turn(turn), m_frame(frame), m_file(file), m_arrived(arrived)
    {}

    /// A damaged, missing or misplaced block is asked for again from its offset, at most three
    /// times in a row.
    /// @return whether the receiver has sent its last block; else the fault of the file or of the
    ///         turn says why
    bool Run(std::wstring_view name);

private:
    enum class RunEnd;

    RunEnd TakeBlocks(std::wstring_view name);
    RunEnd TakeBlock();
    RunEnd AskAgain(CommandFault fault);

    ChannelTurn& m_turn;
    FrameBuffer& m_frame;
    ReceivedFile& m_file;
    const BytesArrived& m_arrived;
};

} // namespace fieldcore
