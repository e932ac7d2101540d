#pragma once

#include "simulator/Frame.h"
#include "simulator/Receiver.h"
#include "simulator/RequestParser.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "tests/support/HandClock.h"
#include "tests/support/Hex.h"
#include "tests/support/VirtualReceiver.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
    Scenario result = fieldcore::testing::ShippedScenario(name);
    result.start = sys_days(year(2026) / March / 18) + 23h + 59min + 42s;
    return result;
}

inline Scenario Parsed(std::string_view text)
{
    return fieldcore::testing::ParsedScenario(text);
}

using fieldcore::testing::ParsedRule;

/// A simulator that runs.
inline std::unique_ptr<Simulator> Started(const Scenario& scenario, SimulatorOptions options = {},
                                          const Clock& clock = SystemClock::Instance())
{
    auto simulator = std::make_unique<Simulator>(scenario, clock, std::move(options));
    std::string error;
    EXPECT_TRUE(simulator->Start(error)) << error;
    return simulator;
}

inline std::vector<Bytes> Ask(Receiver& receiver, std::uint8_t type, std::string_view data = "")
{
    return receiver.Answer(FrameRequest(MakeFrame(type, Hex(data))));
}

/// Data of the one frame that answers.
inline Bytes Data(Receiver& receiver, std::uint8_t type, std::string_view data = "")
{
    const std::vector<Bytes> answer = Ask(receiver, type, data);
    if (answer.size() != 1 || answer[0].size() < 6) {
        ADD_FAILURE() << "no frame for type " << int(type);
        return Bytes(255);
    }
    return Bytes(answer[0].begin() + 4, answer[0].end() - 2);
}

} // namespace fieldcore::simulator::test
