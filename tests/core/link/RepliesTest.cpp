#include "core/link/Replies.h"

#include "core/link/LayoutReader.h"
#include "tests/core/link/FarEnd.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sstream>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

template <typename Reply>
using Parser = std::optional<Reply> (*)(FrameReader);

template <typename Reply>
std::optional<Reply> Parse(Parser<Reply> parser, std::uint8_t type, const Bytes& data)
{
    const FrameBuffer buffer = testing::Loaded(Frame(type, data));
    return parser(buffer.Reader());
}

Bytes F64(double value)
{
    const auto bits = std::bit_cast<std::uint64_t>(value);
    Bytes bytes;
    for (int shift = 56; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
    }
    return bytes;
}

/// A site's place behind its sub-type.
Bytes SiteData(const SiteReply& place, std::uint8_t second = 0)
{
    return Joined(
        {{18, second}, F64(place.latitudeRad), F64(place.longitudeRad), F64(place.heightM)});
}

/// The shortest reply reads so; one byte less is refused, and another type always is.
template <typename Reply>
void ExpectShortest(Parser<Reply> parser, std::uint8_t type, Bytes data, const Reply& expected)
{
    SCOPED_TRACE(int{type});
    EXPECT_EQ(Parse(parser, type, data), expected);
    EXPECT_FALSE(Parse(parser, static_cast<std::uint8_t>(type + 1), data).has_value());
    data.pop_back();
    EXPECT_FALSE(Parse(parser, type, data).has_value());
}

const Bytes kSerialHead = Ascii("S1234567VX1     004430034500120ANT00007AT0000");
const SerialReply kSerial{L"S1234567", L"VX1",      L"00443", L"00345",
                          L"00120",    L"ANT00007", L"AT",    L"S1234567"};
// 1.75 and 1, and behind them the place of a site
const Bytes kPositionHead{5, 14,   0,    0, 0x09, 0x60, 0,    0x05, 0x46,
                          0, 0x3F, 0xE0, 0, 0,    0x3F, 0x80, 0,    0};
constexpr ExtendedOptionsReply kAllSignals{0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF};

TEST(Replies, ReadTheirFieldsAndAreNoShorter)
{
    Bytes places(49, 0);
    std::iota(places.begin(), places.end(), std::uint8_t{1}); // every byte tells its place
    const SiteReply place{0.62, 2.44, 52.5};
    const Bytes placeData = Joined({F64(0.62), F64(2.44), F64(52.5)});
    ExpectShortest(ParseSerial, 0x07, kSerialHead, kSerial);
    ExpectShortest(ParseOptions, 0x4B, places,
                   OptionsReply{1,      0.2, 128600, 7,  8,  9,  19,    20, 21, 22, 23,
                                0x1E1F, 33,  41,     43, 44, 45, false, 47, 49, 0});
    ExpectShortest(ParseExtendedOptions, 0x4B, Joined({{'['}, Bytes(19, 0xFF)}),
                   ExtendedOptionsReply{kAllSignals});
    ExpectShortest(ParseStatus, 0x09, Ascii("1712---0851.855RTK 08"),
                   StatusReply{true, 12, 85, 1.85, 5, true, L"RTK ", 8});
    ExpectShortest(ParseGpsTime, 0x15, Ascii("604799.240018"), GpsTimeReply{604799.0, 2400, 18});
    ExpectShortest(ParseSite, 0x31, SiteData(place), place);
    ExpectShortest(ParsePositionStatus, 0x35,
                   Joined({kPositionHead, {0x40, 0x20, 0, 0}, placeData}),
                   PositionStatusReply{5, 14, 2400, 345600, 1.75F, 1.0F, 2.5F, place});
    ExpectShortest(ParseBatteryPort, 0x41, {2}, 2);
    ExpectShortest(ParseSettingsFlags, 0x7A, {1, 0, 5, 6, 7}, SettingsFlags{5, 6, 7});
    ExpectShortest(ParseTiltReading, 0xC8,
                   Joined({{1, 0, 0x51, 0x19},
                           F64(0.01),
                           F64(-0.02),
                           F64(HUGE_VAL),
                           {0x09, 0x60, 0x00, 0x05, 0x46, 0x00}}),
                   TiltReading{.state = 1,
                               .error1 = true,
                               .sensorPresent = true,
                               .calibrationState = 1,
                               .calibrationValid = true,
                               .calibrated = true,
                               .t1Rad = 0.01,
                               .t2Rad = -0.02,
                               .tiltRad = HUGE_VAL,
                               .time = TiltTime{2400, 345600}});
    ExpectShortest(ParseTiltCalibration, 0xC8, {1, 1, 0x02, 0xD0, 0x09, 0x60, 0, 0, 0, 60, 40},
                   TiltCalibration{720, TiltTime{2400, 60}, 40});
}

TEST(Replies, OfASerialRecordTheLongNumberMayBeMissing)
{
    // From one character on it is there; of more than ten the rest does not count.
    for (const std::string tail : {"X", "XYZ", "0123456789ABC"}) {
        SCOPED_TRACE(tail);
        SerialReply expected = kSerial;
        expected.longSerial.assign(tail.begin(), tail.begin() + std::min(std::ssize(tail), 10L));
        EXPECT_EQ(Parse(ParseSerial, 0x07, Joined({kSerialHead, Ascii(tail)})), expected);
    }
}

TEST(Replies, WhatIsNoValueIsReadOrRefused)
{
    EXPECT_EQ(Parse(ParseStatus, 0x09, Bytes(21, ' ')), (StatusReply{.survey = L"    "}))
        << "a field without a number is 0";
    const auto longer = Parse(ParseGpsTime, 0x15, Ascii("604799.2400-181"));
    EXPECT_EQ(longer, (GpsTimeReply{604799.0, 2400, -1}))
        << "the offset is two characters, whatever follows";
    for (const char* impossible : {"604800.240018", "-1.0000240018", "nan    240018"}) {
        EXPECT_FALSE(Parse(ParseGpsTime, 0x15, Ascii(impossible))) << impossible;
    }
    EXPECT_FALSE(Parse(ParseSite, 0x31, SiteData({}, 1))) << "another sub-type";
    // beyond the pole, and what is no number
    for (const SiteReply& place : {SiteReply{1.58, 0.0, 0.0}, SiteReply{std::nan(""), 0.0, 0.0},
                                   SiteReply{0.0, HUGE_VAL, 0.0}, SiteReply{0.0, 0.0, -HUGE_VAL}}) {
        EXPECT_FALSE(Parse(ParseSite, 0x31, SiteData(place)))
            << place.latitudeRad << " " << place.longitudeRad << " " << place.heightM;
    }
    const auto position =
        Parse(ParsePositionStatus, 0x35, Joined({kPositionHead, Bytes(28, 0xFF)}));
    ASSERT_TRUE(position) << "no position is no failure";
    EXPECT_TRUE(std::isnan(position->vdop) && std::isnan(position->position.longitudeRad));
    Bytes tilt(34, 0);
    tilt[0] = 1;
    tilt[28] = tilt[29] = 0xFF; // the week
    const auto reading = Parse(ParseTiltReading, 0xC8, tilt);
    ASSERT_TRUE(reading);
    EXPECT_FALSE(reading->time);
}

TEST(Replies, OptionsByLengthAndType)
{
    /// The model word, and whether there is Bluetooth.
    const auto read = [](std::size_t length, std::uint8_t typeCode, std::uint8_t byte45) {
        Bytes data(51, 0);
        data[44] = typeCode;
        data[45] = byte45;
        data[49] = 310 >> 8;
        data[50] = 310 & 0xFF;
        data.resize(length);
        const auto reply = Parse(ParseOptions, 0x4B, data).value_or(OptionsReply());
        return std::pair<int, bool>(reply.modelWord, reply.bluetooth);
    };
    EXPECT_EQ(read(51, 50, 0x10), std::pair(0, true)) << "Bluetooth flag ignored";
    EXPECT_EQ(read(51, 50, 0xEF), std::pair(0, false)) << "other bits taken for Bluetooth";
    EXPECT_EQ(read(51, 0, 0), std::pair(310, true)) << "model 310 without Bluetooth";
    EXPECT_EQ(read(50, 0, 0), std::pair(0, false)) << "half a model word read";
}

TEST(Replies, ExtendedOptionsByLength)
{
    Bytes full(34, 0xFF);
    full[0] = '[';
    full[32] = 0x01;
    full[33] = 0xF4;
    const auto read = [&full](std::size_t length, std::uint8_t counts = 0xFF) {
        Bytes data = full;
        data[31] = counts;
        data.resize(length);
        return Parse(ParseExtendedOptions, 0x4B, data);
    };
    ExtendedOptionsReply expected{kAllSignals};
    EXPECT_EQ(read(28), expected) << "board flags read at 28 bytes";
    expected.board = 0xFF;
    EXPECT_EQ(read(29), expected) << "board flags lost at 29 bytes";
    EXPECT_EQ(read(32), expected) << "what counts read at 32 bytes";
    expected.counts = 0xFF;
    EXPECT_EQ(read(33), expected) << "half a rate read";
    expected.loggingRate = 500;
    EXPECT_EQ(read(34), expected) << "whole reply not read";
    expected.counts = 0x01;
    expected.loggingRate = 0;
    EXPECT_EQ(read(34, 0x01), expected) << "a rate that does not count read";
    EXPECT_EQ(read(0), ExtendedOptionsReply()) << "nothing taken for a failure";
    full[0] = 'X';
    EXPECT_EQ(read(34), ExtendedOptionsReply()) << "no extended options taken for a failure";
}

TEST(Replies, NumbersInDigitsStandAtTheStart)
{
    const auto read = [](const std::string& text) {
        const Bytes bytes = Ascii(text);
        const ReceivedField field{{bytes.size(), FieldKind::Digits, ""}, bytes};
        return std::pair(field.Whole(), field.Real());
    };
    using Numbers = std::pair<std::int64_t, double>;
    EXPECT_EQ(read(""), Numbers(0, 0.0)) << "empty field";
    EXPECT_EQ(read("  42"), Numbers(42, 42.0)) << "blanks in front";
    EXPECT_EQ(read("4 2"), Numbers(4, 4.0)) << "blank inside";
    EXPECT_EQ(read("0017"), Numbers(17, 17.0)) << "zeros in front are no octal";
    EXPECT_EQ(read("-18"), Numbers(-18, -18.0)) << "sign";
    EXPECT_EQ(read("1.85"), Numbers(1, 1.85)) << "point";
    EXPECT_EQ(read("---"), Numbers(0, 0.0)) << "no number";
    EXPECT_EQ(read("9999999999999999"), Numbers(2147483647, 9999999999999999.0)) << "beyond int";
    EXPECT_EQ(read("-9999999999"), Numbers(-2147483648, -9999999999.0)) << "the other end";
    EXPECT_EQ(read(std::string("1\0002", 3)), Numbers(1, 1.0)) << "a zero byte ends it";
    EXPECT_EQ(read("\2407"), Numbers(0, 0.0)) << "a byte that other code pages call a blank";
}

/// Words of a record, "refused" for none.
std::string Words(const std::optional<IdentificationRecord>& record)
{
    if (!record) {
        return "refused";
    }
    std::ostringstream words;
    words << record->typeNumber << ": port " << int{record->port} << ", " << record->baudRate << "-"
          << int{record->byteSize} << "-" << int{record->parity} << "-" << int{record->stopBits}
          << "-" << record->flowControl << ", " << record->version;
    return words.str();
}

TEST(Identification, ReadsItsFields)
{
    const auto read = [](const std::string& text) {
        return Words(Parse(ParseIdentification, 0x6E, Ascii(text)));
    };
    const std::string end = ";PORT,0,38400,L,8,1,N,F;VER,4.43,";
    const std::string rest = ": port 1, 38400-8-0-0-0, 4.43";
    EXPECT_EQ(read("ID,3017" + end), "3017" + rest) << "example refused";
    EXPECT_EQ(read("ID,3017;PORT,2,9600,L,7,2,E,T;VER,0.95,"), "3017: port 3, 9600-7-2-2-1, 0.95")
        << "even parity, two stop bits";
    EXPECT_EQ(read("ID,3017;PORT,1,38400,L,8,1,ODD,F;VER,4.43,"),
              "3017: port 2, 38400-8-1-0-0, 4.43")
        << "odd parity";
    EXPECT_EQ(read("ID,3017;PORT,,0,38400,L,8,1,N,F;VER,4.43,"), "3017" + rest)
        << "empty field counted";
    EXPECT_EQ(read(",,ID,3017" + end), "3017" + rest) << "leading delimiters not skipped";
    EXPECT_EQ(read("ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43"), "3017" + rest)
        << "end without a comma refused";
    EXPECT_EQ(read("ID,3017;PORT,0,38400,L,8,1,N,F;VER,"), "refused") << "missing version taken";
    EXPECT_EQ(read("ID,3017;PORT,255,38400,L,8,1,N,F;VER,4.43,"), "refused")
        << "port beyond a byte taken";
    EXPECT_EQ(read(""), "refused") << "no text";
    EXPECT_EQ(read("ID,3028X" + end), "3028" + rest) << "four digits in front";
    EXPECT_EQ(read("ID,30 7" + end), "3010" + rest) << "a blank is no digit";
    EXPECT_EQ(read("ID,VX2" + end), "3028" + rest) << "VX2";
    EXPECT_EQ(read("ID,VX1" + end), "3017" + rest) << "VX1";
    EXPECT_EQ(read("ID,VX1-GNSS" + end), "3012" + rest) << "VX1-GNSS";
    EXPECT_EQ(read("ID,VX1-" + end), "3010" + rest) << "only the beginning of it";
}

} // namespace
} // namespace fieldcore
