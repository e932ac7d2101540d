#include "core/link/FileReplies.h"

#include "tests/core/link/FileServer.h"

#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Block;
using testing::Bytes;
using testing::Frame;
using testing::Joined;
using testing::LarkRecord;
using testing::Loaded;
using testing::LongFrame;
using testing::Page;
using testing::PicaRecord;

// 2026-03-14 01:30 UTC is 16869 days and 5400 s after 1980-01-06; 9 hours are added.
TEST(FileReplies, ReadsThePageOfAPica)
{
    FrameBuffer frame = Loaded({0x02, 0x00, 0x79, 0x18, 0x00, 0x01, 0x00, 0x04, 0x41, 0x30,
                                0x33, 0x31, 0x34, 0x41, 0x30, 0x30, 0x00, 0x00, 0xBC, 0x55,
                                0x07, 0xEA, 0x03, 0x0E, 0x01, 0x1E, 0x00, 0x00, 0x72, 0x03});
    const auto page = ParsePicaFilePage(frame.Reader());
    ASSERT_TRUE(page);
    EXPECT_TRUE(page->last);
    ASSERT_EQ(page->count, 1U);
    EXPECT_EQ(page->files[0].fileIndex, 4);
    EXPECT_EQ(page->files[0].Name(), L"A0314A00");
    EXPECT_EQ(page->files[0].size, 48213U);
    EXPECT_EQ(page->files[0].time, 16869U * 86400 + 5400 + 9 * 3600);
    EXPECT_EQ(page->files[0].pageFlag, 0);
}

TEST(FileReplies, ReadsThePageOfALark)
{
    FrameBuffer frame = Loaded({0x02, 0x00, 0x9D, 0x1A, 0x80, 0x01, 0x41, 0x30, 0x33, 0x31, 0x34,
                                0x41, 0x30, 0x30, 0x2E, 0x51, 0x30, 0x31, 0x20, 0x20, 0x00, 0x00,
                                0xBC, 0x55, 0x56, 0xE5, 0xFF, 0x00, 0x00, 0x00, 0x4D, 0x03});
    const auto page = ParseLarkFilePage(frame.Reader());
    ASSERT_TRUE(page);
    EXPECT_TRUE(page->last);
    EXPECT_EQ(page->number, 0);
    ASSERT_EQ(page->count, 1U);
    EXPECT_EQ(page->files[0].Name(), L"A0314A00.Q01");
    EXPECT_EQ(page->files[0].size, 48213U);
    EXPECT_EQ(page->files[0].time, 0x56E5FF00U);
    EXPECT_EQ(page->files[0].pageFlag, 0x80);
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
    struct Row
    {
        std::string_view fault;
        Bytes frame;
        bool pica;
        bool lark;
        bool block;
    };
    const Row rows[] = {
        {"nine of a Pica", Page(0x79, 3, std::vector<Bytes>(9, pica)), true, false, false},
        {"ten of a Pica", Page(0x79, 3, std::vector<Bytes>(10, pica)), false, false, false},
        {"eight of a Lark", Page(0x9D, 3, std::vector<Bytes>(8, lark)), false, true, false},
        {"nine of a Lark", Page(0x9D, 3, std::vector<Bytes>(9, lark)), false, false, false},
        {"a Pica's record cut", Frame(0x79, Joined({{0, 2}, pica, Bytes(21)})), false, false,
         false},
        {"a Lark's record cut", Frame(0x9D, Joined({{0, 2}, lark, Bytes(23)})), false, false,
         false},
        {"no count", Frame(0x9D, {0x80}), false, false, false},
        {"an empty page", Frame(0x9D, {0x80, 0}), false, true, false},
        {"a block of 1000 bytes", Block(7, 1, Bytes(1000)), false, false, true},
        {"a block of 1001 bytes", Block(7, 1, Bytes(1001)), false, false, false},
        {"a block without flags", LongFrame({0, 0, 0, 7}), false, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        FrameBuffer frame = Loaded(row.frame);
        EXPECT_EQ(ParsePicaFilePage(frame.Reader()).has_value(), row.pica);
        EXPECT_EQ(ParseLarkFilePage(frame.Reader()).has_value(), row.lark);
        EXPECT_EQ(ParseFileBlock(frame.Reader()).has_value(), row.block);
    }
}

} // namespace
} // namespace fieldcore
