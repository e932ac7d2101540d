// What a controller sees of a sky that moves. The yardstick is the library's own plan, fed with the
// almanacs that came over the line.

#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/SurveyPlanCalc.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {

namespace {

using namespace std::chrono_literals;

constexpr double kDegree = std::numbers::pi / 180.0;

/// The list must be what the plan sees above the mask.
void ExpectSeen(CSurveyPlanCalc& plan, double maskDeg, SatelliteList list)
{
    plan.SetElMask(maskDeg * kDegree);
    std::ranges::sort(list.satellites, {}, &ListedSatellite::number);
    auto listed = list.satellites.cbegin();
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        if (plan.TestVisibility(index) == 0) {
            continue;
        }
        SCOPED_TRACE("PRN " + std::to_string(index + 1));
        ASSERT_NE(listed, list.satellites.cend());
        EXPECT_EQ(listed->number, index + 1);
        // The wire has whole degrees.
        const CAlmanacSatellite& satellite = plan.GetSatellite(index);
        EXPECT_NEAR(listed->elevationDeg, satellite.GetElevation() / kDegree, 0.5001);
        const double turn = listed->azimuthDeg - satellite.GetAzimuth() / kDegree;
        EXPECT_NEAR(std::remainder(turn, 360.0), 0.0, 0.5001);
        ++listed;
    }
    EXPECT_EQ(listed, list.satellites.cend());
}

} // namespace

TEST(SkyOverTheLine, MovesAsThePlanOfTheReceiversAlmanacsSays)
{
    testing::VirtualReceiver receiver("start 2026-03-18 23:59:42\n"
                                      "position -33.9 151.2 40 # far from every default\n"
                                      "mask 15\noptions l2\nalmanacs 31");
    receiver.Open();
    CCommand& command = receiver.command;
    const TemporaryFolder folder;
    ASSERT_EQ(AlmanacStore(folder.Path()).Update(command), AlmanacResult::Done);
    CSurveyPlanCalc plan;
    ASSERT_TRUE(plan.LoadAlmanac(AlmanacPath(folder.Path())));
    plan.SetObserver({-33.9 * kDegree, 151.2 * kDegree, 40.0});

    for (const auto later : {0h, 1h, 7h, 250h}) {
        SCOPED_TRACE(later.count());
        receiver.clock.Sleep(later);
        GpsTimeReply time;
        ASSERT_EQ(command.RequestGpsTime(time), 1);
        plan.SetTime(time.week, time.secondsOfWeek);
        SatelliteList inView;
        SatelliteList tracked;
        ASSERT_EQ(command.RequestSvList(inView, SatelliteListForm::InView), 1);
        ASSERT_EQ(command.RequestSvList(tracked), 1);
        ExpectSeen(plan, 0.0, inView);
        ExpectSeen(plan, 15.0, tracked);

        StatusReply status;
        PositionStatusReply position;
        ASSERT_EQ(command.RequestStatus(status), 1);
        ASSERT_EQ(command.RequestPositionStatus(position), 1);
        const int count = static_cast<int>(tracked.satellites.size());
        EXPECT_EQ(status.satellitesTracked, count);
        EXPECT_EQ(position.satellitesUsed, count);
        const double pdop = plan.ComputeDop().pdop;
        EXPECT_NEAR(status.pdop, pdop, 0.0501) << "one decimal";
        EXPECT_NEAR(position.pdop, pdop, 1e-6 * pdop) << "single precision";
        EXPECT_NEAR(std::hypot(position.hdop, position.vdop), pdop, 1e-6 * pdop);

        std::ranges::sort(tracked.satellites, {}, &ListedSatellite::elevationDeg);
        for (std::size_t i = 1; i < tracked.satellites.size(); ++i) {
            const double low = tracked.satellites[i - 1].signals[0];
            EXPECT_LE(low, tracked.satellites[i].signals[0] + 0.25) << "higher up is stronger";
            EXPECT_GT(low, tracked.satellites[i - 1].signals[1]);
            EXPECT_TRUE(low > 30.0 && low < 55.0) << low;
        }
    }
}

} // namespace fieldcore
