#include "core/link/FileReplies.h"

#include "tests/core/link/FileServer.h"
#include "tests/support/Hex.h"

#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

/// What stands in a page with one file.
void ExpectPage(const std::optional<FilePage>& page, std::wstring_view name, std::uint32_t time,
                int fileIndex, int pageFlag)
{
    ASSERT_TRUE(page);
    EXPECT_TRUE(page->last);
    EXPECT_EQ(page->number, 0);
    ASSERT_EQ(page->count, 1U);
    const DirectoryListingData& file = page->files[0];
    EXPECT_EQ(std::tuple(file.Name(), file.size, file.time, file.fileIndex, file.pageFlag),
              std::tuple(name, 48213U, time, fileIndex, pageFlag));
}

TEST(FileReplies, ReadsThePagesOfBothFamilies)
{
    const FrameBuffer pica =
        Loaded(Hex("02 00 79 18 00 01 00 04 41 30 33 31 34 41 30 30 00 00 BC 55"
                   "07 EA 03 0E 01 1E 00 00 72 03"));
    // 2026-03-14 01:30 UTC is 16869 days and 5400 s after 1980-01-06; 9 hours are added.
    ExpectPage(ParsePicaFilePage(pica.Reader()), L"A0314A00", 16869U * 86400 + 5400 + 9 * 3600, 4,
               0);
    const FrameBuffer lark =
        Loaded(Hex("02 00 9D 1A 80 01 41 30 33 31 34 41 30 30 2E 51 30 31 20 20"
                   "00 00 BC 55 56 E5 FF 00 00 00 4D 03"));
    ExpectPage(ParseLarkFilePage(lark.Reader()), L"A0314A00.Q01", 0x56E5FF00, 0, 0x80);
}

TEST(FileReplies, MakesNoTimeOfWhatIsNoDate)
{
    struct Row
    {
        std::string_view fault;
        Bytes dateAndTime; ///< u16 year, month, day, hour, minute
        std::uint32_t time;
    };
    const Row rows[] = {
        {"the epoch itself, nine hours on", {0x07, 0xBC, 1, 6, 0, 0}, 9 * 3600},
        {"before the epoch", {0x07, 0xBC, 1, 4, 0, 0}, 0},
        {"month 0", {0x07, 0xEA, 0, 1, 0, 0}, 0},
        {"month 13", {0x07, 0xEA, 13, 1, 0, 0}, 0},
        {"no leap year", {0x07, 0xEA, 2, 29, 0, 0}, 0},
        {"hour 24", {0x07, 0xEA, 1, 1, 24, 0}, 0},
        {"minute 60", {0x07, 0xEA, 1, 1, 0, 60}, 0},
        {"beyond what the field holds", {0xFF, 0xFF, 12, 31, 0, 0}, 0xFFFFFFFF},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        FrameBuffer frame = Loaded(Page(0x79, 0, {PicaRecord(1, "A", 0, row.dateAndTime)}));
        const auto page = ParsePicaFilePage(frame.Reader());
        ASSERT_TRUE(page);
        EXPECT_EQ(page->files[0].time, row.time);
    }
}

TEST(FileReplies, RefusesWhatDoesNotFitItsLayout)
{
    const Bytes pica = PicaRecord(1, "A", 0, {0x07, 0xEA, 1, 1, 0, 0});
    const Bytes lark = LarkRecord("A.Q01", 1);
    Bytes withoutEnd = Block(7, 1, Bytes(20));
    withoutEnd.back() = 0x00;
    struct Row
    {
        std::string_view fault;
        Bytes frame;
        std::string fits;
    };
    const Row rows[] = {
        {"nine of a Pica", Page(0x79, 3, std::vector<Bytes>(9, pica)), "Pica"},
        {"ten of a Pica", Page(0x79, 3, std::vector<Bytes>(10, pica)), ""},
        {"eight of a Lark", Page(0x9D, 3, std::vector<Bytes>(8, lark)), "Lark"},
        {"nine of a Lark", Page(0x9D, 3, std::vector<Bytes>(9, lark)), ""},
        {"a Pica's record cut", Frame(0x79, Joined({{0, 2}, pica, Bytes(21)})), ""},
        {"a Lark's record cut", Frame(0x9D, Joined({{0, 2}, lark, Bytes(23)})), ""},
        {"no count", Frame(0x9D, {0x80}), ""},
        {"an empty page", Frame(0x9D, {0x80, 0}), "Lark"},
        {"a block of 1000 bytes", Block(7, 1, Bytes(1000)), "block"},
        {"a block of 1001 bytes", Block(7, 1, Bytes(1001)), ""},
        {"a block without flags", LongFrame({0, 0, 0, 7}), ""},
        {"bytes were lost, and the sum of what fills them up fits by chance", withoutEnd, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const FrameBuffer frame = Loaded(row.frame);
        std::string fits = ParsePicaFilePage(frame.Reader()) ? "Pica" : "";
        fits += ParseLarkFilePage(frame.Reader()) ? "Lark" : "";
        fits += ParseFileBlock(frame.Reader()) ? "block" : "";
        EXPECT_EQ(fits, row.fits);
    }
}

} // namespace
} // namespace fieldcore
