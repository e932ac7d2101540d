// What a controller sees of a sky that moves. The yardstick is the library's own plan, fed with the
// almanacs that came over the line.

#include "core/link/Command.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "simulator/Simulator.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/simulator/PlannedSky.h"
#include "tests/simulator/Support.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::simulator::test {

namespace {

using namespace std::chrono_literals;

/// The list must be what the plan sees.
void ExpectSeen(const std::vector<PlannedSatellite>& planned, SatelliteList list)
{
    const auto byNumber = [](const ListedSatellite& a, const ListedSatellite& b) {
        return a.number < b.number;
    };
    std::sort(list.satellites.begin(), list.satellites.end(), byNumber);
    ASSERT_EQ(list.satellites.size(), planned.size());
    for (std::size_t i = 0; i < planned.size(); ++i) {
        const ListedSatellite& listed = list.satellites[i];
        SCOPED_TRACE("PRN " + std::to_string(planned[i].prn));
        EXPECT_EQ(listed.number, planned[i].prn);
        // The wire has whole degrees.
        EXPECT_NEAR(listed.elevationDeg, planned[i].elevationDeg, 0.5001);
        const double turn = listed.azimuthDeg - planned[i].azimuthDeg;
        EXPECT_NEAR(std::remainder(turn, 360.0), 0.0, 0.5001);
    }
}

} // namespace

TEST(SkyOverTheLine, MovesAsThePlanOfTheReceiversAlmanacsSays)
{
    HandClock clock;
    std::string error;
    const auto scenario = ParseScenario("start 2026-03-18 23:59:42\n"
                                        "position -33.9 151.2 40 # far from every default\n"
                                        "mask 15\noptions l2\nalmanacs 31",
                                        error);
    ASSERT_TRUE(scenario) << error;
    Simulator simulator(*scenario, clock);
    ASSERT_TRUE(simulator.Start(error)) << error;
    CCommand command;
    PortSettings settings;
    settings.replyTimeout = 10s;
    ASSERT_EQ(command.OpenPort(simulator.PortPath(), settings), 1) << command.LastError();
    const TemporaryFolder folder;
    ASSERT_EQ(AlmanacStore(folder.Path()).Update(command), AlmanacResult::Done);
    PlannedSky plan(AlmanacPath(folder.Path()), -33.9, 151.2, 40.0);

    for (const auto later : {0h, 1h, 7h, 250h}) {
        SCOPED_TRACE(later.count());
        clock.Advance(later);
        GpsTimeReply time;
        ASSERT_EQ(command.RequestGpsTime(time), 1);
        plan.SetTime(time.week, time.secondsOfWeek);
        SatelliteList inView;
        SatelliteList tracked;
        ASSERT_EQ(command.RequestSvList(inView, SatelliteListForm::InView), 1);
        ASSERT_EQ(command.RequestSvList(tracked), 1);
        ExpectSeen(plan.Above(0.0), inView);
        ExpectSeen(plan.Above(15.0), tracked);

        StatusReply status;
        PositionStatusReply position;
        ASSERT_EQ(command.RequestStatus(status), 1);
        ASSERT_EQ(command.RequestPositionStatus(position), 1);
        const int count = static_cast<int>(tracked.satellites.size());
        EXPECT_EQ(status.satellitesTracked, count);
        EXPECT_EQ(position.satellitesUsed, count);
        const double pdop = plan.Pdop();
        EXPECT_NEAR(status.pdop, pdop, 0.0501) << "one decimal";
        EXPECT_NEAR(position.pdop, pdop, 1e-6 * pdop) << "single precision";
        EXPECT_NEAR(std::hypot(position.hdop, position.vdop), pdop, 1e-6 * pdop);

        std::sort(tracked.satellites.begin(), tracked.satellites.end(),
                  [](const ListedSatellite& a, const ListedSatellite& b) {
                      return a.elevationDeg < b.elevationDeg;
                  });
        for (std::size_t i = 1; i < tracked.satellites.size(); ++i) {
            const double low = tracked.satellites[i - 1].signals[0];
            EXPECT_LE(low, tracked.satellites[i].signals[0] + 0.25) << "higher up is stronger";
            EXPECT_GT(low, tracked.satellites[i - 1].signals[1]);
            EXPECT_TRUE(low > 30.0 && low < 55.0) << low;
        }
    }
}

} // namespace fieldcore::simulator::test
