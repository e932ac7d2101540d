#pragma once

#include "core/platform/Clock.h"
#include "simulator/Frame.h"
#include "simulator/RequestParser.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore::simulator::test {

/// A clock that stands until one thread moves it.
class HandClock final : public Clock
{
public:
    [[nodiscard]] Duration Steady() const override { return m_steady; }
    [[nodiscard]] UtcTime Utc() const override { return UtcTime(m_steady.load()); }
    [[nodiscard]] bool SetUtc(UtcTime /*time*/) override { return false; }
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration; }
    void Advance(Duration duration) { m_steady = m_steady.load() + duration; }

private:
    std::atomic<Duration> m_steady{};
};

/// "02 00 08" as bytes.
inline Bytes Hex(std::string_view text)
{
    Bytes bytes;
    std::string digits;
    for (const char c : text) {
        if (std::string_view("0123456789ABCDEF").find(c) != std::string_view::npos) {
            digits += c;
        }
        if (digits.size() == 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits, nullptr, 16)));
            digits.clear();
        }
    }
    return bytes;
}

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
