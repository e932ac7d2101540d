#include "core/link/Replies.h"

#include "core/link/LayoutReader.h"
#include "tests/core/link/FarEnd.h"

#include <cmath>
#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Ascii;
using testing::Bytes;
using testing::Frame;
using testing::Joined;

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

const Bytes kSerialHead = Ascii("S1234567VX1     004430034500120ANT00007AT0000");

TEST(Replies, ShorterThanTheirLayoutAreRefused)
{
    // The whole reply is read, one byte less is not, and another type never is.
    const auto check = [](auto parser, std::uint8_t type, Bytes data) {
        SCOPED_TRACE(int{type});
        EXPECT_TRUE(Parse(parser, type, data).has_value());
        EXPECT_FALSE(Parse(parser, static_cast<std::uint8_t>(type + 1), data).has_value());
        data.pop_back();
        EXPECT_FALSE(Parse(parser, type, data).has_value());
    };
    const Bytes place = Joined({F64(0.6), F64(2.4), F64(70.0)});
    check(ParseSerial, 0x07, kSerialHead);
    check(ParseOptions, 0x4B, Bytes(49, 1));
    check(ParseExtendedOptions, 0x4B, Joined({{'['}, Bytes(19, 0)}));
    check(ParseStatus, 0x09, Ascii("10080000801.855RTK 10"));
    check(ParseGpsTime, 0x15, Ascii("345600.221018"));
    check(ParseSite, 0x31, Joined({{18, 0}, place}));
    check(ParsePositionStatus, 0x35, Joined({Bytes(22, 0), place}));
    check(ParseBatteryPort, 0x41, {2});
    check(ParseSettingsFlags, 0x7A, {1, 0, 5, 6, 7});
    check(ParseTiltReading, 0xC8, Joined({{1, 0}, Bytes(32, 0)}));
    check(ParseTiltCalibration, 0xC8, Joined({{1, 1}, Bytes(9, 0)}));
}

TEST(Replies, SerialRecord)
{
    const auto reply = Parse(ParseSerial, 0x07, Joined({kSerialHead, Ascii("L123456789")}));
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->shortSerial, L"S1234567");
    EXPECT_EQ(reply->receiverType, L"VX1");
    EXPECT_EQ(reply->navVersion, L"00443");
    EXPECT_EQ(reply->sigVersion, L"00345");
    EXPECT_EQ(reply->bootVersion, L"00120");
    EXPECT_EQ(reply->antennaSerial, L"ANT00007");
    EXPECT_EQ(reply->antennaType, L"AT");
    EXPECT_EQ(reply->longSerial, L"L123456789");
    struct Row
    {
        std::string_view fault;
        std::string tail;
        std::wstring longSerial;
    };
    const Row rows[] = {
        {"long serial invented at 45 bytes", "", L"S1234567"},
        {"long serial not read at 46 bytes", "X", L"X"},
        {"bytes behind the data read", "XYZ", L"XYZ"},
        {"more than ten characters read", "0123456789ABC", L"0123456789"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const auto shorter = Parse(ParseSerial, 0x07, Joined({kSerialHead, Ascii(row.tail)}));
        ASSERT_TRUE(shorter);
        EXPECT_EQ(shorter->longSerial, row.longSerial);
    }
}

TEST(Replies, Status)
{
    const auto reply = Parse(ParseStatus, 0x09, Ascii("1712---0851.855RTK 08"));
    ASSERT_TRUE(reply);
    EXPECT_TRUE(reply->timeValid);
    EXPECT_EQ(reply->satellitesTracked, 12);
    EXPECT_EQ(reply->batteryPercent, 85);
    EXPECT_EQ(reply->pdop, 1.85);
    EXPECT_EQ(reply->fixKind, 5);
    EXPECT_TRUE(reply->rtkFixed);
    EXPECT_EQ(reply->survey, L"RTK ");
    EXPECT_EQ(reply->freeMemoryTenths, 8);

    const auto empty = Parse(ParseStatus, 0x09, Bytes(21, ' '));
    ASSERT_TRUE(empty);
    EXPECT_FALSE(empty->timeValid);
    EXPECT_EQ(empty->satellitesTracked, 0) << "a field without a number is 0";
    EXPECT_EQ(empty->pdop, 0.0);
    EXPECT_FALSE(empty->rtkFixed);
}

TEST(Replies, GpsTime)
{
    const auto reply = Parse(ParseGpsTime, 0x15, Ascii("604799.240018"));
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->secondsOfWeek, 604799.0);
    EXPECT_EQ(reply->week, 2400);
    EXPECT_EQ(reply->utcOffsetS, 18);
    const auto longer = Parse(ParseGpsTime, 0x15, Ascii("604799.2400-181"));
    ASSERT_TRUE(longer);
    EXPECT_EQ(longer->utcOffsetS, -1) << "the offset is two characters, whatever follows";
    for (const char* impossible :
         {"604800.240018", "-1.0000240018", "nan    240018", "inf    240018"}) {
        EXPECT_FALSE(Parse(ParseGpsTime, 0x15, Ascii(impossible))) << impossible;
    }
}

TEST(Replies, SiteMustBeOnEarth)
{
    struct Row
    {
        std::string_view fault;
        double latitude;
        double longitude;
        double height;
        bool accepted;
    };
    const Row rows[] = {
        {"a good place refused", 0.62, 2.44, 52.5, true},
        {"beyond the pole", 1.58, 0.0, 0.0, false},
        {"latitude no number", std::nan(""), 0.0, 0.0, false},
        {"longitude infinite", 0.0, HUGE_VAL, 0.0, false},
        {"height infinite", 0.0, 0.0, -HUGE_VAL, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Bytes data =
            Joined({{18, 0}, F64(row.latitude), F64(row.longitude), F64(row.height)});
        EXPECT_EQ(Parse(ParseSite, 0x31, data).has_value(), row.accepted);
    }
    EXPECT_FALSE(Parse(ParseSite, 0x31, Joined({{18, 1}, Bytes(24, 0)}))) << "another sub-type";
}

TEST(Replies, PositionStatus)
{
    const Bytes dops{0x3F, 0xE0, 0, 0, 0x3F, 0x80, 0, 0, 0x7F, 0xC0, 0, 0}; // 1.75, 1, no number
    const Bytes head{5, 14, 0, 0, 0x09, 0x60, 0, 0x05, 0x46, 0x00};
    const auto reply = Parse(ParsePositionStatus, 0x35,
                             Joined({head, dops, F64(0.62), F64(std::nan("")), F64(52.5)}));
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->fixKind, 5);
    EXPECT_EQ(reply->satellitesUsed, 14);
    EXPECT_EQ(reply->week, 2400U);
    EXPECT_EQ(reply->secondsOfWeek, 345600U);
    EXPECT_EQ(reply->pdop, 1.75F);
    EXPECT_EQ(reply->hdop, 1.0F);
    EXPECT_TRUE(std::isnan(reply->vdop));
    EXPECT_EQ(reply->position.latitudeRad, 0.62);
    EXPECT_TRUE(std::isnan(reply->position.longitudeRad)) << "no position is no failure";
}

TEST(Replies, Options)
{
    Bytes data(51, 0);
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = static_cast<std::uint8_t>(i + 1); // every byte tells its place
    }
    data[44] = 0;
    data[45] = 0;
    auto reply = Parse(ParseOptions, 0x4B, data);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->firstOption, 1);
    EXPECT_EQ(reply->tenths, 0.2);
    EXPECT_EQ(reply->byte32, 33) << "the others are options, which have their tests";
    EXPECT_EQ(reply->modelWord, 0x3233);
    EXPECT_FALSE(reply->bluetooth);

    struct Row
    {
        std::string_view fault;
        std::size_t length;
        std::uint8_t typeCode;
        std::uint8_t byte45;
        std::uint16_t word;
        std::uint16_t modelWord;
        bool bluetooth;
    };
    const Row rows[] = {
        {"Bluetooth flag ignored", 51, 50, 0x10, 0, 0, true},
        {"other bits taken for Bluetooth", 51, 50, 0xEF, 0, 0, false},
        {"model word read for another code", 51, 50, 0, 310, 0, false},
        {"model 310 without Bluetooth", 51, 0, 0, 310, 310, true},
        {"half a model word read", 50, 0, 0, 310, 0, false},
        {"a missing model word read", 49, 0, 0, 310, 0, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        data[44] = row.typeCode;
        data[45] = row.byte45;
        data[49] = static_cast<std::uint8_t>(row.word >> 8);
        data[50] = static_cast<std::uint8_t>(row.word & 0xFF);
        reply = Parse(ParseOptions, 0x4B,
                      Bytes(data.begin(), data.begin() + static_cast<long>(row.length)));
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->modelWord, row.modelWord);
        EXPECT_EQ(reply->bluetooth, row.bluetooth);
    }
}

TEST(Replies, ExtendedOptions)
{
    // 0: mark, 8: w1, 12: w2, 16: w3, 28: b, 31: d, 32: rate
    struct Flag
    {
        std::string_view name;
        std::size_t at;
        std::uint8_t bit;
        bool ExtendedOptionsReply::*flag;
    };
    constexpr Flag kFlags[] = {
        {"L5: w1 bit 29", 8, 0x20, &ExtendedOptionsReply::l5},
        {"L2C: w1 bit 21", 9, 0x20, &ExtendedOptionsReply::l2c},
        {"GLONASS: w2 bit 0", 15, 0x01, &ExtendedOptionsReply::glonass},
        {"Galileo: w2 bit 19", 13, 0x08, &ExtendedOptionsReply::galileo},
        {"Galileo: w2 bit 23", 13, 0x80, &ExtendedOptionsReply::galileo},
        {"QZSS: w3 bit 2", 19, 0x04, &ExtendedOptionsReply::qzss},
        {"tilt: w3 bit 1", 19, 0x02, &ExtendedOptionsReply::tilt},
        {"board: b bit 6", 28, 0x40, &ExtendedOptionsReply::meridian},
    };
    const auto count = [](const ExtendedOptionsReply& r) {
        return r.l5 + r.l2c + r.glonass + r.galileo + r.qzss + r.tilt + r.meridian + r.cmrxInput +
               r.cmrxOutput;
    };
    Bytes clear(34, 0);
    clear[0] = '[';
    for (const Flag& flag : kFlags) {
        SCOPED_TRACE(flag.name);
        Bytes data = clear;
        data[flag.at] = flag.bit;
        const auto reply = Parse(ParseExtendedOptions, 0x4B, data);
        ASSERT_TRUE(reply);
        EXPECT_TRUE((*reply).*flag.flag);
        EXPECT_EQ(count(*reply), 1) << "another flag rose too";
    }

    Bytes full(34, 0xFF);
    full[0] = '[';
    full[32] = 0x01;
    full[33] = 0xF4;
    struct Row
    {
        std::string_view fault;
        std::size_t length;
        bool meridian;
        bool cmrx;
        std::uint16_t rate;
    };
    const Row rows[] = {
        {"whole reply not read", 34, true, true, 500},
        {"half a rate read", 33, true, true, 0},
        {"CMRx read at 32 bytes", 32, true, false, 0},
        {"board flag lost at 29 bytes", 29, true, false, 0},
        {"board flag read at 28 bytes", 28, false, false, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const auto reply = Parse(ParseExtendedOptions, 0x4B,
                                 Bytes(full.begin(), full.begin() + static_cast<long>(row.length)));
        ASSERT_TRUE(reply);
        EXPECT_TRUE(reply->l5 && reply->tilt);
        EXPECT_EQ(reply->meridian, row.meridian);
        EXPECT_EQ(reply->cmrxInput && reply->cmrxOutput, row.cmrx);
        EXPECT_EQ(reply->loggingRate, row.rate);
    }
    full[31] = 0x01; // CMRx only
    EXPECT_EQ(Parse(ParseExtendedOptions, 0x4B, full)->loggingRate, 0);
    full[31] = 0x02; // rate only
    EXPECT_FALSE(Parse(ParseExtendedOptions, 0x4B, full)->cmrxInput);
    full[0] = 'X';
    const auto none = Parse(ParseExtendedOptions, 0x4B, full);
    ASSERT_TRUE(none) << "a receiver without extended options is no failure";
    EXPECT_EQ(count(*none), 0);
    EXPECT_TRUE(Parse(ParseExtendedOptions, 0x4B, {})) << "nor is one that sends nothing";
}

TEST(NumberFields, ReadWhatStandsAtTheStart)
{
    struct Row
    {
        std::string_view fault;
        std::string text;
        int integer;
        double real;
    };
    const Row rows[] = {
        {"empty field", "", 0, 0.0},
        {"blanks in front", "  42", 42, 42.0},
        {"blanks behind", "42  ", 42, 42.0},
        {"blank inside", "4 2", 4, 4.0},
        {"tab as a blank", "\t42", 42, 42.0},
        {"zeros in front are no octal", "0017", 17, 17.0},
        {"sign", "-18", -18, -18.0},
        {"plus", "+18", 18, 18.0},
        {"sign alone", "-", 0, 0.0},
        {"two signs", "--5", 0, 0.0},
        {"point", "1.85", 1, 1.85},
        {"comma is no point", "1,85", 1, 1.0},
        {"point first", ".5", 0, 0.5},
        {"letters", "---", 0, 0.0},
        {"letters behind", "12E", 12, 12.0},
        {"exponent", "1e3", 1, 1000.0},
        {"beyond int", "9999999999", 2147483647, 9999999999.0},
        {"beyond long", "9999999999999999", 2147483647, 9999999999999999.0},
        {"beyond int, negative", "-9999999999", -2147483647 - 1, -9999999999.0},
        {"a zero byte ends it", std::string("1\0002", 3), 1, 1.0},
        {"full-width digits", "\x82\x50\x82\x51", 0, 0.0},
        {"a byte that other code pages call a blank",
         "\xA0"
         "7",
         0, 0.0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_EQ(IntegerField(Ascii(row.text)), row.integer);
        EXPECT_EQ(RealField(Ascii(row.text)), row.real);
    }
}

TEST(Replies, TiltReading)
{
    const Bytes data = Joined({{1, 0, 0x51, 0x19},
                               F64(0.01),
                               F64(-0.02),
                               F64(HUGE_VAL),
                               {0x09, 0x60, 0x00, 0x05, 0x46, 0x00}});
    auto reading = Parse(ParseTiltReading, 0xC8, data);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->state, 1);
    EXPECT_TRUE(reading->error1);
    EXPECT_FALSE(reading->error2);
    EXPECT_TRUE(reading->sensorPresent);
    EXPECT_EQ(reading->calibrationState, 1);
    EXPECT_TRUE(reading->calibrationValid);
    EXPECT_TRUE(reading->calibrated);
    EXPECT_EQ(reading->t1Rad, 0.01);
    EXPECT_EQ(reading->t2Rad, -0.02);
    EXPECT_EQ(reading->tiltRad, HUGE_VAL);
    ASSERT_TRUE(reading->time);
    EXPECT_EQ(reading->time->week, 2400);
    EXPECT_EQ(reading->time->secondsOfWeek, 345600U);
    Bytes unknown = data;
    unknown[28] = unknown[29] = 0xFF;
    EXPECT_FALSE(Parse(ParseTiltReading, 0xC8, unknown)->time);
    unknown = data;
    unknown[1] = 1; // a calibration record
    EXPECT_FALSE(Parse(ParseTiltReading, 0xC8, unknown));
}

TEST(Replies, TiltCalibration)
{
    const auto record =
        Parse(ParseTiltCalibration, 0xC8, {1, 1, 0x02, 0xD0, 0x09, 0x60, 0, 0, 0, 60, 40});
    ASSERT_TRUE(record);
    EXPECT_EQ(record->validityHours, 720);
    ASSERT_TRUE(record->calibrated);
    EXPECT_EQ(record->calibrated->secondsOfWeek, 60U);
    EXPECT_EQ(record->progressPercent, 40);
}

TEST(Identification, ReadsItsFields)
{
    struct Row
    {
        std::string_view fault;
        std::string text;
        bool accepted;
        std::uint32_t type;
        std::uint8_t port;
        std::uint8_t parity;
        std::uint8_t stopBits;
        bool flow;
    };
    const Row rows[] = {
        {"example refused", "ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43,", true, 3017, 1, 0, 0, false},
        {"even parity, two stop bits", "ID,3017;PORT,2,38400,L,8,2,E,T;VER,4.43,", true, 3017, 3, 2,
         2, true},
        {"odd parity", "ID,3017;PORT,1,38400,L,8,1,ODD,F;VER,4.43,", true, 3017, 2, 1, 0, false},
        {"empty field counted", "ID,3017;PORT,,0,38400,L,8,1,N,F;VER,4.43,", true, 3017, 1, 0, 0,
         false},
        {"leading delimiters not skipped", ",,ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43,", true, 3017,
         1, 0, 0, false},
        {"end without a comma refused", "ID,VX2;PORT,0,38400,L,8,1,N,F;VER,4.43", true, 3028, 1, 0,
         0, false},
        {"missing version taken", "ID,3017;PORT,0,38400,L,8,1,N,F;VER,", false, 0, 0, 0, 0, false},
        {"port beyond a byte taken", "ID,3017;PORT,255,38400,L,8,1,N,F;VER,4.43,", false, 0, 0, 0,
         0, false},
        {"no text", "", false, 0, 0, 0, 0, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const auto record = Parse(ParseIdentification, 0x6E, Ascii(row.text));
        ASSERT_EQ(record.has_value(), row.accepted);
        if (record) {
            EXPECT_EQ(record->typeNumber, row.type);
            EXPECT_EQ(record->port, row.port);
            EXPECT_EQ(record->baudRate, 38400U);
            EXPECT_EQ(record->byteSize, 8);
            EXPECT_EQ(record->parity, row.parity);
            EXPECT_EQ(record->stopBits, row.stopBits);
            EXPECT_EQ(record->flowControl, row.flow);
            EXPECT_EQ(record->version, 4.43);
        }
    }
}

TEST(Identification, KnowsModelTexts)
{
    struct Row
    {
        std::string model;
        std::uint32_t type;
    };
    for (const Row& row : {Row{"3017", 3017},
                           {"3028X", 3028},
                           {"301", 3010},
                           {"30 7", 3010},
                           {"VX2", 3028},
                           {"VX1", 3017},
                           {"VX1-GNSS", 3012},
                           {"VX1-", 3010},
                           {"vx1", 3010},
                           {"\x82\x52\x82\x4F\x82\x50\x82\x56", 3010}}) { // full-width digits
        const auto record = Parse(ParseIdentification, 0x6E,
                                  Ascii("ID," + row.model + ";PORT,0,38400,L,8,1,N,F;VER,4.43,"));
        EXPECT_EQ(record->typeNumber, row.type) << row.model;
    }
}

} // namespace
} // namespace fieldcore
