#include "core/link/FileCommands.h"

#include "core/link/FileReplies.h"
#include "core/platform/Cp932.h"

#include <algorithm>

namespace fieldcore {

namespace {

constexpr std::uint8_t kDeletePica = 0x60;
constexpr std::uint8_t kRecoverPica = 0x68;
constexpr std::uint8_t kListPica = 0x79;
constexpr std::uint8_t kListLark = 0x9C;
constexpr std::uint8_t kDeleteLark = 0xA0;
constexpr std::uint8_t kRecoverLark = 0xA1;

constexpr int kMostPicaPages = 57;                  // 9 records each reach the table's end
constexpr int kMostLarkPages = 128;                 // they are numbered by seven bits
constexpr int kMostLarkFrames = 2 * kMostLarkPages; // with pages that come twice
constexpr std::uint32_t kSecondPica = 3020;

enum : std::intptr_t
{
    RecordListed = 0,
    ListEnded = 1,
};

bool FitsName(std::wstring_view name)
{
    return !name.empty() && ToCp932(name).size() <= kLongestFileName;
}

/// Puts a record into the table and tells the window, unless it lies beyond the table's end.
void Store(DirectoryTable& table, std::size_t index, const DirectoryListingData& file,
           MessageTarget* window, unsigned message)
{
    if (index >= table.size()) {
        return;
    }
    table[index] = file;
    if (window != nullptr) {
        window->Post(message, RecordListed, static_cast<std::intptr_t>(index));
    }
}

void PostEnd(MessageTarget* window, unsigned message)
{
    if (window != nullptr) {
        window->Post(message, ListEnded, 0);
    }
}

bool IsListed(const DirectoryListingData& file, int mode)
{
    const bool deleted = (file.attributes & DirectoryListingData::Deleted) != 0;
    return (file.attributes & DirectoryListingData::NotListed) == 0 && deleted == (mode == 0);
}

} // namespace

bool IsReceiverFileName(std::wstring_view name)
{
    return FitsName(name) && name.find_first_of(L"*?") == std::wstring_view::npos;
}

// Listings.

int FileCommands::RequestFiles_Pica(int mode, std::uint32_t typeNumber, DirectoryTable& table,
                                    MessageTarget* window, unsigned message)
{
    const std::uint8_t variant = typeNumber == kSecondPica ? 2 : 1;
    const int result = ListPages_Pica(mode, variant, table, window, message);
    if (result == 0 && Fault() == CommandFault::Cancelled) {
        AbortTransmission();
    }
    PostEnd(window, message);
    return result;
}

int FileCommands::ListPages_Pica(int mode, std::uint8_t variant, DirectoryTable& table,
                                 MessageTarget* window, unsigned message)
{
    for (int number = 0; number < kMostPicaPages; ++number) {
        Build(kListPica, {static_cast<std::uint8_t>(number),
                          static_cast<std::uint8_t>(mode == 0 ? 0 : 1), variant});
        if (Exchange(Answer::Reply) == 0) {
            return 0;
        }
        const auto page = ParsePicaFilePage(Reader());
        if (!page || page->number != number) {
            return FailOnType();
        }
        for (std::size_t k = 0; k < page->count; ++k) {
            if (IsListed(page->files[k], mode)) {
                Store(table, kPicaPageFiles * static_cast<std::size_t>(number) + k, page->files[k],
                      window, message);
            }
        }
        if (page->last) {
            break;
        }
    }
    return 1;
}

/// @return false, with the fault set, if the request cannot be sent
bool FileCommands::BuildListRequest(std::wstring_view pattern)
{
    if (!MayStart()) {
        return false;
    }
    if (!FitsName(pattern)) {
        Fail(CommandFault::TooLong);
        return false;
    }
    BeginPacket(kListLark, kLongestFileName);
    PutText(pattern, kLongestFileName);
    EndPacket();
    return KeepRequest();
}

int FileCommands::RequestFiles_Lark(std::wstring_view pattern, DirectoryTable& table,
                                    MessageTarget* window, unsigned message)
{
    const int result = BuildListRequest(pattern) ? ListPages_Lark(table, window, message) : 0;
    PostEnd(window, message);
    return result;
}

int FileCommands::ListPages_Lark(DirectoryTable& table, MessageTarget* window, unsigned message)
{
    int result = 0;
    {
        const BusyGuard busy(*this);
        SetHandOver(true);
        result = CollectPages_Lark(table, window, message);
        SetHandOver(false);
    }
    if (result == 0 && Fault() != CommandFault::Refused) {
        AbortTransmission();
    }
    return result;
}

int FileCommands::CollectPages_Lark(DirectoryTable& table, MessageTarget* window, unsigned message)
{
    if (ExchangeKept(Answer::Reply) == 0) {
        return 0;
    }
    int expected = 0;
    for (int frame = 0; frame < kMostLarkFrames; ++frame) {
        if (frame > 0) {
            const ExchangeState state = WaitForAnswer().state;
            if (state != ExchangeState::Frame) {
                return state == ExchangeState::TimedOut ? 0 : Fail(CommandFault::Malformed);
            }
        }
        if (VerifyChecksum() == 0) {
            return Fail(CommandFault::BadChecksum);
        }
        const auto page = ParseLarkFilePage(Reader());
        if (!page || page->number > expected || expected == kMostLarkPages) {
            return FailOnType(); // a page is missing, or there is no end of them
        }
        if (page->number < expected) {
            continue; // it came already
        }
        for (std::size_t k = 0; k < page->count; ++k) {
            Store(table, kLarkPageFiles * static_cast<std::size_t>(page->number) + k,
                  page->files[k], window, message);
        }
        if (page->last) {
            return 1;
        }
        ++expected;
        // Between the waits: a receiver that sends without a pause would leave no other moment.
        if (!GetHost().Breathe()) {
            return Fail(CommandFault::Cancelled);
        }
    }
    return FailOnType();
}

int FileCommands::FileExists(std::wstring_view name)
{
    if (!IsReceiverFileName(name)) {
        return Fail(CommandFault::TooLong);
    }
    if (!BuildListRequest(name)) {
        return 0;
    }
    bool more = false;
    const int result = AskWhether(name, more);
    if (more) {
        AbortTransmission();
    }
    return result;
}

int FileCommands::AskWhether(std::wstring_view name, bool& more)
{
    const BusyGuard busy(*this);
    SetHandOver(true);
    const int exchanged = ExchangeKept(Answer::Reply);
    SetHandOver(false);
    if (exchanged == 0) {
        more = Fault() == CommandFault::Cancelled;
        return 0;
    }
    const auto page = ParseLarkFilePage(Reader());
    if (!page || page->number != 0) {
        more = true; // whatever it is, the rest of it is nobody's answer
        return FailOnType();
    }
    more = !page->last;
    return page->count > 0 && page->files[0].Name() == name ? 1 : 0;
}

// Commands.

int FileCommands::DeleteFile_Pica(std::uint16_t fileIndex)
{
    return Command(kDeletePica, {static_cast<std::uint8_t>(fileIndex >> 8),
                                 static_cast<std::uint8_t>(fileIndex & 0xFF)});
}

int FileCommands::RecoverFile_Pica(std::uint16_t fileIndex)
{
    return Command(kRecoverPica, {static_cast<std::uint8_t>(fileIndex >> 8),
                                  static_cast<std::uint8_t>(fileIndex & 0xFF)});
}

int FileCommands::CommandByName(std::uint8_t type, std::wstring_view name)
{
    if (!MayStart()) {
        return 0;
    }
    if (!IsReceiverFileName(name)) {
        return Fail(CommandFault::TooLong);
    }
    BeginPacket(type, kLongestFileName);
    PutText(name, kLongestFileName);
    EndPacket();
    return Exchange(Answer::Ack);
}

int FileCommands::DeleteFile_Lark(std::wstring_view name)
{
    return CommandByName(kDeleteLark, name);
}

int FileCommands::RecoverFile_Lark(std::wstring_view name)
{
    return CommandByName(kRecoverLark, name);
}

} // namespace fieldcore
