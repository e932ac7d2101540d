#include "simulator/Sky.h"
#include "tests/simulator/Support.h"

#include <algorithm>
#include <cmath>

namespace fieldcore::simulator::test {

namespace {

constexpr GpsTime kNow{2410, 345'600.0};

std::vector<int> GpsNumbers(const Sky& sky)
{
    std::vector<int> numbers;
    for (const Satellite& satellite : sky.satellites) {
        if (satellite.system == SatelliteSystem::Gps) {
            numbers.push_back(satellite.number);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

} // namespace

TEST(Sky, TheScenarioHasTheLastWord)
{
    const Scenario moving = Parsed("almanacs 31");
    const Sky plain = SkyAt(moving, kNow);
    ASSERT_GE(plain.satellites.size(), 6U);
    ASSERT_LT(plain.dop.pdop, 10.0);

    const Sky stated = SkyAt(Parsed("almanacs 31\npdop 2.5 1.5 2.0"), kNow);
    EXPECT_EQ(GpsNumbers(stated), GpsNumbers(plain));
    EXPECT_EQ(stated.dop.pdop, 2.5);
    EXPECT_EQ(stated.dop.vdop, 2.0);

    const Sky placed = SkyAt(Parsed("almanacs 31\nsatellite G9 10 20 40"), kNow);
    EXPECT_EQ(GpsNumbers(placed), std::vector<int>{9}) << "none moves where one is placed";
    EXPECT_EQ(placed.dop.pdop, 1.8);

    const Sky mixed = SkyAt(Parsed("almanacs 31\nsatellite R3 28 44 46"), kNow);
    EXPECT_EQ(GpsNumbers(mixed), GpsNumbers(plain));
    EXPECT_EQ(mixed.satellites.size(), plain.satellites.size() + 1);
    EXPECT_LT(mixed.dop.pdop, plain.dop.pdop) << "one more satellite helps";

    const Sky few = SkyAt(Parsed("almanacs 4"), kNow);
    EXPECT_EQ(GpsNumbers(few), GpsNumbers(plain)) << "they shine whether it has their almanac";

    const Sky blind = SkyAt(Parsed("almanacs 31\nmask 90"), kNow);
    EXPECT_TRUE(Listed(blind, false).empty());
    EXPECT_EQ(blind.dop.pdop, 99.9);
    EXPECT_EQ(blind.dop.hdop, 99.9);
}

TEST(Sky, TakesTheAlmanacsThatTheScenarioGives)
{
    // The node's longitude is 151.2 degrees at toa, and so is the satellite's: over the equator.
    constexpr std::string_view kOverhead =
        " 344064 5153.62 0 0.3 0 8.826249595 0 0 "; // 0.84 + 7.2921151467e-5 * 344064 / pi
    const auto skyWith = [&](std::string_view week, std::string_view health) {
        return SkyAt(Parsed("position 0 151.2 0\nalmanac 7 0 " + std::string(week) +
                            std::string(kOverhead) + std::string(health)),
                     {2410, 344'064.0});
    };
    for (const std::string_view week : {"2410", "362"}) {
        const Sky sky = skyWith(week, "0");
        ASSERT_EQ(GpsNumbers(sky), std::vector<int>{7}) << "week " << week;
        EXPECT_EQ(sky.satellites[0].elevationDeg, 90) << "week " << week;
    }
    EXPECT_TRUE(skyWith("2410", "63").satellites.empty()) << "an unhealthy satellite";

    const auto held = AlmanacsAt(
        Parsed("almanacs 4\nalmanac 2 5 2400 0 5153 0 0.3 0 0 0 0 0\nalmanac 9 5 2400 0 5153 "
               "0 0.3 0 0 0 0 0"),
        {2410, 604'799.5});
    ASSERT_EQ(held.size(), 5U) << "PRN 1 to 4 and 9, each once";
    for (const Almanac& almanac : held) {
        const bool given = almanac.prn == 2 || almanac.prn == 9;
        EXPECT_EQ(almanac.week, given ? 2400 : 2410);
        EXPECT_EQ(almanac.toaS, given ? 0U : 602'112U) << "the last multiple of 4096 s";
    }
}

TEST(Sky, ObstructionsHideWhatMoves)
{
    const Scenario street = Parsed("almanacs 31\nmask 0\nsatellite R3 90 5 46\n"
                                   "obstruction 60 120 30\nobstruction 350 10 0 40\n");
    constexpr std::pair<double, double> kEdges[] = {
        {59.9, 0.0},   {60.0, 30.0}, {120.0, 30.0}, {120.1, 0.0}, {349.9, 0.0},
        {355.0, 10.0}, {0.0, 20.0},  {360.0, 20.0}, {5.0, 30.0},  {10.1, 0.0},
    };
    for (const auto& [azimuthDeg, elevationDeg] : kEdges) {
        EXPECT_NEAR(ObstructionDeg(street, azimuthDeg), elevationDeg, 1e-9) << azimuthDeg;
    }
    EXPECT_EQ(ObstructionDeg(Parsed("obstruction 0 360 15"), 200.0), 15.0) << "all around";
    int hidden = 0;
    for (int hour = 0; hour < 24; ++hour) {
        for (const Satellite& satellite : SkyAt(street, {2410, hour * 3600.0}).satellites) {
            // Well away from the edge: the list has whole degrees.
            const double above =
                satellite.elevationDeg - ObstructionDeg(street, satellite.azimuthDeg);
            if (satellite.system != SatelliteSystem::Gps) {
                EXPECT_TRUE(IsTracked(satellite)) << "what is placed stays as it is placed";
            } else if (above < -2.0) {
                EXPECT_FALSE(IsTracked(satellite));
                ++hidden;
            } else if (above > 2.0 && std::abs(satellite.azimuthDeg - 90) < 28) {
                EXPECT_TRUE(IsTracked(satellite));
            }
        }
    }
    EXPECT_GT(hidden, 10);
}

TEST(Sky, AnAntennaFailsInItsTime)
{
    const Scenario scenario = Parsed("almanacs 31\nantenna good 100 weak 200 dead 300 good");
    const auto tracked = [&](double elapsedS) {
        return Listed(SkyAt(scenario, kNow, elapsedS), false);
    };
    const std::vector<Satellite> well = tracked(99.9);
    ASSERT_GE(well.size(), 4U);
    const std::vector<Satellite> weak = tracked(100.0);
    EXPECT_LT(weak.size(), well.size());
    for (const Satellite& satellite : weak) {
        EXPECT_GE(*satellite.signals[0], 25.0);
        EXPECT_LE(*satellite.signals[0], 30.0) << "50 dB-Hz in the zenith, less 20";
    }
    EXPECT_TRUE(tracked(200.0).empty());
    EXPECT_EQ(SkyAt(scenario, kNow, 200.0).dop.pdop, 99.9);
    EXPECT_EQ(tracked(300.0).size(), well.size());
}

} // namespace fieldcore::simulator::test
