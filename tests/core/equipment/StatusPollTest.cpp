// Rounds of questions to the simulator, over a link that is kept.

#include "core/equipment/StatusPoll.h"

#include "core/link/Command.h"
#include "core/link/Connect.h"
#include "core/link/ReceiverLink.h"
#include "simulator/Simulator.h"
#include "tests/core/equipment/HandClock.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::HandClock;

class BreathingHost final : public Host
{
public:
    BoxAnswer ShowMessage(std::wstring_view, std::wstring_view, BoxStyle) override
    {
        return BoxAnswer::Ok;
    }
    bool Breathe() override
    {
        if (onBreath) {
            onBreath();
        }
        return true;
    }
    std::function<void()> onBreath;
};

/// Connects without the pauses that a clock would have to be moved for.
class QuickConnect final : public CConnect
{
public:
    QuickConnect(CCommand& command, const ConnectTarget& target)
        : CConnect(command, 0, target), m_command(command), m_path(target.devicePath)
    {
        SupportAllTypes();
    }

protected:
    int RunSequence(ConnectSequence&) override { return m_command.OpenPort(m_path); }

private:
    CCommand& m_command;
    const std::string m_path;
};

constexpr const char* kRover = "model 3017\nserial 00301701\npower-source 2\nbattery 85\n"
                               "fix fixed\nutc-offset 18\npdop 1.8\n"
                               "start 2026-03-18 23:59:42\n";

class StatusPollTest : public ::testing::Test
{
protected:
    void Plug(const std::string& scenario)
    {
        command.ClosePort();
        std::string error;
        const auto parsed = simulator::ParseScenario(scenario, error);
        ASSERT_TRUE(parsed) << error;
        receiver = std::make_unique<simulator::Simulator>(*parsed, clock);
        ASSERT_TRUE(receiver->Start(error)) << error;
        ConnectTarget target;
        target.devicePath = receiver->PortPath();
        QuickConnect connect(command, target);
        ASSERT_EQ(link.Connect(connect, target), 1);
        command.SetFrameObserver([this](Direction direction, std::span<const std::uint8_t> frame) {
            if (direction == Direction::Sent) {
                asked.push_back(frame.size() > 2 ? frame[2] : 0);
            }
        });
    }
    void Fault(const char* text)
    {
        simulator::FaultRule rule;
        std::string error;
        ASSERT_TRUE(simulator::ParseFaultRule(text, rule, error)) << error;
        receiver->AddFault(rule);
    }
    /// A round later.
    bool Round(Clock::Duration later = StatusPoll::kInterval)
    {
        clock.Advance(later);
        link.Tick();
        return poll.Tick();
    }
    [[nodiscard]] long Asked(std::uint8_t type) const
    {
        return std::count(asked.begin(), asked.end(), type);
    }

    HandClock clock;
    HandClock controller; // what the receiver's time would set
    BreathingHost host;
    std::unique_ptr<simulator::Simulator> receiver;
    CCommand command{{&host, &clock, nullptr, nullptr}};
    ReceiverLink link{command};
    StatusPoll poll{command, link, &controller};
    std::vector<std::uint8_t> asked;
};

TEST_F(StatusPollTest, AsksForEverythingAndNoMoreThanItMust)
{
    EXPECT_FALSE(Round()) << "nobody is there";
    Plug(kRover);
    EXPECT_TRUE(Round(0s));
    const LiveStatus& now = poll.Now();
    ASSERT_TRUE(now.status && now.position && now.pdop && now.time && now.battery);
    EXPECT_EQ(now.position->value.fixKind, 5);
    EXPECT_TRUE(HasPlace(now.position->value));
    EXPECT_EQ(now.pdop->value, L"1.8");
    EXPECT_EQ(now.time->value.utcOffsetS, 18);
    EXPECT_TRUE(now.time->value.isSynchronised);
    EXPECT_EQ(now.time->value.jst, std::chrono::local_days(2026y / 3 / 19) + 8h + 59min + 42s);
    EXPECT_EQ(now.battery->value.percent, 85);
    EXPECT_EQ(now.battery->value.source, L"電源B");
    ASSERT_EQ(controller.asked.size(), 1U);
    EXPECT_FALSE(Round(1999ms)) << "too early";
    for (int round = 1; round < 30; ++round) {
        EXPECT_TRUE(Round());
    }
    EXPECT_EQ(Asked(0x34), 30);
    EXPECT_EQ(Asked(0x41), 2) << "the battery at every fifteenth round";
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
    EXPECT_TRUE(std::any_of(poll.History().Samples().begin(), poll.History().Samples().end(),
                            [](const StatusHistory::Sample& s) { return !s.satellites; }))
        << "the graph shows the gap";
    EXPECT_TRUE(poll.Now().battery) << "the last values stay, to be shown as stale";
    const std::size_t before = poll.History().Samples().size();
    Plug(kRover);
    Round();
    EXPECT_GT(poll.History().Samples().size(), before) << "the same receiver goes on";
    EXPECT_EQ(controller.asked.size(), 2U) << "its time is looked at again";
    Plug("model 3011\nserial 00301101\npower-source 2\ntime-valid no\nfix searching\npdop 99.9\n");
    Round();
    EXPECT_EQ(poll.History().Samples().size(), 1U);
    EXPECT_FALSE(poll.History().Samples().back().pdop);
    EXPECT_EQ(poll.Now().battery->value.source, L"電源2");
    EXPECT_FALSE(poll.Now().time) << "it does not know the time";
    EXPECT_EQ(poll.Now().pdop->value, L"-.- ");
}

TEST_F(StatusPollTest, LeavesTheChannelToOthers)
{
    Plug(kRover);
    {
        const ReceiverLink::Hold hold(link);
        EXPECT_FALSE(Round() && !asked.empty()) << "a dialog holds the link";
        EXPECT_EQ(Asked(0x34), 0);
    }
    int nested = 0;
    clock.speed = 20;
    host.onBreath = [&] {
        clock.Advance(50ms); // a pause of the channel ends by this clock
        nested += poll.Tick() ? 1 : 0;
    };
    Fault("drop on 34 count 1");
    EXPECT_TRUE(Round());
    EXPECT_EQ(nested, 0);
    EXPECT_EQ(Asked(0x34), 2) << "once, and once more after the time-out";
}

TEST_F(StatusPollTest, ShowsWhatTheReceiverKnows)
{
    struct Row
    {
        const char* fault;
        bool position, time, battery, percent;
    };
    const Row rows[] = {
        {"nak on 34", false, true, true, true},
        {"nak on 14", true, true, true, true}, // not synchronised: no time to show
        {"nak on 41", true, true, true, true},
        {"wrong-type on 34", false, true, true, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Plug(kRover + std::string("serial ") + std::to_string(&row - rows) + "\n");
        Fault(row.fault);
        Round();
        EXPECT_EQ(poll.Now().position.has_value(), row.position);
        EXPECT_EQ(poll.Now().battery.has_value(), row.battery);
        EXPECT_EQ(poll.Now().battery->value.percent.has_value(), row.percent);
    }
}

TEST_F(StatusPollTest, AsksASilentReceiverLessOften)
{
    Plug(kRover);
    Round();
    const Clock::Duration last = poll.Now().position->at;
    clock.speed = 20;
    host.onBreath = [this] { clock.Advance(50ms); };
    Fault("drop on 34");
    EXPECT_TRUE(Round());
    for (const auto pause : {4s, 6s, 8s}) {
        clock.Advance(pause - 1ms);
        EXPECT_FALSE(poll.Tick()) << pause.count();
        clock.Advance(1ms);
        EXPECT_TRUE(poll.Tick()) << pause.count();
    }
    EXPECT_EQ(poll.Now().position->at, last) << "the last one stays";
}

TEST_F(StatusPollTest, WarnsOfALowBattery)
{
    Plug(std::string(kRover) + "battery 15\n");
    EXPECT_EQ(poll.TakeWarning(), BatteryWatch::Warning::None);
    Round();
    EXPECT_EQ(poll.TakeWarning(), BatteryWatch::Warning::Low);
    EXPECT_EQ(poll.TakeWarning(), BatteryWatch::Warning::None);
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
