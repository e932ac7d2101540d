#include "core/link/FileReplies.h"

#include "core/link/LayoutReader.h"
#include "core/platform/Calendar.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>

namespace fieldcore {

namespace {

constexpr std::uint8_t kLastPage = 0x80;
constexpr std::uint8_t kMoreFollows = 128;
constexpr std::size_t kMostBlockBytes = 1000;

/// @return seconds since 1980-01-06 00:00, 0 if these are no date and time
std::uint32_t RecordTime(int year, unsigned month, unsigned day, unsigned hour, unsigned minute)
{
    using namespace std::chrono;
    const year_month_day date{std::chrono::year(std::min(year, 9999)), std::chrono::month(month),
                              std::chrono::day(day)};
    if (!date.ok() || hour > 23 || minute > 59) {
        return 0;
    }
    const seconds inJapan = sys_days(date) - kGpsEpoch + hours(hour) + minutes(minute) + kJst;
    constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(inJapan.count(), 0, kMost));
}

/// Reads the next field as a file's name.
void ReadName(LayoutReader& in, DirectoryListingData& file)
{
    std::wstring text;
    in.Read(text);
    text.resize(std::min(text.find_last_not_of(L' ') + 1, kLongestFileName));
    std::copy(text.begin(), text.end(), file.name);
}

} // namespace

std::optional<FilePage> ParsePicaFilePage(FrameReader frame)
{
    LayoutReader in(frame, 0x79);
    if (!in.Fits()) {
        return std::nullopt;
    }
    FilePage page;
    in.Read(page.number, page.count);
    if (page.count > kPicaPageFiles) {
        return std::nullopt;
    }
    page.last = page.count < kPicaPageFiles;
    for (std::size_t i = 0; i < page.count; ++i) {
        DirectoryListingData& file = page.files[i];
        file.pageFlag = page.last ? 0 : kMoreFollows;
        int year = 0;
        unsigned month = 0;
        unsigned day = 0;
        unsigned hour = 0;
        unsigned minute = 0;
        in.BeginRecord();
        in.Read(file.fileIndex);
        ReadName(in, file);
        in.Read(file.size, year, month, day, hour, minute, file.attributes);
        file.time = RecordTime(year, month, day, hour, minute);
    }
    return in.IsComplete() ? std::optional(page) : std::nullopt;
}

std::optional<FilePage> ParseLarkFilePage(FrameReader frame)
{
    LayoutReader in(frame, 0x9D);
    if (!in.Fits()) {
        return std::nullopt;
    }
    FilePage page;
    std::uint8_t first = 0;
    in.Read(first, page.count);
    if (page.count > kLarkPageFiles) {
        return std::nullopt;
    }
    page.number = first & ~kLastPage;
    page.last = (first & kLastPage) != 0;
    for (std::size_t i = 0; i < page.count; ++i) {
        DirectoryListingData& file = page.files[i];
        file.pageFlag = first;
        in.BeginRecord();
        ReadName(in, file);
        in.Read(file.size, file.time, file.attributes);
    }
    return in.IsComplete() ? std::optional(page) : std::nullopt;
}

std::optional<FileBlock> ParseFileBlock(FrameReader frame)
{
    LayoutReader in(frame, kLongFrameType);
    if (!in.Fits()) {
        return std::nullopt;
    }
    FileBlock block;
    in.Read(block.offset, block.flags, block.bytes);
    frame.Skip(frame.DataStart() - kFrameDataStart + frame.DataLength() + 1); // and the checksum
    // Where the line has lost bytes, the next frame fills them up: once in 256 times the sum fits.
    const bool isWhole = frame.Byte() == kEtx && block.bytes.size() <= kMostBlockBytes;
    return isWhole ? std::optional(block) : std::nullopt;
}

} // namespace fieldcore
