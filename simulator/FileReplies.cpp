#include "simulator/Replies.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

namespace fieldcore::simulator {

namespace {

constexpr std::uint8_t kPicaPage = 0x79;
constexpr std::uint8_t kLarkPage = 0x9D;
constexpr std::size_t kPicaRecords = 9;
constexpr std::size_t kLarkRecords = 8;
constexpr std::size_t kBlockBytes = 1000;

constexpr unsigned kLastPage = 0x80;
constexpr unsigned kLastBlock = 1U << 0U;
constexpr unsigned kNoSuchFile = 1U << 1U;
constexpr unsigned kFileIsOpen = 1U << 2U;

std::uint32_t ListedSize(const ReceiverFile& file)
{
    return file.announcedSize.value_or(file.size);
}

void AddPicaRecord(DataWriter& out, const FileStore::Entry& entry)
{
    using namespace std::chrono;
    const ReceiverFile& file = entry.file;
    const sys_days day = floor<days>(file.time);
    const year_month_day date(day);
    const hh_mm_ss time(floor<minutes>(file.time - day));
    const unsigned attributes = (file.hidden ? 1U << 0U : 0U) |
                                (file.state == FileState::Open ? 1U << 5U : 0U) |
                                (file.state == FileState::Deleted ? 1U << 7U : 0U);
    out.U16(entry.index).Text(file.name, 8).U32(ListedSize(file));
    out.U16(static_cast<unsigned>(static_cast<int>(date.year())));
    out.U8(static_cast<unsigned>(date.month())).U8(static_cast<unsigned>(date.day()));
    out.U8(static_cast<unsigned>(time.hours().count()));
    out.U8(static_cast<unsigned>(time.minutes().count()));
    out.U8(attributes).U8(0);
}

void AddLarkRecord(DataWriter& out, const ReceiverFile& file)
{
    using namespace std::chrono;
    constexpr sys_days kEpoch{year(1980) / January / 6};
    const auto sinceEpoch = floor<seconds>(file.time - kEpoch);
    out.Text(file.name, 14).U32(ListedSize(file));
    out.U32(static_cast<std::uint64_t>(sinceEpoch.count()));
    out.U8(file.state == FileState::Open ? 1 : 0).U8(0);
}

/// One page, in the order of the files.
Bytes LarkPage(const std::vector<ReceiverFile>& files, std::size_t page, bool isLast)
{
    const std::size_t begin = page * kLarkRecords;
    const std::size_t end = std::min(begin + kLarkRecords, files.size());
    DataWriter out;
    out.U8((page & 0x7FU) | (isLast ? kLastPage : 0U)).U8(end - begin);
    for (std::size_t i = begin; i < end; ++i) {
        AddLarkRecord(out, files[i]);
    }
    return out.Frame(kLarkPage);
}

Bytes Block(const ReceiverFile* file, std::uint32_t offset, std::size_t count, unsigned flags)
{
    DataWriter out;
    out.U32(offset).U8(flags);
    if (file != nullptr) {
        ReadFileContent(*file, offset, out.Room(count));
    }
    return out.Frame(kLongFrame);
}

} // namespace

Bytes PicaPage(const FileStore& store, ListingManner manner, std::uint8_t page, bool live)
{
    std::vector<const FileStore::Entry*> entries;
    for (const FileStore::Entry& entry : store.Entries()) {
        if ((entry.file.state != FileState::Deleted) == live) {
            entries.push_back(&entry);
        }
    }
    std::vector<const FileStore::Entry*> shown;
    const bool endless = manner == ListingManner::Endless && !entries.empty();
    for (std::size_t i = page * kPicaRecords; shown.size() < kPicaRecords; ++i) {
        if (i >= entries.size() && !endless) {
            break;
        }
        shown.push_back(entries[i % entries.size()]);
    }
    DataWriter out;
    out.U8(page).U8(shown.size());
    for (const FileStore::Entry* entry : shown) {
        AddPicaRecord(out, *entry);
    }
    return out.Frame(kPicaPage);
}

FrameSource LarkPages(std::vector<ReceiverFile> files, ListingManner manner)
{
    const std::size_t pages =
        std::max<std::size_t>((files.size() + kLarkRecords - 1) / kLarkRecords, 1);
    return [files = std::move(files), manner, pages,
            next = std::size_t{0}]() mutable -> std::optional<Bytes> {
        const std::size_t turn = next++;
        if (manner == ListingManner::Endless) {
            return LarkPage(files, turn % pages, false);
        }
        if (turn >= pages) {
            return std::nullopt;
        }
        // Whichever page comes last carries the mark, so that a listing in any order ends.
        const std::size_t page = manner == ListingManner::Backwards ? pages - 1 - turn : turn;
        return LarkPage(files, page, turn + 1 == pages);
    };
}

FrameSource FileBlocks(const ReceiverFile* file, std::uint32_t offset, std::uint16_t blocks)
{
    if (file == nullptr || file->state == FileState::Open) {
        const unsigned why = file == nullptr ? kNoSuchFile : kFileIsOpen;
        return [offset, why, said = false]() mutable -> std::optional<Bytes> {
            return std::exchange(said, true) ? std::nullopt
                                             : std::optional(Block(nullptr, offset, 0, why));
        };
    }
    return [file = *file, next = std::uint64_t{offset}, left = blocks, endless = blocks == 0,
            ended = false]() mutable -> std::optional<Bytes> {
        if (ended || (!endless && left == 0)) {
            return std::nullopt;
        }
        const std::uint64_t rest = next < file.size ? file.size - next : 0;
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(rest, kBlockBytes));
        ended = count == rest;
        left = static_cast<std::uint16_t>(left - 1);
        const std::uint64_t at = std::exchange(next, next + count);
        return Block(&file, static_cast<std::uint32_t>(at), count, ended ? kLastBlock : 0U);
    };
}

} // namespace fieldcore::simulator
