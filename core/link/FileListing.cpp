#include "core/link/FileListing.h"

#include "core/link/FileReplies.h"
#include "core/platform/Cp932.h"

#include <bitset>

namespace fieldcore {

namespace {

constexpr std::uint8_t kListPica = 0x79;
constexpr std::uint8_t kListLark = 0x9C;

constexpr int kMostPicaPages = 57;                  // 9 records each reach the table's end
constexpr int kMostLarkPages = 128;                 // they are numbered by seven bits
constexpr int kMostLarkFrames = 2 * kMostLarkPages; // with pages that come twice

enum : std::intptr_t
{
    RecordListed = 0,
};

bool FitsName(std::wstring_view name)
{
    return !name.empty() && ToCp932(name).size() <= kLongestFileName;
}

bool IsListed(const DirectoryListingData& file, int mode)
{
    const bool deleted = (file.attributes & DirectoryListingData::Deleted) != 0;
    return (file.attributes & DirectoryListingData::NotListed) == 0 && deleted == (mode == 0);
}

} // namespace

/// Puts a record into the table and tells the window, unless it lies beyond the table's end.
void FileListing::Store(const ListingTarget& target, std::size_t index,
                        const DirectoryListingData& file)
{
    if (index >= target.table.size()) {
        m_hasMore = true;
        return;
    }
    target.table[index] = file;
    if (target.window != nullptr) {
        target.window->Post(target.message, RecordListed, static_cast<std::intptr_t>(index));
    }
}

int FileListing::Pica(int mode, std::uint8_t variant, const ListingTarget& target)
{
    for (int number = 0; number < kMostPicaPages; ++number) {
        m_frame.BeginPacket(kListPica, 3);
        m_frame.PutByte(static_cast<std::uint8_t>(number));
        m_frame.PutByte(static_cast<std::uint8_t>(mode == 0 ? 0 : 1));
        m_frame.PutByte(variant);
        m_frame.EndPacket();
        if (m_turn.Ask(m_frame.BuiltFrame(), Answer::Reply) == 0) {
            if (m_turn.Fault() == CommandFault::Cancelled) {
                m_turn.Abort();
            }
            return 0;
        }
        const auto page = ParsePicaFilePage(m_frame.Reader());
        if (!page || page->number != number) {
            return FailOnType();
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
    m_hasMore = true; // as far as is known
    return 1;
}

int FileListing::Lark(std::wstring_view pattern, const ListingTarget& target)
{
    if (!FitsName(pattern)) {
        m_turn.Fail(CommandFault::TooLong);
        return 0;
    }
    const int result = AskLark(pattern) ? CollectPages(target) : 0;
    if (result == 0 && m_turn.Fault() != CommandFault::Refused) {
        m_turn.Abort();
    }
    return result;
}

bool FileListing::AskLark(std::wstring_view pattern)
{
    m_frame.BeginPacket(kListLark, kLongestFileName);
    m_frame.PutText(pattern, kLongestFileName);
    m_frame.EndPacket();
    m_turn.TakeFramesInTurn();
    return m_turn.Ask(m_frame.BuiltFrame(), Answer::Reply) == 1;
}

/// Takes the pages in whatever order they come; the first frame is there. One that arrives damaged
/// is as good as one that does not come: the others are taken all the same.
int FileListing::CollectPages(const ListingTarget& target)
{
    std::bitset<kMostLarkPages> seen;
    bool hasEnd = false;
    CommandFault damage = CommandFault::None;
    for (int frame = 0; frame < kMostLarkFrames; ++frame) {
        if (frame > 0) {
            const ExchangeState state = m_turn.Next().state;
            if (state == ExchangeState::TimedOut) {
                return damage != CommandFault::None && m_turn.Fault() == CommandFault::TimedOut
                           ? Refuse(damage)
                           : 0;
            }
            if (state != ExchangeState::Frame || !m_frame.Reader().IsIntact()) {
                damage = state == ExchangeState::Frame ? CommandFault::BadChecksum
                                                       : CommandFault::Malformed;
                if (!m_turn.Breathe()) {
                    return 0;
                }
                continue;
            }
        }
        const auto page = ParseLarkFilePage(m_frame.Reader());
        if (!page) {
            return FailOnType();
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
                m_turn.NoteOdd(); // what was damaged may come again
                m_turn.Succeed();
            }
            return 1;
        }
        // Between the waits: a receiver that sends without a pause would leave no other moment.
        if (!m_turn.Breathe()) {
            return 0;
        }
    }
    return FailOnType(); // there is no end of them
}

int FileListing::Exists(std::wstring_view name)
{
    const int result = AskWhether(name);
    if (m_isSending) {
        m_turn.Abort();
    }
    return result;
}

int FileListing::AskWhether(std::wstring_view name)
{
    if (!AskLark(name)) {
        m_isSending = m_turn.Fault() == CommandFault::Cancelled;
        return 0;
    }
    const auto page = ParseLarkFilePage(m_frame.Reader());
    if (!page || page->number != 0) {
        m_isSending = true; // whatever it is, the rest of it is nobody's answer
        return FailOnType();
    }
    m_isSending = !page->last;
    return page->count > 0 && page->files[0].Name() == name ? 1 : 0;
}

/// What came is not what was due.
int FileListing::Refuse(CommandFault fault)
{
    m_turn.NoteOdd();
    m_turn.Fail(fault);
    return 0;
}

} // namespace fieldcore
