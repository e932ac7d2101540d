#pragma once

#include "core/equipment/StatusPoll.h"
#include "core/link/ReceiverLink.h"
#include "tests/core/link/QuickConnect.h"
#include "tests/support/HandClock.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::testing {

using namespace std::chrono_literals;

inline constexpr const char* kRover = "model 3017\nserial 00301701\npower-source 2\nbattery 85\n"
                                      "fix fixed\nutc-offset 18\npdop 1.8\n"
                                      "start 2026-03-18 23:59:42\n";

/// Polls a simulated receiver over a link that is kept. Time goes by when the test says so.
class PolledReceiver : public ::testing::Test, protected VirtualChannel
{
protected:
    ~PolledReceiver() override { command.ClosePort(); }

    /// One that was not there before, on a cable of its own.
    void Plug(const simulator::Scenario& scenario)
    {
        command.ClosePort();
        receiver.reset();
        plugged = &m_lines.emplace_back(clock);
        receiver.emplace(scenario, clock, On(plugged->FarPort()));
        std::string error;
        ASSERT_TRUE(receiver->Start(error)) << error;
        ConnectTarget target;
        target.devicePath = "in memory";
        QuickConnect connect(command, target);
        ASSERT_EQ(link.Connect(connect), 1);
        command.SetLineObserver(
            [this](Direction direction, LineUnit, std::span<const std::uint8_t> frame) {
                if (direction == Direction::Sent) {
                    asked.push_back(frame.size() > 2 ? frame[2] : 0);
                }
            });
    }
    void Plug(const std::string& scenario) { Plug(ParsedScenario(scenario)); }
    void Fault(const char* text) { receiver->AddFault(ParsedRule(text)); }
    /// A round later.
    bool Round(Clock::Duration later = StatusPoll::kInterval)
    {
        clock.Sleep(later);
        link.Tick();
        return poll.Tick();
    }
    [[nodiscard]] long Asked(std::uint8_t type) const
    {
        return std::count(asked.begin(), asked.end(), type);
    }

    HandClock controller; // what the receiver's time would set
    std::deque<VirtualLine> m_lines;
    std::optional<simulator::Simulator> receiver; // at the end of the last one
    ReceiverLink link{command};
    StatusPoll poll{command, link, &controller};
    std::vector<std::uint8_t> asked;
};

} // namespace fieldcore::testing
