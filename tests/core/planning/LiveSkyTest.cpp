#include "core/planning/LiveSky.h"

#include "core/planning/Degrees.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

ListedSatellite Listed(std::uint8_t system, int number, int azimuthDeg, int elevationDeg,
                       double first, double second = kNoSignal)
{
    ListedSatellite satellite;
    satellite.system = system;
    satellite.number = number;
    satellite.azimuthDeg = azimuthDeg;
    satellite.elevationDeg = elevationDeg;
    satellite.signals[0] = first;
    satellite.signals[1] = second;
    return satellite;
}

/// Two GPS, two GLONASS, one of each other kind; G31 and R19 are in view only.
LiveSky::Reading Mixed()
{
    LiveSky::Reading reading;
    reading.tracked.satellites = {
        Listed(ListedSatellite::Glonass, 3, 28, 44, 46.0, 41.25),
        Listed(ListedSatellite::Gps, 12, 203, 71, 49.5, 0.0),
        Listed(ListedSatellite::Sbas, 129, 181, 48, 39.25),
        Listed(ListedSatellite::System6, 1, 190, 80, 50.0),
        Listed(77, 200, 10, 20, 30.0), // a code that nobody knows
    };
    reading.inView = reading.tracked;
    reading.inView.satellites.push_back(Listed(ListedSatellite::Gps, 31, 352, 4, 0.0));
    reading.inView.satellites.push_back(Listed(ListedSatellite::Glonass, 19, 199, 3, 0.0));
    reading.usedGps = 1U << 11;
    reading.usedGlonass = 0U;
    reading.predicted = {{12, {RadiansOf(203.0), RadiansOf(71.0)}}};
    return reading;
}

TEST(LiveSky, SortsSatellitesByConstellation)
{
    LiveSky sky;
    sky.Take(Mixed(), 5s);
    struct Row
    {
        const char* what;
        std::optional<Constellation> filter;
        std::vector<int> numbers;
        int tracked;
        int solid;
        std::size_t predicted;
    };
    const Row rows[] = {
        {"all", std::nullopt, {12, 31, 3, 19, 129, 1, 200}, 5, 4, 1},
        {"GPS", Constellation::Gps, {12, 31}, 1, 1, 1},
        {"GLONASS is tracked but not used", Constellation::Glonass, {3, 19}, 1, 0, 0},
        {"SBAS: use is not told", Constellation::Sbas, {129}, 1, 1, 0},
        {"others", Constellation::Other, {1}, 1, 1, 0},
        {"an unknown system as such", Constellation::Unknown, {200}, 1, 1, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        std::vector<int> numbers;
        for (const LiveSatellite& satellite : sky.Satellites(row.filter)) {
            numbers.push_back(satellite.number);
        }
        EXPECT_EQ(numbers, row.numbers);
        const LiveSky::Counts counts = sky.Count(row.filter);
        EXPECT_EQ(counts.inView, static_cast<int>(row.numbers.size()));
        EXPECT_EQ(counts.tracked, row.tracked);
        EXPECT_EQ(counts.solid, row.solid);
        EXPECT_EQ(sky.Predicted(row.filter).size(), row.predicted);
    }
}

TEST(LiveSky, KeepsDirectionsSignalsAndUse)
{
    LiveSky sky;
    LiveSky::Reading reading = Mixed();
    reading.tracked.satellites.push_back(reading.tracked.satellites[1]); // twice
    sky.Take(reading, 0s);
    const std::vector<LiveSatellite> gps = sky.Satellites(Constellation::Gps);
    ASSERT_EQ(gps.size(), 2U) << "one that is listed twice counts once";
    EXPECT_DOUBLE_EQ(DegreesOf(gps[0].direction.azimuthRad), 203.0);
    EXPECT_DOUBLE_EQ(DegreesOf(gps[0].direction.elevationRad), 71.0);
    EXPECT_EQ(gps[0].signals[0], 49.5);
    EXPECT_FALSE(gps[0].signals[1]) << "0 is no signal";
    EXPECT_FALSE(gps[0].signals[2]) << "not sent";
    EXPECT_EQ(gps[0].isUsed, true);
    EXPECT_FALSE(gps[1].isTracked);
    EXPECT_FALSE(gps[1].IsSolid());
    EXPECT_EQ(sky.Satellites(Constellation::Glonass)[0].isUsed, false);
    EXPECT_FALSE(sky.Satellites(Constellation::Sbas)[0].isUsed) << "nobody told";
}

TEST(LiveSky, GrowsOldAndStale)
{
    LiveSky sky;
    EXPECT_FALSE(sky.Age(1000s));
    EXPECT_FALSE(sky.IsStale(1000s)) << "what is not there is not old";
    sky.Take(Mixed(), 100s);
    EXPECT_EQ(sky.Age(102900ms), 2s) << "whole seconds that have passed";
    EXPECT_FALSE(sky.IsStale(109999ms));
    EXPECT_TRUE(sky.IsStale(110s));
    sky.Take(LiveSky::Reading{}, 120s);
    EXPECT_FALSE(sky.IsStale(121s)) << "an empty list is news, too";
    EXPECT_EQ(sky.Count(std::nullopt).inView, 0);
    sky.Clear();
    EXPECT_FALSE(sky.HasReading());
}

} // namespace
} // namespace fieldcore
