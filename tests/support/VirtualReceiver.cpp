#include "tests/support/VirtualReceiver.h"

#include "tests/support/ProofSize.h"

#include <string>

#include <gtest/gtest.h>

namespace fieldcore::testing {

int Exchanges(int usual)
{
    return ProofSize("FIELDCORE_EXCHANGES", usual);
}

simulator::Scenario ParsedScenario(std::string_view text)
{
    std::string error;
    const auto scenario = simulator::ParseScenario(text, error);
    EXPECT_TRUE(scenario) << error;
    return scenario.value_or(simulator::Scenario());
}

simulator::SimulatorOptions On(simulator::Port& port)
{
    simulator::SimulatorOptions options;
    options.port = &port;
    return options;
}

void VirtualChannel::Open(std::chrono::milliseconds replyTimeout)
{
    PortSettings settings;
    settings.replyTimeout = replyTimeout;
    command.ClosePort();
    EXPECT_EQ(command.OpenPort(line.FarPort().Path(), settings), 1) << command.LastError();
}

VirtualReceiver::VirtualReceiver(std::string_view scenario, std::uint32_t baudRate)
    : VirtualReceiver(ParsedScenario(scenario), baudRate)
{}

VirtualReceiver::VirtualReceiver(const simulator::Scenario& scenario, std::uint32_t baudRate)
    : VirtualChannel(baudRate), simulator(scenario, clock, On(line.FarPort()))
{
    std::string error;
    EXPECT_TRUE(simulator.Start(error)) << error;
}

void VirtualReceiver::AddFault(std::string_view rule)
{
    simulator::FaultRule parsed;
    std::string error;
    ASSERT_TRUE(ParseFaultRule(rule, parsed, error)) << error;
    simulator.AddFault(parsed);
}

} // namespace fieldcore::testing
