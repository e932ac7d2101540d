#pragma once

#include "simulator/Scenario.h"
#include "simulator/Simulator.h"

#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore::testing {

/// A simulated receiver behind a path, as a real one is. Where there is none the test fails.
[[nodiscard]] inline std::unique_ptr<simulator::Simulator>
StartReceiver(const simulator::Scenario& scenario, const Clock& clock = SystemClock::Instance(),
              simulator::SimulatorOptions options = {})
{
    auto receiver = std::make_unique<simulator::Simulator>(scenario, clock, std::move(options));
    std::string error;
    EXPECT_TRUE(receiver->Start(error)) << error;
    return receiver;
}

/// @param scenario  a shipped one, or its file
[[nodiscard]] inline std::unique_ptr<simulator::Simulator>
StartReceiver(const std::string& scenario, const Clock& clock = SystemClock::Instance())
{
    std::string error;
    const auto loaded = simulator::LoadScenario(scenario, error);
    EXPECT_TRUE(loaded) << error;
    return StartReceiver(loaded.value_or(simulator::Scenario()), clock);
}

} // namespace fieldcore::testing
