#pragma once

#include "core/host/Host.h"
#include "core/link/Command.h"
#include "simulator/Simulator.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/support/VirtualLine.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore::testing {

/// A host that keeps its boxes, counts its breaths and does what a test wants in them.
class BoxKeepingHost final : public Host
{
public:
    struct Box
    {
        std::wstring text;
        std::wstring caption;
        BoxStyle style;
        bool operator==(const Box& other) const
        {
            return text == other.text && caption == other.caption &&
                   style.buttons == other.style.buttons && style.icon == other.style.icon;
        }
    };
    BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                          BoxStyle style) override
    {
        boxes.push_back({std::wstring(text), std::wstring(caption), style});
        return boxes.size() <= answers.size() ? answers[boxes.size() - 1]
                                              : AgreeingAnswer(style.buttons);
    }
    void ShowWaitCursor(bool on) override { waitCursors += on ? 1 : -1; }
    bool Breathe() override
    {
        ++breaths;
        return inBreath ? inBreath() : true;
    }

    std::vector<Box> boxes;
    std::vector<BoxAnswer> answers; ///< of the boxes in turn; to further ones it agrees
    int breaths = 0;
    int waitCursors = 0;
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
    BoxKeepingHost host;
    VirtualLine* plugged = &line;                   ///< what the next port that is opened leads to
    SettingsRoots roots{FoldersBelow("/dev/null")}; ///< in memory, until a test uses others
    CCommand command{{&host, &clock, nullptr, [this] { return plugged->MakeDevice(); }, &roots}};
};

/// How many exchanges a row of a table has: @p usual, or FIELDCORE_EXCHANGES of the environment.
[[nodiscard]] int Exchanges(int usual);

/// Of a simulator on a line in memory.
[[nodiscard]] simulator::SimulatorOptions On(simulator::Port& port);
/// @return the default one, and the test fails, if @p text is none
[[nodiscard]] simulator::Scenario ParsedScenario(std::string_view text);
/// A shipped one. @return the default one, and the test fails, if there is none of that name
[[nodiscard]] simulator::Scenario ShippedScenario(const std::string& name);
/// @return one that drops every answer, and the test fails, if @p text is none
[[nodiscard]] simulator::FaultRule ParsedRule(std::string_view text);

/// With a simulated receiver at the other end. A scenario or a rule that is none fails the test.
struct VirtualReceiver : VirtualChannel
{
    /// @param scenario  its text, see docs/simulator.md
    explicit VirtualReceiver(std::string_view scenario = {}, std::uint32_t baudRate = 0);
    explicit VirtualReceiver(const simulator::Scenario& scenario, std::uint32_t baudRate = 0);

    void AddFault(std::string_view rule);

    simulator::Simulator simulator;
};

} // namespace fieldcore::testing
