#include "core/link/SatelliteReplies.h"

#include "tests/core/link/FarEnd.h"

#include <bit>
#include <string_view>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Ascii;
using testing::Bytes;
using testing::Frame;
using testing::Joined;

FrameBuffer Loaded(std::uint8_t type, const Bytes& data)
{
    return testing::Loaded(Frame(type, data));
}

std::optional<SatelliteList> List(const Bytes& data)
{
    FrameBuffer buffer = Loaded(0x17, data);
    return ParseSatelliteList(buffer.Reader());
}

TEST(SatelliteList, TextRecords)
{
    // Two satellites with two signals; 040 is SBAS 127.
    const auto list = List(Ascii("022"
                                 "051204541204321"
                                 "4009015350-1234"));
    ASSERT_TRUE(list);
    ASSERT_EQ(list->satellites.size(), 2U);
    const ListedSatellite& gps = list->satellites[0];
    EXPECT_EQ(gps.system, ListedSatellite::Gps);
    EXPECT_EQ(gps.number, 5);
    EXPECT_EQ(gps.azimuthDeg, 120);
    EXPECT_EQ(gps.elevationDeg, 45);
    EXPECT_EQ(gps.signals[0], 41.2);
    EXPECT_EQ(gps.signals[1], 43.21);
    EXPECT_EQ(gps.signals[2], kNoSignal);
    const ListedSatellite& sbas = list->satellites[1];
    EXPECT_EQ(sbas.system, ListedSatellite::Sbas);
    EXPECT_EQ(sbas.rawNumber, 40);
    EXPECT_EQ(sbas.number, 127);
    EXPECT_EQ(sbas.azimuthDeg, 90);
    EXPECT_EQ(sbas.elevationDeg, 15);
    EXPECT_EQ(sbas.signals[1], -12.34);
    EXPECT_EQ(list->gpsCount, 1);

    const auto single = List(Ascii("011"
                                   "3300090350"));
    ASSERT_TRUE(single);
    EXPECT_EQ(single->satellites[0].number, 120) << "33 is the first that is not GPS";
    EXPECT_EQ(single->satellites[0].signals[1], kNoSignal) << "format 1 has one signal value";
    const auto other = List(Ascii("013"
                                  "3200090350"));
    ASSERT_TRUE(other) << "any other digit is a list with one signal value";
    EXPECT_EQ(other->satellites[0].number, 32);
}

TEST(SatelliteList, BinaryRecordsBySystem)
{
    struct Row
    {
        std::uint8_t raw;
        std::uint8_t system;
        int number;
        bool extraByte;
    };
    constexpr Row kRows[] = {
        {1, 0, 1, false},   {32, 0, 32, false},     {33, 1, 120, false},    {51, 1, 138, false},
        {52, 2, 1, true},   {75, 2, 24, true},      {76, 6, 0, false},      {109, 6, 33, false},
        {0, 255, 0, false}, {110, 255, 110, false}, {255, 255, 255, false},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(int{row.raw});
        Bytes data{'0', '1', 0x01, row.raw};
        if (row.extraByte) {
            data.push_back(0xEE);
        }
        data = Joined({data, {0x68, 0x80 | 45, 200}}); // azimuth 0x168 = 360
        const auto list = List(data);
        ASSERT_TRUE(list);
        const ListedSatellite& satellite = list->satellites.at(0);
        EXPECT_EQ(satellite.system, row.system);
        EXPECT_EQ(satellite.number, row.number);
        EXPECT_EQ(satellite.rawNumber, row.raw);
        EXPECT_EQ(satellite.azimuthDeg, 360);
        EXPECT_EQ(satellite.elevationDeg, 45);
        EXPECT_EQ(satellite.signals[0], 50.0);
        EXPECT_EQ(list->gpsCount, row.system == 0 ? 1 : 0);
        EXPECT_EQ(list->glonassCount, row.system == 2 ? 1 : 0);
        data.pop_back();
        EXPECT_FALSE(List(data)) << "a record that is cut off";
    }
}

TEST(SatelliteList, SignalsStandInTheirOrder)
{
    // On the wire the fourth value comes before the third.
    const auto all = List({'0', '1', 0x0F, 7, 90, 45, 4, 8, 12, 16});
    ASSERT_TRUE(all);
    EXPECT_EQ(all->satellites[0].signals, (std::array{1.0, 2.0, 4.0, 3.0}));
    const auto third = List({'0', '1', 0x08, 7, 90, 45, 10});
    ASSERT_TRUE(third);
    EXPECT_EQ(third->satellites[0].signals, (std::array{kNoSignal, kNoSignal, 2.5, kNoSignal}));
}

TEST(SatelliteList, RefusesWhatDoesNotFit)
{
    struct Row
    {
        std::string_view fault;
        Bytes data;
    };
    const Row rows[] = {
        {"no format byte", Ascii("01")},
        {"fewer records than announced", {'0', '2', 0x00, 7, 90, 45}},
        {"text record cut off", Ascii("011"
                                      "051204541")},
        {"second signal cut off", Ascii("012"
                                        "05120454120432")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        EXPECT_FALSE(List(row.data));
    }
    const auto none = List({'0', '0', 0x03});
    ASSERT_TRUE(none) << "no satellites are no failure";
    EXPECT_TRUE(none->satellites.empty());
}

TEST(SatelliteList, DropsWhatIsNoDirectionAndKeepsTheRest)
{
    struct Row
    {
        std::string_view fault;
        Bytes data; ///< the second of three satellites
    };
    const Row rows[] = {
        {"azimuth beyond the circle", {'0', '3', 0x00, 7, 90, 45, 8, 0x69, 0x80 | 45, 9, 90, 45}},
        {"elevation beyond the zenith", {'0', '3', 0x00, 7, 90, 45, 8, 90, 91, 9, 90, 45}},
        {"azimuth in text beyond the circle", Ascii("031"
                                                    "0709045412"
                                                    "0836145412"
                                                    "0909045412")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const auto list = List(row.data);
        ASSERT_TRUE(list);
        ASSERT_EQ(list->satellites.size(), 2U);
        EXPECT_EQ(list->satellites[1].number, 9);
        EXPECT_EQ(list->gpsCount, 2);
        EXPECT_EQ(list->dropped, 1);
    }
    SatelliteList list;
    FrameBuffer buffer = Loaded(0x17, {2, 0, 0, 0x00, 2, 7, 90, 91, 8, 90, 45});
    EXPECT_EQ(ParseSatelliteListFrame(buffer.Reader(), SatelliteListForm::InView, 0, list), false);
    buffer = Loaded(0x17, {2, 1, 1, 0x00, 1, 9, 90, 91});
    EXPECT_EQ(ParseSatelliteListFrame(buffer.Reader(), SatelliteListForm::InView, 1, list), true);
    EXPECT_EQ(list.satellites.size(), 1U);
    EXPECT_EQ(list.dropped, 2) << "in all frames together";
}

TEST(SatelliteData, Almanac)
{
    Bytes data{2, 17, 0, 1, 2, 3, 0x09, 0x60, 0x00, 0x07, 0xB0, 0xC0};
    for (int i = 1; i <= 7; ++i) {
        data = Joined({data, {0x40, static_cast<std::uint8_t>(i << 4), 0, 0, 0, 0, 0, 0}});
    }
    data.push_back(9);
    FrameBuffer buffer = Loaded(0x55, data);
    const auto almanac = ParseAlmanac(buffer.Reader(), 17);
    ASSERT_TRUE(almanac);
    EXPECT_EQ(almanac->prn, 17);
    EXPECT_EQ(almanac->timeStamp, 0x00010203U);
    EXPECT_EQ(almanac->week, 2400);
    EXPECT_EQ(almanac->toaS, 504000U);
    // 0x40n0... is 2^(n + 1): the seven reals in their order
    EXPECT_EQ(almanac->sqrtA, 4.0);
    EXPECT_EQ(almanac->eccentricity, 8.0);
    EXPECT_EQ(almanac->inclination, 16.0);
    EXPECT_EQ(almanac->omegaDot, 32.0);
    EXPECT_EQ(almanac->omega0, 64.0);
    EXPECT_EQ(almanac->omega, 128.0);
    EXPECT_EQ(almanac->m0, 256.0);
    EXPECT_EQ(almanac->health, 9);
    EXPECT_FALSE(ParseAlmanac(buffer.Reader(), 18)) << "another satellite's almanac";
    data[0] = 0;
    buffer = Loaded(0x55, data);
    EXPECT_FALSE(ParseAlmanac(buffer.Reader(), 17)) << "another sub-type";
    data[0] = 2;
    data.pop_back();
    buffer = Loaded(0x55, data);
    EXPECT_FALSE(ParseAlmanac(buffer.Reader(), 17)) << "cut off";
}

TEST(SatelliteData, GeneralWords)
{
    Bytes data{0, 0};
    for (std::uint8_t i = 2; i < 71; ++i) {
        data.push_back(i);
    }
    FrameBuffer buffer = Loaded(0x55, data);
    const auto reply = ParseSatelliteData(buffer.Reader(), true);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->words[0], 0x02030405U);
    EXPECT_EQ(reply->words[7], 0x1E1F2021U);
    EXPECT_EQ(reply->shortWords[0], 0x2627) << "four bytes are to be skipped before it";
    EXPECT_EQ(reply->shortWords[1], 0x2829);
    EXPECT_EQ(reply->moreWords[1], 0x2E2F3031U);
    EXPECT_EQ(reply->triples[0], 0x323334U);
    EXPECT_EQ(reply->triples[6], 0x444546U);
    data.resize(50);
    buffer = Loaded(0x55, data);
    EXPECT_TRUE(ParseSatelliteData(buffer.Reader(), false));
    EXPECT_FALSE(ParseSatelliteData(buffer.Reader(), true)) << "the longer form was asked for";
}

TEST(SatelliteData, ExtraWords)
{
    const Bytes words{0, 1, 0, 2, 0, 3, 0, 4, 0xFF, 0xFF};
    FrameBuffer buffer = Loaded(0x55, Joined({{0x14, 0xC1, 4, 0, 2}, words}));
    EXPECT_EQ(ParseSatelliteDataExtra(buffer.Reader()), (SatelliteDataExtra{1, 2, 3, 4, 0xFFFF}));
    for (const Bytes& other :
         {Bytes{0x14, 0xC1, 5, 0, 2}, {0x14, 0xC1, 4, 1, 2}, {0x14, 0xC1, 4, 0, 3}}) {
        buffer = Loaded(0x55, Joined({other, words}));
        EXPECT_EQ(ParseSatelliteDataExtra(buffer.Reader()), SatelliteDataExtra{});
    }
    buffer = Loaded(0x55, {0x14, 0xC1, 4, 0, 2, 0, 1});
    EXPECT_FALSE(ParseSatelliteDataExtra(buffer.Reader())) << "words cut off";
    buffer = Loaded(0x55, Joined({{0x00, 0xC1, 4, 0, 2}, words}));
    EXPECT_FALSE(ParseSatelliteDataExtra(buffer.Reader())) << "another sub-type";
}

} // namespace
} // namespace fieldcore
