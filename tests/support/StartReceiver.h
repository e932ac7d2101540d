#pragma once

#include "simulator/Scenario.h"
#include "simulator/Simulator.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore::testing {

/// A simulated receiver behind a path, as a real one is.
/// @param scenario  a shipped one, or its file
[[nodiscard]] inline std::unique_ptr<simulator::Simulator>
StartReceiver(const std::string& scenario, const Clock& clock = SystemClock::Instance())
{
    std::string error;
    const auto loaded = simulator::LoadScenario(scenario, error);
    auto receiver =
        std::make_unique<simulator::Simulator>(loaded.value_or(simulator::Scenario{}), clock);
    const bool isStarted = loaded && receiver->Start(error);
    EXPECT_TRUE(isStarted) << error;
    return receiver;
}

} // namespace fieldcore::testing
