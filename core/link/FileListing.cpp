#include "core/link/FileListing.h"

#include "core/link/Replies.h"
#include "core/platform/Cp932.h"

#include <bitset>

namespace fieldcore {

namespace {

constexpr std::uint8_t kListPica = 0x79;
constexpr std::uint8_t kListLark = 0x9C;

constexpr int kMostPicaPages = 57;                  // 9 records each reach the table's end
constexpr int kMostLarkPages = 128;                 // they are numbered by seven bits
constexpr int kMostLarkFrames = 2 * kMostLarkPages; // with pages that come twice
constexpr std::intptr_t kRecordListed = 0;

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

} // namespace

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

} // namespace fieldcore
