#pragma once

#include "core/host/Host.h"
#include "core/link/Command.h"
#include "simulator/Simulator.h"
#include "tests/support/VirtualLine.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string_view>

namespace fieldcore::testing {

/// A host that agrees to everything, counts its breaths and does what a test wants in them.
class CountingHost final : public Host
{
public:
    BoxAnswer ShowMessage(std::wstring_view, std::wstring_view, BoxStyle style) override
    {
        return AgreeingAnswer(style.buttons);
    }
    bool Breathe() override
    {
        ++breaths;
        return inBreath ? inBreath() : true;
    }

    int breaths = 0;
    std::function<bool()> inBreath;
};

/// A channel over a line in memory, on a virtual clock of its own.
struct VirtualChannel
{
    /// @param baudRate  of the line; 0: answers come in bursts
    explicit VirtualChannel(std::uint32_t baudRate = 0) : line(clock, baudRate) {}

    /// Closes the port and opens it; where that fails the test does.
    void Open(std::chrono::milliseconds replyTimeout = std::chrono::seconds(2));

    VirtualClock clock;
    VirtualLine line;
    CountingHost host;
    CCommand command{{&host, &clock, nullptr, [this] { return line.MakeDevice(); }}};
};

/// With a simulated receiver at the other end. A scenario or a rule that is none fails the test.
struct VirtualReceiver : VirtualChannel
{
    /// @param scenario  its text, see docs/simulator.md
    explicit VirtualReceiver(std::string_view scenario = {}, std::uint32_t baudRate = 0);

    void AddFault(std::string_view rule);

    simulator::Simulator simulator;
};

} // namespace fieldcore::testing
