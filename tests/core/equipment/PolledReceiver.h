#pragma once

#include "core/equipment/StatusPoll.h"
#include "core/link/Command.h"
#include "core/link/ReceiverLink.h"
#include "simulator/Simulator.h"
#include "tests/core/equipment/HandClock.h"
#include "tests/core/link/QuickConnect.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::testing {

using namespace std::chrono_literals;

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

inline constexpr const char* kRover = "model 3017\nserial 00301701\npower-source 2\nbattery 85\n"
                                      "fix fixed\nutc-offset 18\npdop 1.8\n"
                                      "start 2026-03-18 23:59:42\n";

/// Polls a simulated receiver over a link that is kept. Time goes by when the test says so.
class PolledReceiver : public ::testing::Test
{
protected:
    void Plug(const std::string& scenario)
    {
        std::string error;
        const auto parsed = simulator::ParseScenario(scenario, error);
        ASSERT_TRUE(parsed) << error;
        ASSERT_NO_FATAL_FAILURE(PlugIn(*parsed));
    }
    void PlugIn(const simulator::Scenario& scenario)
    {
        command.ClosePort();
        std::string error;
        receiver = std::make_unique<simulator::Simulator>(scenario, clock);
        ASSERT_TRUE(receiver->Start(error)) << error;
        ConnectTarget target;
        target.devicePath = receiver->PortPath();
        QuickConnect connect(command, target);
        ASSERT_EQ(link.Connect(connect, target), 1);
        command.SetLineObserver(
            [this](Direction direction, LineUnit, std::span<const std::uint8_t> frame) {
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

} // namespace fieldcore::testing
