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
bool StartPage(FrameReader& frame, std::uint8_t type, std::size_t recordLength, std::size_t most,
               std::uint8_t& first, FilePage& page)
{
    if (frame.Type() != type || frame.DataLength() < kPageHead) {
        return false;
    }
    first = frame.Byte();
    page.count = frame.Byte();
    return page.count <= most && frame.DataLength() >= kPageHead + page.count * recordLength;
}

} // namespace

std::optional<FilePage> ParsePicaFilePage(FrameReader frame)
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
        file.fileIndex = frame.Word();
        KeepName(frame.Text(kPicaName), file);
        file.size = frame.Long();
        const int year = frame.Word();
        const unsigned month = frame.Byte();
        const unsigned day = frame.Byte();
        const unsigned hour = frame.Byte();
        const unsigned minute = frame.Byte();
        file.time = RecordTime(year, month, day, hour, minute);
        file.attributes = frame.Byte();
        file.spare = frame.Byte();
    }
    return page;
}

std::optional<FilePage> ParseLarkFilePage(FrameReader frame)
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
        KeepName(frame.Text(kLongestFileName), file);
        file.size = frame.Long();
        file.time = frame.Long();
        file.attributes = frame.Byte();
        file.spare = frame.Byte();
    }
    return page;
}

std::optional<FileBlock> ParseFileBlock(FrameReader frame)
{
    const std::size_t length = frame.DataLength();
    if (frame.Type() != kLongFrameType || length < kBlockHead ||
        length > kBlockHead + kMostBlockBytes) {
        return std::nullopt;
    }
    frame.Skip(1); // the second length byte
    FileBlock block;
    block.offset = frame.Long();
    block.flags = frame.Byte();
    block.bytes = frame.Bytes(length - kBlockHead);
    frame.Skip(1); // the checksum
    // Where the line has lost bytes, the next frame fills them up: once in 256 times the sum fits.
    return frame.Byte() == kEtx ? std::optional(block) : std::nullopt;
}

} // namespace fieldcore
