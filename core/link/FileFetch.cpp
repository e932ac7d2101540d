#include "core/link/FileFetch.h"

#include "core/link/DirectoryListing.h"
#include "core/link/Replies.h"

namespace fieldcore {

namespace {

constexpr std::uint8_t kFetch = 0x96;
constexpr int kMostAsks = 4; // for one block: the first and three more

using Verdict = ReceivedFile::Verdict;

Verdict EndBy(ChannelTurn& turn, CommandFault fault, Verdict end = Verdict::Again)
{
    turn.Fail(fault);
    return end;
}

Verdict TakeBlock(ChannelTurn& turn, FrameReader frame, ReceivedFile& file,
                  const BytesArrived& arrived)
{
    if (!frame.IsIntact()) {
        return EndBy(turn, CommandFault::BadChecksum);
    }
    const auto block = ParseFileBlock(frame);
    const Verdict verdict = block ? file.Take(*block) : Verdict::Again;
    if (verdict == Verdict::Again) {
        return EndBy(turn, CommandFault::WrongType);
    }
    if (verdict == Verdict::Ended) {
        return verdict;
    }
    // A receiver that sends without a pause would leave the host no other moment to breathe.
    const bool wanted = !arrived || file.IsComparing() || arrived(file.Offset());
    if (!turn.Breathe() || !wanted) {
        return EndBy(turn, CommandFault::Cancelled, Verdict::Ended);
    }
    return verdict;
}

/// Takes one row of blocks, which one request asks for. @return how it ended; not More
Verdict TakeBlocks(ChannelTurn& turn, FrameBuffer& frame, std::wstring_view name,
                   ReceivedFile& file, const BytesArrived& arrived)
{
    frame.BeginPacket(kFetch, kLongestFileName + 6);
    frame.PutText(name, kLongestFileName);
    frame.PutLong(file.Offset());
    frame.PutWord(0); // to the end
    frame.EndPacket();
    if (!turn.Send(frame.BuiltFrame())) {
        return turn.Fault() == CommandFault::Cancelled ? Verdict::Ended : Verdict::Again;
    }
    Verdict end = Verdict::More;
    // It ends: every block that is taken brings the file nearer to its expected size.
    for (bool first = true; end == Verdict::More; first = false) {
        if (turn.NextFrame()) {
            end = TakeBlock(turn, frame.Reader(), file, arrived);
            continue;
        }
        const ExchangeState state = turn.Last().state;
        if (state == ExchangeState::TimedOut) {
            return turn.Fault() == CommandFault::TimedOut ? Verdict::Again : Verdict::Ended;
        }
        if (state == ExchangeState::Nak && first) {
            if (!file.IsComparing() || file.Offset() == 0) {
                return EndBy(turn, CommandFault::Refused, Verdict::Ended);
            }
            file.BeginAnew(AnewReason::NotFromMiddle);
        }
        return Verdict::Again;
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
        const Verdict end = TakeBlocks(turn, frame, name, file, arrived);
        if (end == Verdict::Whole) {
            turn.Succeed(); // whatever went wrong on the way was made good
            return true;
        }
        if (turn.Fault() == CommandFault::Refused || turn.Fault() == CommandFault::LinkLost) {
            return false;
        }
        turn.Abort();
        if (end == Verdict::Ended || turn.Fault() == CommandFault::LinkLost) {
            return false;
        }
        if (file.Offset() != from) {
            ask = 0; // this request, for the next block, was the first
        }
    }
    return false;
}

} // namespace fieldcore
