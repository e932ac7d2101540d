// The parameters of ports from the command line, on a simulated receiver that understands nothing
// but its own rate.

#include "tests/cli/Runner.h"

#include <string>

#include <gtest/gtest.h>

namespace fieldcore::cli::test {
namespace {

/// The stored parameters of all ports, as one text; by default those of the simulator's store.
std::string Shown(Runner& runner, const std::string& store = "sim:")
{
    std::string all;
    for (const auto& port : runner.Result("ports show --port " + store)["ports"]) {
        all += port["port"].get<std::string>() + " " + port["rate"].get<std::string>() + "-" +
               port["dataBits"].get<std::string>() + "-" + port["parity"].get<std::string>() + " ";
    }
    return all;
}

TEST(PortsSet, TellsTheReceiverAndStores)
{
    Runner runner;
    const std::string sim =
        " --port sim:" + runner.Scenario("check-rate yes\n") + " --speed 20 --timeout 40";
    const std::string before =
        "link 38400-8-None com1 9600-8-None com2 9600-8-None com3 9600-8-None ";
    EXPECT_EQ(Shown(runner), before);
    runner.Expect({{"ports set 4 9600" + sim, 2},
                   {"ports set 2 14400" + sim, 2},
                   {"ports set 2 9600-8-Mark" + sim, 2},
                   {"ports set 2 9600", 2},       // no port named
                   {"ports set 3 4800" + sim, 6}, // the receiver has no such port
                   {"ports set 2 9600 --baud 9600" + sim, 4}});
    EXPECT_EQ(Shown(runner), before) << "nothing is stored";
    Outcome outcome = runner.Run("ports set 2 115200-7-even" + sim);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    outcome = runner.Run("ports set 1 57600" + sim); // the port in use: the line follows
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(runner.Run("ports set 0 4800-8-odd" + sim).code, 0);
    EXPECT_EQ(Shown(runner),
              "link 4800-8-Odd com1 57600-8-None com2 115200-7-Even com3 9600-8-None ");
    EXPECT_EQ(Shown(runner, "COM1"), before) << "a real port";
}

TEST(PortOptions, DefaultToTheStoredLine)
{
    Runner runner;
    const std::string info = "info --port sim:" + runner.Scenario("check-rate yes\nbaud 9600\n") +
                             " --speed 20 --timeout 40";
    ASSERT_EQ(runner.Run("ports set 0 9600 --port sim:").code, 0);
    EXPECT_EQ(runner.Run(info).code, 0);
    EXPECT_EQ(runner.Run(info + " --baud 38400").code, 4) << "the option does not count";
    ASSERT_EQ(runner.Run("ports set 0 38400 --port sim:").code, 0);
    EXPECT_EQ(runner.Run(info).code, 4);
    EXPECT_EQ(runner.Run(info + " --baud 9600").code, 0);
}

} // namespace
} // namespace fieldcore::cli::test
