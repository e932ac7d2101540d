#include "core/link/FrameBuffer.h"

#include "tests/core/link/FarEnd.h"

#include <cmath>
#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

TEST(FrameBuffer, TextFieldsHaveTheirWidth)
{
    const auto built = [](std::wstring_view text, std::size_t width, bool ownLength = false) {
        FrameBuffer frame;
        frame.BeginPacket(0x85, 0);
        frame.PutText(text, width, ownLength);
        frame.SetPacketLength(frame.GetCursor() - 4);
        frame.EndPacket();
        return Bytes(frame.BuiltFrame().begin(), frame.BuiltFrame().end());
    };
    EXPECT_EQ(built(L"ABCDEF", 3), Frame(0x85, {0x41, 0x42, 0x43})) << "long text is not cut";
    EXPECT_EQ(built(L"Aあい", 4), Frame(0x85, {0x41, 0x82, 0xA0, 0x20})) << "half a character sent";
    EXPECT_EQ(built(L"ｱB", 9, true), Frame(0x85, {0xB1, 0x42})) << "own length is ignored";
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
    EXPECT_TRUE(std::isnan(frame.GetDouble()));

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
                            'A',  ' ',  0x82, 0xA0, '7',  ' ',  'A',  0x80}));
    EXPECT_EQ(frame.GetDataLength(), 25U);
    frame.ResetReadPos();
    EXPECT_EQ(frame.GetWord(), 0x1234);
    EXPECT_EQ(frame.GetTriple(), 0x010203U);
    EXPECT_EQ(frame.GetLong(), 0xFFFEFDFCU);
    EXPECT_EQ(frame.GetDouble(), -0.75);
    EXPECT_EQ(frame.GetText(4), L"A あ");
    for (const int value : {7, 0, 17, 0}) { // no digit is below zero
        EXPECT_EQ(frame.GetByte(FrameBuffer::ByteForm::Digit), value);
    }
}

TEST(FrameBuffer, ChecksumTellsADamagedFrameFromAGoodOne)
{
    const auto isGood = [](Bytes frame, std::size_t at, std::uint8_t becomes) {
        frame[at] = becomes;
        FrameBuffer buffer;
        buffer.Load(frame);
        return buffer.VerifyChecksum() == 1;
    };
    const Bytes one{0x02, 0x00, 0x09, 0x01, 0x34, 0x3E, 0x03};
    EXPECT_TRUE(isGood(one, 0, 0x02)) << "nothing damaged";
    EXPECT_FALSE(isGood(one, 0, 0x03)) << "start byte lost";
    EXPECT_FALSE(isGood(one, 1, 0x01)) << "status byte left out of the sum";
    EXPECT_FALSE(isGood(one, 2, 0x0A)) << "type left out of the sum";
    EXPECT_FALSE(isGood(one, 3, 0x40)) << "length points past the frame";
    EXPECT_FALSE(isGood(one, 4, 0x35)) << "data byte left out of the sum";
    EXPECT_FALSE(isGood(one, 5, 0x3F)) << "check byte not compared";
    EXPECT_TRUE(isGood(one, 6, 0x00)) << "end byte must not matter";
    const Bytes large = LongFrame(Bytes(600, 0x5A)); // the checksum stands behind two length bytes
    EXPECT_TRUE(isGood(large, 5, 0x5A)) << "no checksum behind two length bytes";
    EXPECT_FALSE(isGood(large, 605, 0x00)) << "it is not compared";
    EXPECT_FALSE(isGood(large, 3, 0xFF)) << "65,368 bytes are announced";
    EXPECT_EQ(Loaded(large).GetDataLength(), 600U);
}

} // namespace
} // namespace fieldcore
