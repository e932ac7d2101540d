#pragma once

#include "core/link/Command.h"
#include "tests/support/StartReceiver.h"

#include <chrono>
#include <memory>

#include <gtest/gtest.h>

namespace fieldcore::testing {

/// A simulated receiver, and @p command is connected to it and to nothing else.
/// @param replyTimeout  so long that a busy machine is not taken for a silent receiver
[[nodiscard]] inline std::unique_ptr<simulator::Simulator>
Plugged(CCommand& command, const simulator::Scenario& scenario,
        const Clock& clock = SystemClock::Instance(),
        std::chrono::milliseconds replyTimeout = std::chrono::seconds(10))
{
    command.ClosePort();
    auto receiver = StartReceiver(scenario, clock);
    PortSettings settings;
    settings.replyTimeout = replyTimeout;
    EXPECT_EQ(command.OpenPort(receiver->PortPath(), settings), 1) << command.LastError();
    return receiver;
}

} // namespace fieldcore::testing
