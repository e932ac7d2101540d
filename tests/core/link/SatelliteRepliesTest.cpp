#include "core/link/SatelliteReplies.h"

#include "tests/core/link/FarEnd.h"

#include <array>
#include <numeric>
#include <string_view>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace testing;

constexpr double kNone = kNoSignal;

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
    ListedSatellite gps{ListedSatellite::Gps, 5, 5, 0, 120, 45, {41.2, 43.21, kNone, kNone}};
    ListedSatellite sbas{ListedSatellite::Sbas, 127, 40, 0, 90, 15, {35.0, -12.34, kNone, kNone}};
    EXPECT_EQ(List(Ascii("0220512045412043214009015350-1234")), (SatelliteList{{gps, sbas}, 1}));
    // One with a single signal; 33 is the first that is not GPS.
    gps.signals[1] = sbas.signals[1] = kNone;
    sbas.rawNumber = 33;
    sbas.number = 120;
    EXPECT_EQ(List(Ascii("0113309015350")), (SatelliteList{{sbas}, 0}));
    gps.rawNumber = gps.number = 32;
    EXPECT_EQ(List(Ascii("0133212045412")), (SatelliteList{{gps}, 1})) << "any other digit, too";
}

TEST(SatelliteList, BinaryRecordsBySystem)
{
    // On the wire, the system, and the number there.
    constexpr std::tuple<std::uint8_t, std::uint8_t, int> kRows[] = {
        {1, 0, 1},  {32, 0, 32},  {33, 1, 120}, {51, 1, 138},    {52, 2, 1},      {75, 2, 24},
        {76, 6, 0}, {109, 6, 33}, {0, 255, 0},  {110, 255, 110}, {255, 255, 255},
    };
    for (const auto& [raw, system, number] : kRows) {
        SCOPED_TRACE(int{raw});
        const bool isGlonass = system == ListedSatellite::Glonass;
        Bytes data{'0', '1', 0x01, raw};
        data.resize(isGlonass ? 5 : 4, 0xFE);          // with the channel
        data = Joined({data, {0x68, 0x80 | 45, 200}}); // azimuth 0x168 = 360
        const int channel = isGlonass ? -2 : 0;
        const ListedSatellite expected{
            system, number, raw, channel, 360, 45, {50.0, kNone, kNone, kNone}};
        EXPECT_EQ(List(data), (SatelliteList{{expected}, system == 0 ? 1 : 0, isGlonass ? 1 : 0}));
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
    EXPECT_EQ(third->satellites[0].signals, (std::array{kNone, kNone, 2.5, kNone}));
}

TEST(SatelliteList, RefusesWhatDoesNotFit)
{
    EXPECT_FALSE(List(Ascii("01"))) << "no format byte";
    EXPECT_FALSE(List({'0', '2', 0x00, 7, 90, 45})) << "fewer records than announced";
    EXPECT_FALSE(List(Ascii("011051204541"))) << "text record cut off";
    EXPECT_FALSE(List(Ascii("01205120454120432"))) << "second signal cut off";
    EXPECT_EQ(List({'0', '0', 0x03}), SatelliteList()) << "no satellites are no failure";
}

TEST(SatelliteList, DropsWhatIsNoDirectionAndKeepsTheRest)
{
    // The second of three satellites.
    const std::pair<std::string_view, Bytes> rows[] = {
        {"azimuth beyond the circle", {'0', '3', 0x00, 7, 90, 45, 8, 0x69, 0x80 | 45, 9, 90, 45}},
        {"elevation beyond the zenith", {'0', '3', 0x00, 7, 90, 45, 8, 90, 91, 9, 90, 45}},
        {"azimuth in text beyond the circle", Ascii("031070904541208361454120909045412")},
    };
    for (const auto& [fault, data] : rows) {
        SCOPED_TRACE(fault);
        const auto list = List(data);
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
    for (int i = 1; i <= 7; ++i) { // 0x40n0... is 2^(n + 1)
        data = Joined({data, {0x40, static_cast<std::uint8_t>(i << 4), 0, 0, 0, 0, 0, 0}});
    }
    data.push_back(9);
    const auto parse = [](const Bytes& sent) {
        return ParseAlmanac(Loaded(0x55, sent).Reader(), 17);
    };
    const auto almanac = parse(data);
    ASSERT_TRUE(almanac);
    EXPECT_EQ(
        std::tie(almanac->prn, almanac->timeStamp, almanac->week, almanac->toaS, almanac->health),
        std::tuple(17, 0x00010203U, 2400, 504000U, 9));
    EXPECT_EQ((std::array{almanac->sqrtA, almanac->eccentricity, almanac->inclination,
                          almanac->omegaDot, almanac->omega0, almanac->omega, almanac->m0}),
              (std::array{4.0, 8.0, 16.0, 32.0, 64.0, 128.0, 256.0}));
    Bytes other = data;
    other[1] = 18;
    EXPECT_FALSE(parse(other)) << "another satellite's almanac";
    other = data;
    other[0] = 0;
    EXPECT_FALSE(parse(other)) << "another sub-type";
    data.pop_back();
    EXPECT_FALSE(parse(data)) << "cut off";
}

TEST(SatelliteData, GeneralWords)
{
    Bytes data(71, 0);
    std::iota(data.begin() + 2, data.end(), std::uint8_t{2});
    const auto parse = [&data](bool withTriples) {
        return ParseSatelliteData(Loaded(0x55, data).Reader(), withTriples);
    };
    const auto reply = parse(true);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->words[0], 0x02030405U);
    EXPECT_EQ(reply->words[7], 0x1E1F2021U);
    EXPECT_EQ(reply->shortWords, (std::array<std::uint16_t, 2>{0x2627, 0x2829}))
        << "four bytes are to be skipped before it";
    EXPECT_EQ(reply->moreWords[1], 0x2E2F3031U);
    EXPECT_EQ(reply->triples[0], 0x323334U);
    EXPECT_EQ(reply->triples[6], 0x444546U);
    data.resize(50);
    EXPECT_TRUE(parse(false));
    EXPECT_FALSE(parse(true)) << "the longer form was asked for";
}

TEST(SatelliteData, ExtraWords)
{
    const auto parse = [](const Bytes& form, const Bytes& words) {
        return ParseSatelliteDataExtra(Loaded(0x55, Joined({form, words})).Reader());
    };
    const Bytes words{0, 1, 0, 2, 0, 3, 0, 4, 0xFF, 0xFF};
    EXPECT_EQ(parse({0x14, 0xC1, 4, 0, 2}, words), (SatelliteDataExtra{1, 2, 3, 4, 0xFFFF}));
    for (const Bytes& other :
         {Bytes{0x14, 0xC1, 5, 0, 2}, {0x14, 0xC1, 4, 1, 2}, {0x14, 0xC1, 4, 0, 3}}) {
        EXPECT_EQ(parse(other, words), SatelliteDataExtra{});
    }
    EXPECT_FALSE(parse({0x14, 0xC1, 4, 0, 2}, {0, 1})) << "words cut off";
    EXPECT_FALSE(parse({0x00, 0xC1, 4, 0, 2}, words)) << "another sub-type";
}

} // namespace
} // namespace fieldcore
