#include "core/link/Command.h"

#include "core/link/DirectoryListing.h"
#include "core/link/Replies.h"
#include "core/platform/Cp932.h"

#include <bitset>

namespace fieldcore {

/// Where the records of a listing go.
struct ListingTarget
{
    DirectoryTable& table;
    MessageTarget* window; ///< null: nobody is told
    unsigned message;      ///< see kFileListMessage
    bool hasMore = false;  ///< there were files beyond the end of the table
};

namespace {

// The files in the receiver's memory, each list or file in one turn on the channel.

constexpr std::uint8_t kListPica = 0x79;
constexpr std::uint8_t kListLark = 0x9C;

constexpr int kMostPicaPages = 57;                  // 9 records each reach the table's end
constexpr int kMostLarkPages = 128;                 // they are numbered by seven bits
constexpr int kMostLarkFrames = 2 * kMostLarkPages; // with pages that come twice
constexpr std::uint32_t kSecondPica = 3020;
constexpr std::intptr_t kRecordListed = 0;
constexpr std::intptr_t kListEnded = 1;

bool IsListed(const DirectoryListingData& file, int mode)
{
    const bool deleted = (file.attributes & DirectoryListingData::Deleted) != 0;
    return (file.attributes & DirectoryListingData::NotListed) == 0 && deleted == (mode == 0);
}

/// Puts a record into the table and tells the window, unless it lies beyond the table's end.
void Store(ListingTarget& target, std::size_t index, const DirectoryListingData& file)
{
    if (index >= target.table.size()) {
        target.hasMore = true;
        return;
    }
    target.table[index] = file;
    if (target.window != nullptr) {
        target.window->Post(target.message, kRecordListed, static_cast<std::intptr_t>(index));
    }
}

/// What came is not what was due.
int Refuse(ChannelTurn& turn, CommandFault fault = CommandFault::WrongType)
{
    turn.NoteOdd();
    return int{turn.Fail(fault)};
}

bool AskLark(ChannelTurn& turn, FrameBuffer& frame, std::wstring_view pattern)
{
    frame.BeginPacket(kListLark, kLongestFileName);
    frame.PutText(pattern, kLongestFileName);
    frame.EndPacket();
    turn.TakeFramesInTurn();
    return turn.Ask(frame.BuiltFrame(), Answer::Reply) == 1;
}

/// Takes the pages in whatever order they come; the first frame is there. One that arrives damaged
/// is as good as one that does not come: the others are taken all the same.
int CollectPages(ChannelTurn& turn, const FrameBuffer& frame, ListingTarget& target)
{
    std::bitset<kMostLarkPages> seen;
    bool hasEnd = false;
    CommandFault damage = CommandFault::None;
    for (int i = 0; i < kMostLarkFrames; ++i) {
        if (i > 0) {
            const ExchangeState state = turn.Next().state;
            if (state == ExchangeState::TimedOut) {
                return damage != CommandFault::None && turn.Fault() == CommandFault::TimedOut
                           ? Refuse(turn, damage)
                           : 0;
            }
            if (state != ExchangeState::Frame || !frame.Reader().IsIntact()) {
                damage = state == ExchangeState::Frame ? CommandFault::BadChecksum
                                                       : CommandFault::Malformed;
                if (!turn.Breathe()) {
                    return 0;
                }
                continue;
            }
        }
        const auto page = ParseLarkFilePage(frame.Reader());
        if (!page) {
            return Refuse(turn);
        }
        const auto number = static_cast<std::size_t>(page->number);
        for (std::size_t k = 0; k < page->count && !seen[number]; ++k) {
            Store(target, kLarkPageFiles * number + k, page->files[k]);
        }
        seen[number] = true;
        // The mark may stand on the page of the highest number or on the one that is sent last:
        // either way all is there once it has come and no number below the highest is missing.
        hasEnd = hasEnd || page->last;
        if (hasEnd && (seen >> seen.count()).none()) {
            if (damage != CommandFault::None) {
                turn.NoteOdd(); // what was damaged may come again
                turn.Succeed();
            }
            return 1;
        }
        // Between the waits: a receiver that sends without a pause would leave no other moment.
        if (!turn.Breathe()) {
            return 0;
        }
    }
    return Refuse(turn); // there is no end of them
}

int ListPicaFiles(ChannelTurn& turn, FrameBuffer& frame, int mode, std::uint8_t variant,
                  ListingTarget& target)
{
    for (int number = 0; number < kMostPicaPages; ++number) {
        frame.BeginPacket(kListPica, 3);
        frame.PutByte(static_cast<std::uint8_t>(number));
        frame.PutByte(static_cast<std::uint8_t>(mode == 0 ? 0 : 1));
        frame.PutByte(variant);
        frame.EndPacket();
        if (turn.Ask(frame.BuiltFrame(), Answer::Reply) == 0) {
            if (turn.Fault() == CommandFault::Cancelled) {
                turn.Abort();
            }
            return 0;
        }
        const auto page = ParsePicaFilePage(frame.Reader());
        if (!page || page->number != number) {
            return Refuse(turn);
        }
        for (std::size_t k = 0; k < page->count; ++k) {
            if (IsListed(page->files[k], mode)) {
                Store(target, kPicaPageFiles * static_cast<std::size_t>(number) + k,
                      page->files[k]);
            }
        }
        if (page->last) {
            return 1;
        }
    }
    target.hasMore = true; // as far as is known
    return 1;
}

int ListLarkFiles(ChannelTurn& turn, FrameBuffer& frame, std::wstring_view pattern,
                  ListingTarget& target)
{
    if (pattern.empty() || ToCp932(pattern).size() > kLongestFileName) {
        return int{turn.Fail(CommandFault::TooLong)};
    }
    const int result = AskLark(turn, frame, pattern) ? CollectPages(turn, frame, target) : 0;
    if (result == 0 && turn.Fault() != CommandFault::Refused) {
        turn.Abort();
    }
    return result;
}

/// Whether a Lark has a file of exactly this name.
int HasLarkFile(ChannelTurn& turn, FrameBuffer& frame, std::wstring_view name)
{
    if (!AskLark(turn, frame, name)) {
        if (turn.Fault() == CommandFault::Cancelled) {
            turn.Abort();
        }
        return 0;
    }
    const auto page = ParseLarkFilePage(frame.Reader());
    const bool isFirst = page && page->number == 0;
    if (!isFirst) {
        Refuse(turn);
    }
    if (!isFirst || !page->last) {
        turn.Abort(); // whatever it is, the rest of it is nobody's answer
    }
    return isFirst && page->count > 0 && page->files[0].Name() == name ? 1 : 0;
}

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

/// Fetches one file of a Lark, block by block, in one turn on the channel. A damaged, missing or
/// misplaced block is asked for again from its offset, at most three times in a row.
/// @param frame  for requests and answers; the turn's answers come to it
/// @return whether the receiver has sent its last block; else the fault of the transfer or of the
///         turn says why
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

} // namespace

/// A listing in a turn, whose end is posted whatever came of it.
template <typename Work>
int CCommand::List(std::uint8_t request, ListingTarget target, Work list)
{
    const int result = InTurn(request, [&](ChannelTurn& turn) { return list(turn, target); });
    m_hasMoreFiles = target.hasMore;
    if (target.window != nullptr) {
        target.window->Post(target.message, kListEnded, 0);
    }
    return result;
}

int CCommand::RequestFiles_Pica(int mode, std::uint32_t typeNumber, DirectoryTable& table,
                                MessageTarget* window, unsigned message)
{
    const std::uint8_t variant = typeNumber == kSecondPica ? 2 : 1;
    return List(kListPica, {table, window, message}, [&](ChannelTurn& turn, ListingTarget& target) {
        return ListPicaFiles(turn, *this, mode, variant, target);
    });
}

int CCommand::RequestFiles_Lark(std::wstring_view pattern, DirectoryTable& table,
                                MessageTarget* window, unsigned message)
{
    return List(kListLark, {table, window, message}, [&](ChannelTurn& turn, ListingTarget& target) {
        return ListLarkFiles(turn, *this, pattern, target);
    });
}

int CCommand::FileExists(std::wstring_view name)
{
    if (!IsReceiverFileName(name)) {
        return Fail(CommandFault::TooLong);
    }
    return InTurn(kListLark, [&](ChannelTurn& turn) { return HasLarkFile(turn, *this, name); });
}

std::int64_t CCommand::DownloadFile(const std::filesystem::path& folder, std::wstring_view name,
                                    std::uint32_t expectedSize, const BytesArrived& arrived,
                                    std::optional<std::uint32_t> time)
{
    m_transfer = {};
    m_transfer.name = CheckReceivedName(name, folder);
    if (m_transfer.name != NameFault::None) {
        m_transfer.fault = DownloadFault::Name;
        return -1;
    }
    ReceivedFile file(folder, name, expectedSize, time, *m_operations, m_transfer);
    const int isWhole = InTurn(kFetch, [&](ChannelTurn& turn) {
        return file.Open() && FetchFile(turn, *this, name, file, arrived) ? 1 : 0;
    });
    if (isWhole == 0) {
        if (m_transfer.fault == DownloadFault::None) {
            m_transfer.fault =
                Fault() == CommandFault::Cancelled ? DownloadFault::Cancelled : DownloadFault::Link;
        }
        return -1;
    }
    return file.Finish() || m_transfer.fault == DownloadFault::WrongSize
               ? std::int64_t{file.Offset()}
               : -1;
}

} // namespace fieldcore
