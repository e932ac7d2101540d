#pragma once

#include "simulator/Frame.h"
#include "simulator/RequestParser.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "tests/support/HandClock.h"
#include "tests/support/Hex.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore::simulator::test {

using fieldcore::testing::HandClock;
using fieldcore::testing::Hex;

inline Request FrameRequest(const Bytes& frame)
{
    return {Request::Kind::Frame, frame};
}

/// A shipped scenario whose receiver starts at 2026-03-19 00:00:00 GPS time, second 345600 of
/// week 2410.
inline Scenario Shipped(const std::string& name)
{
    using namespace std::chrono;
    std::string error;
    const auto scenario = LoadScenario(name, error);
    EXPECT_TRUE(scenario) << error;
    Scenario result = scenario.value_or(Scenario());
    result.start = sys_days(year(2026) / March / 18) + 23h + 59min + 42s;
    return result;
}

/// A scenario from its text.
inline Scenario Parsed(std::string_view text)
{
    std::string error;
    const auto scenario = ParseScenario(text, error);
    EXPECT_TRUE(scenario) << error;
    return scenario.value_or(Scenario());
}

/// A simulator that runs.
inline std::unique_ptr<Simulator> Started(const Scenario& scenario, SimulatorOptions options = {})
{
    auto simulator =
        std::make_unique<Simulator>(scenario, SystemClock::Instance(), std::move(options));
    std::string error;
    EXPECT_TRUE(simulator->Start(error)) << error;
    return simulator;
}

} // namespace fieldcore::simulator::test
