#include "core/link/FileFetch.h"

#include "core/link/DirectoryListing.h"
#include "core/link/FileReplies.h"

namespace fieldcore {

namespace {

constexpr std::uint8_t kFetch = 0x96;
constexpr int kMostAsks = 4; // for one block: the first and three more

} // namespace

/// How one row of blocks, asked for by one request, ended.
enum class FileFetch::RunEnd
{
    GoesOn, ///< it has not
    Whole,
    AskAgain,
    GivenUp,
};

bool FileFetch::Run(std::wstring_view name)
{
    m_turn.TakeFramesInTurn();
    for (int ask = 0; ask < kMostAsks; ++ask) {
        const std::uint32_t from = m_file.Offset();
        const RunEnd end = TakeBlocks(name);
        if (end == RunEnd::Whole) {
            return true;
        }
        if (m_turn.Fault() == CommandFault::Refused || m_turn.Fault() == CommandFault::LinkLost) {
            return false;
        }
        m_turn.Abort();
        if (end == RunEnd::GivenUp || m_turn.Fault() == CommandFault::LinkLost) {
            return false;
        }
        if (m_file.Offset() != from) {
            ask = 0; // this request, for the next block, was the first
        }
    }
    return false;
}

FileFetch::RunEnd FileFetch::TakeBlocks(std::wstring_view name)
{
    m_frame.BeginPacket(kFetch, kLongestFileName + 6);
    m_frame.PutText(name, kLongestFileName);
    m_frame.PutLong(m_file.Offset());
    m_frame.PutWord(0); // to the end
    m_frame.EndPacket();
    if (!m_turn.Send(m_frame.BuiltFrame())) {
        return m_turn.Fault() == CommandFault::Cancelled ? RunEnd::GivenUp : RunEnd::AskAgain;
    }
    bool first = true;
    for (;;) { // ends: every block that is taken brings the file nearer to its expected size
        switch (m_turn.Next().state) {
        case ExchangeState::Frame:
            break;
        case ExchangeState::Nak:
            if (first && m_file.IsComparing() && m_file.Offset() > 0) {
                m_file.BeginAnew(AnewReason::NotFromMiddle);
                return AskAgain(CommandFault::WrongAnswer);
            }
            if (first) {
                m_turn.Fail(CommandFault::Refused);
                return RunEnd::GivenUp;
            }
            return AskAgain(CommandFault::WrongAnswer);
        case ExchangeState::Ack:
            return AskAgain(CommandFault::WrongAnswer);
        case ExchangeState::Malformed:
            return AskAgain(CommandFault::Malformed);
        case ExchangeState::Nothing:
        case ExchangeState::TimedOut:
            return m_turn.Fault() == CommandFault::TimedOut ? RunEnd::AskAgain : RunEnd::GivenUp;
        }
        first = false;
        const RunEnd end = TakeBlock();
        if (end != RunEnd::GoesOn) {
            return end;
        }
    }
}

FileFetch::RunEnd FileFetch::TakeBlock()
{
    if (!m_frame.Reader().IsIntact()) {
        return AskAgain(CommandFault::BadChecksum);
    }
    const auto block = ParseFileBlock(m_frame.Reader());
    if (!block) {
        return AskAgain(CommandFault::WrongType);
    }
    const ReceivedFile::Verdict verdict = m_file.Take(*block);
    switch (verdict) {
    case ReceivedFile::Verdict::Again:
        return AskAgain(CommandFault::WrongType);
    case ReceivedFile::Verdict::Ended:
        return RunEnd::GivenUp;
    case ReceivedFile::Verdict::More:
    case ReceivedFile::Verdict::Whole:
        break;
    }
    // A receiver that sends without a pause would leave the host no other moment to breathe.
    const bool wanted = !m_arrived || m_file.IsComparing() || m_arrived(m_file.Offset());
    if (!m_turn.Breathe() || !wanted) {
        m_turn.Fail(CommandFault::Cancelled);
        return RunEnd::GivenUp;
    }
    return verdict == ReceivedFile::Verdict::Whole ? RunEnd::Whole : RunEnd::GoesOn;
}

FileFetch::RunEnd FileFetch::AskAgain(CommandFault fault)
{
    m_turn.Fail(fault);
    return RunEnd::AskAgain;
}

} // namespace fieldcore
