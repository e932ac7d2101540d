// How does a host test its own code against a receiver that misbehaves?

#include <fieldcore/core/link/Command.h>
#include <fieldcore/simulator/Simulator.h>

#include <cstdio>
#include <string>

/// What is to be tested: the host's own. Here: whether the battery lasts.
bool BatteryLasts(fieldcore::CCommand& receiver)
{
    fieldcore::StatusReply status;
    return receiver.RequestStatus(status) == 1 && status.batteryPercent >= 20;
}

int Fail(const std::string& what)
{
    std::printf("failed: %s\n", what.c_str());
    return 1;
}

int main()
{
    using namespace fieldcore::simulator;
    std::string error;
    const auto scenario = LoadScenario("low-battery", error);
    FaultRule rule; // the first answer to the status request arrives damaged
    if (!scenario || !ParseFaultRule("corrupt on 08 count 1", rule, error)) {
        return Fail(error);
    }
    Simulator simulator(*scenario);
    simulator.AddFault(rule);
    fieldcore::CCommand receiver;
    if (!simulator.Start(error) || receiver.OpenPort(simulator.PortPath()) == 0) {
        return Fail(error + receiver.LastError());
    }
    if (BatteryLasts(receiver)) {
        return Fail("a battery of " + std::to_string(scenario->batteryPercent) +
                    " % does not last");
    }
    if (receiver.Fault() != fieldcore::CommandFault::None || simulator.RequestCount() != 2) {
        return Fail("the damaged answer should be asked for again, once");
    }
    simulator.HangUp(); // the cable is pulled
    if (BatteryLasts(receiver) || receiver.Fault() != fieldcore::CommandFault::LinkLost) {
        return Fail("the loss of the link should be told");
    }
    std::printf("1 test passed\n");
}
