#include "core/link/FileReplies.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>

namespace fieldcore {

namespace {

constexpr std::uint8_t kPicaPage = 0x79;
constexpr std::uint8_t kLarkPage = 0x9D;
constexpr std::size_t kPageHead = 2; // bytes
constexpr std::size_t kPicaRecord = 22;
constexpr std::size_t kLarkRecord = 24;
constexpr std::size_t kPicaName = 8;
constexpr std::uint8_t kLastPage = 0x80;
constexpr std::uint8_t kMoreFollows = 128;
constexpr std::size_t kBlockHead = 5;
constexpr std::size_t kLongHeader = 5; // bytes before the data
constexpr std::size_t kMostBlockBytes = 1000;
constexpr std::uint8_t kEtx = 0x03;
constexpr std::int64_t kShiftS = 9 * 3600;

/// @return seconds since 1980-01-06 00:00, 0 if these are no date and time
std::uint32_t RecordTime(int year, unsigned month, unsigned day, unsigned hour, unsigned minute)
{
    using namespace std::chrono;
    const year_month_day date{std::chrono::year(std::min(year, 9999)), std::chrono::month(month),
                              std::chrono::day(day)};
    if (!date.ok() || hour > 23 || minute > 59) {
        return 0;
    }
    const std::int64_t midnight =
        (sys_days(date) - sys_days(std::chrono::year(1980) / 1 / 6)).count() * std::int64_t{86400};
    constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(midnight + hour * 3600 + minute * 60 + kShiftS, 0, kMost));
}

void KeepName(std::wstring text, DirectoryListingData& file)
{
    text.resize(std::min(text.find_last_not_of(L' ') + 1, kLongestFileName));
    std::copy(text.begin(), text.end(), file.name);
}

/// Starts reading a page: the number byte stands in @p first then, the cursor on the records.
bool StartPage(FrameBuffer& frame, std::uint8_t type, std::size_t recordLength, std::size_t most,
               std::uint8_t& first, FilePage& page)
{
    if (frame.GetReplyType() != type || frame.GetDataLength() < kPageHead) {
        return false;
    }
    frame.ResetReadPos();
    first = frame.GetByte();
    page.count = frame.GetByte();
    return page.count <= most && frame.GetDataLength() >= kPageHead + page.count * recordLength;
}

} // namespace

std::optional<FilePage> ParsePicaFilePage(FrameBuffer& frame)
{
    FilePage page;
    std::uint8_t number = 0;
    if (!StartPage(frame, kPicaPage, kPicaRecord, kPicaPageFiles, number, page)) {
        return std::nullopt;
    }
    page.number = number;
    page.last = page.count < kPicaPageFiles;
    for (std::size_t i = 0; i < page.count; ++i) {
        DirectoryListingData& file = page.files[i];
        file.pageFlag = page.last ? 0 : kMoreFollows;
        file.fileIndex = frame.GetWord();
        KeepName(frame.GetText(kPicaName), file);
        file.size = frame.GetLong();
        const int year = frame.GetWord();
        const unsigned month = frame.GetByte();
        const unsigned day = frame.GetByte();
        const unsigned hour = frame.GetByte();
        const unsigned minute = frame.GetByte();
        file.time = RecordTime(year, month, day, hour, minute);
        file.attributes = frame.GetByte();
        file.spare = frame.GetByte();
    }
    return page;
}

std::optional<FilePage> ParseLarkFilePage(FrameBuffer& frame)
{
    FilePage page;
    std::uint8_t first = 0;
    if (!StartPage(frame, kLarkPage, kLarkRecord, kLarkPageFiles, first, page)) {
        return std::nullopt;
    }
    page.number = first & ~kLastPage;
    page.last = (first & kLastPage) != 0;
    for (std::size_t i = 0; i < page.count; ++i) {
        DirectoryListingData& file = page.files[i];
        file.pageFlag = first;
        KeepName(frame.GetText(kLongestFileName), file);
        file.size = frame.GetLong();
        file.time = frame.GetLong();
        file.attributes = frame.GetByte();
        file.spare = frame.GetByte();
    }
    return page;
}

std::optional<FileBlock> ParseFileBlock(FrameBuffer& frame)
{
    const std::size_t length = frame.GetDataLength();
    if (frame.GetReplyType() != kLongFrameType || length < kBlockHead ||
        length > kBlockHead + kMostBlockBytes) {
        return std::nullopt;
    }
    // Where the line has lost bytes, the next frame fills them up: once in 256 times the sum fits.
    if (frame.Bytes()[kLongHeader + length + 1] != kEtx) {
        return std::nullopt;
    }
    frame.ResetReadPos();
    frame.SkipBytes(1); // the second length byte
    FileBlock block;
    block.offset = frame.GetLong();
    block.flags = frame.GetByte();
    block.bytes = frame.Bytes().subspan(kLongHeader + kBlockHead, length - kBlockHead);
    return block;
}

} // namespace fieldcore
