#include "core/link/FileFetch.h"

#include "core/link/DirectoryListing.h"
#include "core/link/Replies.h"

namespace fieldcore {

namespace {

constexpr std::uint8_t kFetch = 0x96;
constexpr int kMostAsks = 4; // for one block: the first and three more

/// How one row of blocks, asked for by one request, ended.
enum class RunEnd
{
    GoesOn, ///< it has not
    Whole,
    AskAgain,
    GivenUp,
};

RunEnd EndBy(ChannelTurn& turn, CommandFault fault, RunEnd end = RunEnd::AskAgain)
{
    turn.Fail(fault);
    return end;
}

RunEnd TakeBlock(ChannelTurn& turn, FrameReader frame, ReceivedFile& file,
                 const BytesArrived& arrived)
{
    if (!frame.IsIntact()) {
        return EndBy(turn, CommandFault::BadChecksum);
    }
    const auto block = ParseFileBlock(frame);
    const auto verdict = block ? file.Take(*block) : ReceivedFile::Verdict::Again;
    if (verdict == ReceivedFile::Verdict::Again) {
        return EndBy(turn, CommandFault::WrongType);
    }
    if (verdict == ReceivedFile::Verdict::Ended) {
        return RunEnd::GivenUp;
    }
    // A receiver that sends without a pause would leave the host no other moment to breathe.
    const bool wanted = !arrived || file.IsComparing() || arrived(file.Offset());
    if (!turn.Breathe() || !wanted) {
        return EndBy(turn, CommandFault::Cancelled, RunEnd::GivenUp);
    }
    return verdict == ReceivedFile::Verdict::Whole ? RunEnd::Whole : RunEnd::GoesOn;
}

RunEnd TakeBlocks(ChannelTurn& turn, FrameBuffer& frame, std::wstring_view name, ReceivedFile& file,
                  const BytesArrived& arrived)
{
    frame.BeginPacket(kFetch, kLongestFileName + 6);
    frame.PutText(name, kLongestFileName);
    frame.PutLong(file.Offset());
    frame.PutWord(0); // to the end
    frame.EndPacket();
    if (!turn.Send(frame.BuiltFrame())) {
        return turn.Fault() == CommandFault::Cancelled ? RunEnd::GivenUp : RunEnd::AskAgain;
    }
    RunEnd end = RunEnd::GoesOn;
    // It ends: every block that is taken brings the file nearer to its expected size.
    for (bool first = true; end == RunEnd::GoesOn; first = false) {
        switch (turn.Next().state) {
        case ExchangeState::Frame:
            end = TakeBlock(turn, frame.Reader(), file, arrived);
            break;
        case ExchangeState::Nak:
            if (first && file.IsComparing() && file.Offset() > 0) {
                file.BeginAnew(AnewReason::NotFromMiddle);
            } else if (first) {
                return EndBy(turn, CommandFault::Refused, RunEnd::GivenUp);
            }
            return EndBy(turn, CommandFault::WrongAnswer);
        case ExchangeState::Ack:
            return EndBy(turn, CommandFault::WrongAnswer);
        case ExchangeState::Malformed:
            return EndBy(turn, CommandFault::Malformed);
        case ExchangeState::Nothing:
        case ExchangeState::TimedOut:
            return turn.Fault() == CommandFault::TimedOut ? RunEnd::AskAgain : RunEnd::GivenUp;
        }
    }
    return end;
}

} // namespace

bool FetchFile(ChannelTurn& turn, FrameBuffer& frame, std::wstring_view name, ReceivedFile& file,
               const BytesArrived& arrived)
{
    turn.TakeFramesInTurn();
    for (int ask = 0; ask < kMostAsks; ++ask) {
        const std::uint32_t from = file.Offset();
        const RunEnd end = TakeBlocks(turn, frame, name, file, arrived);
        if (end == RunEnd::Whole) {
            turn.Succeed(); // whatever went wrong on the way was made good
            return true;
        }
        if (turn.Fault() == CommandFault::Refused || turn.Fault() == CommandFault::LinkLost) {
            return false;
        }
        turn.Abort();
        if (end == RunEnd::GivenUp || turn.Fault() == CommandFault::LinkLost) {
            return false;
        }
        if (file.Offset() != from) {
            ask = 0; // this request, for the next block, was the first
        }
    }
    return false;
}

} // namespace fieldcore
