// Rounds of questions to the simulator, over a link that is kept.

#include "tests/core/equipment/PolledReceiver.h"

#include <tuple>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::kRover;

class StatusPollTest : public testing::PolledReceiver
{};

TEST_F(StatusPollTest, AsksForEverythingAndNoMoreThanItMust)
{
    EXPECT_FALSE(Round()) << "nobody is there";
    Plug(kRover);
    EXPECT_TRUE(Round(0s));
    const Receiver& now = link.Heard();
    ASSERT_TRUE(now.status && now.position && now.time && now.powerSource);
    EXPECT_EQ(now.position->value.fixKind, 5);
    EXPECT_EQ(now.utcOffsetS, 18);
    EXPECT_TRUE(now.isSynchronised);
    EXPECT_EQ(now.time->value.jst, std::chrono::local_days(2026y / 3 / 19) + 8h + 59min + 42s);
    EXPECT_EQ(now.status->value.batteryPercent, 85);
    EXPECT_EQ(now.powerSource->value, 2);
    EXPECT_EQ(asked, (std::vector<std::uint8_t>{0x08, 0x34, 0x14, 0x41}))
        << "who it is has been asked while connecting";
    ASSERT_EQ(controller.asked.size(), 1U);
    EXPECT_FALSE(Round(1900ms)) << "too early";
    for (int round = 1; round < 30; ++round) {
        EXPECT_TRUE(Round());
    }
    EXPECT_EQ(Asked(0x34), 30);
    EXPECT_EQ(Asked(0x41), 2) << "the power source at every fifteenth round";
    EXPECT_EQ(Asked(0x14), 1) << "once synchronised the position has the time";
    EXPECT_EQ(controller.asked.size(), 1U);
    EXPECT_EQ(poll.History().Samples().size(), 30U);
    EXPECT_NEAR(poll.History().Samples().back().pdop.value_or(0.0), 1.8, 1e-6); // single precision
}

TEST_F(StatusPollTest, BeginsAnewWithAnotherReceiver)
{
    Plug(kRover);
    EXPECT_TRUE(Round());
    receiver->HangUp();
    Round();
    EXPECT_NE(link.State(), LinkState::Connected);
    const StatusHistory history = poll.History();
    EXPECT_TRUE(std::any_of(history.Samples().begin(), history.Samples().end(),
                            [](const StatusHistory::Sample& s) { return !s.satellites; }))
        << "the graph shows the gap";
    EXPECT_TRUE(link.Heard().powerSource) << "the last values stay, to be shown as stale";
    const std::size_t before = poll.History().Samples().size();
    Plug(kRover);
    Round();
    EXPECT_GT(poll.History().Samples().size(), before) << "the same receiver goes on";
    EXPECT_EQ(controller.asked.size(), 2U) << "its time is looked at again";
    Plug("model 3011\nserial 00301101\npower-source 2\ntime-valid no\nfix searching\npdop 99.9\n");
    Round();
    EXPECT_EQ(poll.History().Samples().size(), 1U);
    EXPECT_FALSE(poll.History().Samples().back().pdop);
    EXPECT_EQ(link.Heard().powerSource->value, 2);
    EXPECT_FALSE(link.Heard().time) << "it does not know the time";
    EXPECT_FALSE(link.Heard().isSynchronised);
}

TEST_F(StatusPollTest, LeavesTheChannelToOthers)
{
    Plug(kRover);
    int nested = 0;
    host.inBreath = [&] {
        nested += poll.Tick() ? 1 : 0;
        return true;
    };
    Fault("drop on 34 count 1");
    EXPECT_TRUE(Round());
    EXPECT_EQ(nested, 0);
    EXPECT_EQ(Asked(0x34), 2) << "once, and once more after the time-out";
}

TEST_F(StatusPollTest, ShowsWhatTheReceiverKnows)
{
    const std::tuple<const char*, bool, bool, bool> rows[] = {
        {"nak on 34", false, true, true}, // it knows the time, though not to the second
        {"nak on 14", true, false, true},
        {"nak on 41", true, true, false},
        {"wrong-type on 34", false, true, true},
    };
    int serial = 0; // another receiver each time
    for (const auto& [fault, position, time, source] : rows) {
        SCOPED_TRACE(fault);
        Plug(kRover + std::string("serial ") + std::to_string(serial++) + "\n");
        Fault(fault);
        Round();
        EXPECT_EQ(link.Heard().position.has_value(), position);
        EXPECT_EQ(link.Heard().time.has_value(), time);
        EXPECT_EQ(link.Heard().powerSource.has_value(), source);
    }
}

TEST_F(StatusPollTest, CallsTheTimeOfAnOldPositionOld)
{
    Plug(kRover);
    Round();
    Fault("nak on 34");
    Round();
    EXPECT_EQ(link.Heard().time->at, link.Heard().position->at);
}

TEST_F(StatusPollTest, AsksASilentReceiverLessOften)
{
    Plug(kRover);
    Round();
    const Clock::Duration last = link.Heard().position->at;
    Fault("drop on 34");
    EXPECT_TRUE(Round());
    for (const auto pause : {4s, 6s, 8s}) {
        clock.Sleep(pause - 1ms);
        EXPECT_FALSE(poll.Tick()) << pause.count();
        clock.Sleep(1ms);
        EXPECT_TRUE(poll.Tick()) << pause.count();
    }
    EXPECT_EQ(link.Heard().position->at, last) << "the last one stays";
}

/// It finds a fix and loses it, drains its battery and changes its power source.
TEST_F(StatusPollTest, FollowsAReceiverToItsLastCharge)
{
    using enum BatteryWatch::Warning;
    Plug("model 3017\nfix searching 20 fixed 300 none\npower-source 1 120 2\nbattery 34 60\n");
    std::vector<BatteryWatch::Warning> warnings;
    while (clock.Steady() < 30min) {
        Round(10s);
        if (const auto warning = poll.TakeWarning(); warning != None) {
            warnings.push_back(warning);
        }
    }
    EXPECT_EQ(warnings, (std::vector{Low, VeryLow}));
    ASSERT_TRUE(link.Heard().trend && link.Heard().trend->left);
    EXPECT_NEAR(link.Heard().trend->percentPerHour, -60.0, 3.0);
    EXPECT_LT(*link.Heard().trend->left, 10min);
    EXPECT_EQ(link.Heard().powerSource->value, 2);
    EXPECT_FALSE(poll.History().Samples().back().pdop);
    EXPECT_TRUE(link.Heard().isSynchronised) << "the time stays trusted";
    EXPECT_EQ(controller.asked.size(), 1U);
}

TEST(StatusHistory, KeepsAnHourAndNoMoreThanItHasRoomFor)
{
    StatusHistory history;
    for (int second = 0; second <= 2 * 3600; second += 2) {
        history.Add({std::chrono::seconds(second), 8, 1.5});
    }
    EXPECT_EQ(history.Samples().size(), 1801U);
    EXPECT_EQ(history.Samples().front().at, Clock::Duration(1h));
    history.Add({1h, 9, 1.5});
    EXPECT_EQ(history.Samples().back().satellites, 8) << "time went back";
    for (int i = 0; i < 10000; ++i) {
        history.Add({2h, 8, 1.5});
    }
    EXPECT_EQ(history.Samples().size(), StatusHistory::kMost);
}

} // namespace
} // namespace fieldcore
