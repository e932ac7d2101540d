#include "core/link/Replies.h"

#include "tests/core/link/FileServer.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

TEST(FileReplies, MakesNoTimeOfWhatIsNoDate)
{
    const auto timeOf = [](const Bytes& dateAndTime) { // u16 year, month, day, hour, minute
        const FrameBuffer frame = Loaded(Page(0x79, 0, {PicaRecord(1, "A", 0, dateAndTime)}));
        return ParsePicaFilePage(frame.Reader()).value_or(FilePage()).files[0].time;
    };
    EXPECT_EQ(timeOf({0x07, 0xBC, 1, 6, 0, 0}), 9U * 3600) << "the epoch itself, nine hours on";
    EXPECT_EQ(timeOf({0x07, 0xBC, 1, 4, 0, 0}), 0U) << "before the epoch";
    EXPECT_EQ(timeOf({0x07, 0xEA, 0, 1, 0, 0}), 0U) << "month 0";
    EXPECT_EQ(timeOf({0x07, 0xEA, 13, 1, 0, 0}), 0U) << "month 13";
    EXPECT_EQ(timeOf({0x07, 0xEA, 2, 29, 0, 0}), 0U) << "no leap year";
    EXPECT_EQ(timeOf({0x07, 0xEA, 1, 1, 24, 0}), 0U) << "hour 24";
    EXPECT_EQ(timeOf({0x07, 0xEA, 1, 1, 0, 60}), 0U) << "minute 60";
    EXPECT_EQ(timeOf({0xFF, 0xFF, 12, 31, 0, 0}), 0xFFFFFFFFU) << "beyond what the field holds";
}

TEST(FileReplies, RefusesWhatDoesNotFitItsLayout)
{
    const auto fits = [](const Bytes& bytes) {
        const FrameBuffer frame = Loaded(bytes);
        std::string parsers = ParsePicaFilePage(frame.Reader()) ? "Pica" : "";
        parsers += ParseLarkFilePage(frame.Reader()) ? "Lark" : "";
        parsers += ParseFileBlock(frame.Reader()) ? "block" : "";
        return parsers;
    };
    const Bytes pica = PicaRecord(1, "A", 0, {0x07, 0xEA, 1, 1, 0, 0});
    const Bytes lark = LarkRecord("A.Q01", 1);
    Bytes withoutEnd = Block(7, 1, Bytes(20));
    withoutEnd.back() = 0x00;
    EXPECT_EQ(fits(Page(0x79, 3, std::vector<Bytes>(9, pica))), "Pica") << "nine of a Pica";
    EXPECT_EQ(fits(Page(0x79, 3, std::vector<Bytes>(10, pica))), "") << "ten of a Pica";
    EXPECT_EQ(fits(Page(0x9D, 3, std::vector<Bytes>(8, lark))), "Lark") << "eight of a Lark";
    EXPECT_EQ(fits(Page(0x9D, 3, std::vector<Bytes>(9, lark))), "") << "nine of a Lark";
    EXPECT_EQ(fits(Frame(0x79, Joined({{0, 2}, pica, Bytes(21)}))), "") << "a Pica's record cut";
    EXPECT_EQ(fits(Frame(0x9D, Joined({{0, 2}, lark, Bytes(23)}))), "") << "a Lark's record cut";
    EXPECT_EQ(fits(Frame(0x9D, {0x80})), "") << "no count";
    EXPECT_EQ(fits(Frame(0x9D, {0x80, 0})), "Lark") << "an empty page";
    EXPECT_EQ(fits(Block(7, 1, Bytes(1000))), "block") << "a block of 1000 bytes";
    EXPECT_EQ(fits(Block(7, 1, Bytes(1001))), "") << "a block of 1001 bytes";
    EXPECT_EQ(fits(LongFrame({0, 0, 0, 7})), "") << "a block without flags";
    EXPECT_EQ(fits(withoutEnd), "")
        << "bytes were lost, and the sum of what fills them up fits by chance";
}

} // namespace
} // namespace fieldcore
