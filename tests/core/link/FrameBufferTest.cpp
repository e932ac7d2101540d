#include "core/link/FrameBuffer.h"

#include "tests/core/link/FarEnd.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

TEST(FrameBuffer, TextFieldsHaveTheirWidth)
{
    struct Row
    {
        std::string_view fault;
        std::wstring text;
        std::size_t width;
        bool ownLength;
        Bytes data;
    };
    const Row rows[] = {
        {"long text is not cut", L"ABCDEF", 3, false, {0x41, 0x42, 0x43}},
        {"a double-byte character is cut in half", L"Aあい", 4, false, {0x41, 0x82, 0xA0, 0x20}},
        {"own length is ignored", L"ｱB", 9, true, {0xB1, 0x42}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        FrameBuffer frame;
        frame.BeginPacket(0x85, 0);
        frame.PutText(row.text, row.width, row.ownLength);
        frame.SetPacketLength(frame.GetCursor() - 4);
        frame.EndPacket();
        EXPECT_TRUE(std::ranges::equal(frame.BuiltFrame(), Frame(0x85, row.data)));
    }
}

TEST(FrameBuffer, StaysInsideItsBuffer)
{
    FrameBuffer frame;
    frame.BeginPacket(0x01, 0);
    frame.SkipBytes(5000);
    EXPECT_EQ(frame.GetCursor(), 1023U);
    EXPECT_EQ(frame.PutByte(0x11), 1);
    EXPECT_EQ(frame.PutByte(0x22), 0) << "a byte behind the last was not dropped";
    EXPECT_EQ(frame.GetCursor(), 1023U);
    EXPECT_EQ(frame.Bytes()[1023], 0x11);

    frame.ResetReadPos();
    frame.SkipBytes(1018);
    frame.PutLong(0xA1A2A3A4); // 1022 and 1023, then nothing
    EXPECT_EQ(frame.Bytes()[1022], 0xA1);
    EXPECT_EQ(frame.Bytes()[1023], 0xA2);

    frame.ResetReadPos();
    frame.SkipBytes(1018);
    EXPECT_EQ(frame.GetLong(), 0xA1A2FFFFU) << "what lies behind the end is FF";
    EXPECT_EQ(frame.GetByte(), 0xFF);
    EXPECT_EQ(frame.GetWord(), 0xFFFF);
    EXPECT_TRUE(std::isnan(frame.GetDouble()));
    EXPECT_TRUE(frame.GetChars(1).empty());

    frame.ResetReadPos();
    frame.SkipBytes(1000);
    EXPECT_TRUE(frame.GetChars(21).empty()) << "a copy must lie inside entirely";
    frame.ResetReadPos();
    frame.SkipBytes(1000);
    frame.PutText(std::wstring(21, L'x'), 21);
    EXPECT_EQ(frame.Bytes()[1004], 0x00) << "a copy must lie inside entirely";
}

TEST(FrameBuffer, ReadsFieldsInOrder)
{
    FrameBuffer frame;
    frame.Load(Frame(0x31, {0x12, 0x34, 0x01, 0x02, 0x03, 0xFF, 0xFE, 0xFD, 0xFC,
                            0xBF, 0xE8, 0,    0,    0,    0,    0,    0, // -0.75
                            'A',  ' ',  0x82, 0xA0}));
    EXPECT_EQ(frame.GetDataLength(), 21U);
    frame.ResetReadPos();
    EXPECT_EQ(frame.GetWord(), 0x1234);
    EXPECT_EQ(frame.GetTriple(), 0x010203U);
    EXPECT_EQ(frame.GetLong(), 0xFFFEFDFCU);
    EXPECT_EQ(frame.GetDouble(), -0.75);
    EXPECT_EQ(frame.GetText(4), L"A あ");
}

TEST(FrameBuffer, DigitsBelowZeroAreZero)
{
    FrameBuffer frame;
    frame.Load(Frame(0x09, {'0', '7', ' ', 'A', 0x00, 0x80, 0xFF}));
    frame.ResetReadPos();
    for (const int value : {0, 7, 0, 17, 0, 0, 0}) {
        EXPECT_EQ(frame.GetByte(FrameBuffer::ByteForm::Digit), value);
    }
}

TEST(FrameBuffer, ChecksumTellsADamagedFrameFromAGoodOne)
{
    const Bytes shortFrame{0x02, 0x00, 0x09, 0x01, 0x34, 0x3E, 0x03};
    const Bytes longFrame = LongFrame(Bytes(600, 0x5A));
    struct Row
    {
        std::string_view fault;
        const Bytes& good;
        std::size_t at;
        std::uint8_t becomes;
        int accepted = 0;
    };
    const Row rows[] = {
        {"nothing damaged", shortFrame, 0, 0x02, 1},
        {"start byte lost", shortFrame, 0, 0x03},
        {"status byte left out of the sum", shortFrame, 1, 0x01},
        {"type left out of the sum", shortFrame, 2, 0x0A},
        {"length points past the frame", shortFrame, 3, 0x40},
        {"data byte left out of the sum", shortFrame, 4, 0x35},
        {"check byte not compared", shortFrame, 5, 0x3F},
        {"end byte must not matter", shortFrame, 6, 0x00, 1},
        {"no checksum behind two length bytes", longFrame, 5, 0x5A, 1},
        {"it is not compared", longFrame, 605, 0x00},
        {"65,368 bytes are announced", longFrame, 3, 0xFF},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Bytes bytes = row.good;
        bytes[row.at] = row.becomes;
        FrameBuffer frame;
        frame.Load(bytes);
        EXPECT_EQ(frame.VerifyChecksum(), row.accepted);
    }
    FrameBuffer frame;
    frame.Load(longFrame);
    EXPECT_EQ(frame.GetDataLength(), 600U);
}

} // namespace
} // namespace fieldcore
