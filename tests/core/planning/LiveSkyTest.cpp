// The sky as the receiver tells it, and rounds of questions to the simulator. Where the satellites
// must be comes from the library's orbits over an almanac that is made here, not from what the
// receiver tells of itself.

#include "core/planning/LiveSky.h"

#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/LiveSkyPoll.h"
#include "core/platform/Degrees.h"
#include "core/resources/StringTable.h"
#include "simulator/Frame.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

ListedSatellite Listed(std::uint8_t system, int number, int azimuthDeg, int elevationDeg,
                       double first, double second = kNoSignal)
{
    return {system, number, 0, 0, azimuthDeg, elevationDeg, {first, second, kNoSignal, kNoSignal}};
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
    using Row = std::tuple<const char*, std::optional<Constellation>, std::vector<int>, int, int,
                           std::size_t>;
    const Row rows[] = {
        {"all", std::nullopt, {12, 31, 3, 19, 129, 1, 200}, 5, 4, 1},
        {"GPS", Constellation::Gps, {12, 31}, 1, 1, 1},
        {"GLONASS is tracked but not used", Constellation::Glonass, {3, 19}, 1, 0, 0},
        {"SBAS: use is not told", Constellation::Sbas, {129}, 1, 1, 0},
        {"others", Constellation::Other, {1}, 1, 1, 0},
        {"an unknown system as such", Constellation::Unknown, {200}, 1, 1, 0},
    };
    for (const auto& [what, filter, expected, tracked, solid, predicted] : rows) {
        SCOPED_TRACE(what);
        std::vector<int> numbers;
        for (const LiveSatellite& satellite : sky.Satellites(filter)) {
            numbers.push_back(satellite.number);
        }
        EXPECT_EQ(numbers, expected);
        const LiveSky::Counts counts = sky.Count(filter);
        EXPECT_EQ(counts.inView, static_cast<int>(expected.size()));
        EXPECT_EQ(std::tie(counts.tracked, counts.solid), std::tie(tracked, solid));
        EXPECT_EQ(sky.Predicted(filter).size(), predicted);
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

class LiveSkyPollTest : public ::testing::Test
{
protected:
    void Start(std::string_view scenario)
    {
        far.emplace(scenario).Open();
        poll.emplace(far->clock, folder.Path());
    }
    [[nodiscard]] long Asked(std::uint8_t type) const
    {
        const auto requests = far->simulator.Requests();
        return std::count_if(requests.begin(), requests.end(), [type](const auto& request) {
            return request.size() > 2 && request[2] == type;
        });
    }
    /// Time passes, and it asks.
    bool PollAfter(Clock::Duration pause)
    {
        far->clock.Sleep(pause);
        return poll->Poll(far->command);
    }

    TemporaryFolder folder;
    std::optional<testing::VirtualReceiver> far;
    std::optional<LiveSkyPoll> poll; // of a clock that is the receiver's, too
};

constexpr const char* kMovingSky = "start 2026-03-18 23:59:42\nposition -33.9 151.2 40\nmask 15\n"
                                   "options l2\nalmanacs 31\n";

TEST_F(LiveSkyPollTest, ShowsSatellitesWhereTheirOrbitsHaveThem)
{
    Start(kMovingSky);
    ASSERT_EQ(AlmanacStore(folder.Path()).Update(far->command), AlmanacResult::Done);
    poll->LoadAlmanac();
    CSurveyPlanCalc calc;
    ASSERT_TRUE(calc.LoadAlmanac(AlmanacPath(folder.Path())));
    calc.SetObserver({RadiansOf(-33.9), RadiansOf(151.2), 40.0});
    for (const int hour : {0, 5}) {
        SCOPED_TRACE(hour);
        ASSERT_TRUE(PollAfter(std::chrono::hours(hour)));
        ASSERT_EQ(poll->GetNow().state, LiveSkyPoll::State::Good);
        calc.SetElMask(0.0);
        calc.SetTime(2410, 345600.0 + hour * 3600.0); // 2026-03-19 00:00:00 GPS time
        const int above = calc.CountVisible();
        const std::vector<LiveSatellite> gps = poll->GetNow().sky.Satellites(Constellation::Gps);
        ASSERT_EQ(static_cast<int>(gps.size()), above);
        const std::vector<PredictedSatellite> predicted =
            poll->GetNow().sky.Predicted(std::nullopt);
        ASSERT_EQ(predicted.size(), gps.size());
        for (std::size_t i = 0; i < gps.size(); ++i) {
            SCOPED_TRACE(gps[i].number);
            const CAlmanacSatellite& orbit = calc.GetSatellite(gps[i].number - 1);
            EXPECT_NEAR(DegreesOf(gps[i].direction.elevationRad), DegreesOf(orbit.GetElevation()),
                        0.5001)
                << "the wire has whole degrees";
            const double turn =
                DegreesOf(gps[i].direction.azimuthRad) - DegreesOf(orbit.GetAzimuth());
            EXPECT_NEAR(std::remainder(turn, 360.0), 0.0, 0.5001);
            EXPECT_EQ(gps[i].IsSolid(), DegreesOf(orbit.GetElevation()) >= 15.0);
            EXPECT_EQ(predicted[i].prn, gps[i].number);
            EXPECT_NEAR(predicted[i].direction.elevationRad, orbit.GetElevation(), 1e-6) << "rad";
        }
        PositionStatusReply fix;
        ASSERT_EQ(far->command.RequestPositionStatus(fix), 1);
        calc.SetElMask(RadiansOf(15.0));
        EXPECT_EQ(fix.satellitesUsed, calc.CountVisible());
        EXPECT_NEAR(fix.pdop, calc.ComputeDop().pdop, 1e-6 * fix.pdop) << "single precision";
        EXPECT_NEAR(std::hypot(fix.hdop, fix.vdop), fix.pdop, 1e-6 * fix.pdop);
    }
    EXPECT_EQ(Asked(0x30), 2) << "the site is asked for again after half a minute";
    EXPECT_TRUE(PollAfter(29s));
    EXPECT_EQ(Asked(0x30), 2);
    EXPECT_TRUE(PollAfter(2s));
    EXPECT_EQ(Asked(0x30), 3);
}

TEST_F(LiveSkyPollTest, WorksWithoutAnAlmanac)
{
    Start(kMovingSky);
    EXPECT_FALSE(poll->GetNow().hasAlmanac);
    EXPECT_TRUE(poll->Poll(far->command));
    EXPECT_GT(poll->GetNow().sky.Count(Constellation::Gps).inView, 4);
    EXPECT_TRUE(poll->GetNow().sky.Predicted(std::nullopt).empty());
    EXPECT_EQ(Asked(0x14) + Asked(0x30), 0) << "nothing to predict from";
}

TEST_F(LiveSkyPollTest, TakesTheListOfAnOlderReceiver)
{
    Start("satellite G5 118 37 45.3\nsatellite S129 181 48 39.2\nlist-form text1\n");
    far->AddFault("nak on 54");
    // The receiver of one frame: a request with a data byte is unknown to it.
    far->AddFault("nak on 16 count 1");
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(poll->Poll(far->command));
        ASSERT_EQ(poll->GetNow().state, LiveSkyPoll::State::Good);
        const std::vector<LiveSatellite> all = poll->GetNow().sky.Satellites(std::nullopt);
        ASSERT_EQ(all.size(), 2U);
        EXPECT_EQ(all[0].signals[0], 45.3);
        EXPECT_FALSE(all[0].isUsed) << "it was not told";
        EXPECT_TRUE(all[0].IsSolid());
    }
    EXPECT_EQ(Asked(0x16), 4) << "what was refused is not asked for again";
    EXPECT_EQ(Asked(0x54), 2) << "with GLONASS, without, then no more";
    EXPECT_TRUE(PollAfter(30s));
    EXPECT_EQ(Asked(0x54), 3) << "but half a minute later";
}

TEST_F(LiveSkyPollTest, TellsUsedSatellitesFromTrackedOnes)
{
    Start("model 3017\n");
    far->simulator.SetScripted([](std::span<const std::uint8_t> request) {
        if (request[2] == 0x54) {
            std::vector<std::uint8_t> masks(71, 0);
            masks[18 + 3] = 0x30; // tracked: G5 and G6
            masks[26 + 3] = 0x10; // used: G5
            masks[62 + 2] = 0x0C; // tracked: R3 and R4
            masks[68 + 2] = 0x08; // used: R4
            return simulator::MakeFrame(0x55, masks);
        }
        if (request[2] != 0x16 || request[3] != 0) {
            return std::vector<std::uint8_t>{0x15};
        }
        const std::vector<std::uint8_t> list{'0', '4', 1,                         // four
                                             5,   10,  20, 160, 6,   10, 20, 160, // GPS
                                             54,  0,   10, 20,  160, 55, 0,  10,
                                             20,  160}; // GLONASS
        return simulator::MakeFrame(0x17, list);
    });
    ASSERT_TRUE(poll->Poll(far->command));
    const std::vector<LiveSatellite> all = poll->GetNow().sky.Satellites(std::nullopt);
    ASSERT_EQ(all.size(), 4U);
    const bool used[] = {true, false, false, true}; // G5, G6, R3, R4
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i].isUsed, used[i]) << i;
    }
}

TEST_F(LiveSkyPollTest, KeepsTheLastSkyWhenTheReceiverFails)
{
    using State = LiveSkyPoll::State;
    const std::tuple<const char*, State, int> rows[] = {
        {"drop on 16", State::Silent, text::kSkySilent},
        {"corrupt on 16", State::Damaged, text::kSkyDamaged},
        {"wrong-type on 16", State::Damaged, text::kSkyDamaged},
        {"zero-length on 16", State::Damaged, text::kSkyDamaged},
        {"nak on 16", State::Refused, text::kSkyRefused},
        {"hang-up on 16", State::LinkLost, text::kSkyLinkLost},
    };
    for (const auto& [fault, state, words] : rows) {
        SCOPED_TRACE(fault);
        Start("satellite G5 118 37 45.3\nsatellite R4 334 62 47.25\n"); // one frame holds both
        ASSERT_TRUE(poll->Poll(far->command));
        far->AddFault(fault);
        EXPECT_FALSE(PollAfter(10s));
        EXPECT_EQ(poll->GetNow().state, state);
        EXPECT_EQ(LiveSkyTextId(state), words);
        EXPECT_EQ(poll->GetNow().sky.Count(std::nullopt).inView, 2);
        EXPECT_TRUE(poll->GetNow().sky.IsStale(far->clock.Steady()));
    }
}

} // namespace
} // namespace fieldcore
