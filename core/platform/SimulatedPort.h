#pragma once

#include "core/platform/Clock.h"

#include <functional>
#include <memory>
#include <string>

namespace fieldcore {

/// A receiver in software behind a port of its own; it ends with the object.
class SimulatedPort
{
public:
    virtual ~SimulatedPort() = default;
    /// What to open.
    [[nodiscard]] virtual std::string Path() const = 0;
};

/// Starts a receiver in software.
/// @param scenario  what it plays: a name or a file; empty: what it plays by itself
/// @param clock  outlives the receiver
/// @param error  why there is none, plain English without a full stop
/// @return null if it does not start
using SimulatorStarter = std::function<std::unique_ptr<SimulatedPort>(
    const std::string& scenario, const Clock& clock, std::string& error)>;

/// What "sim:" starts in this program from now on; empty: nothing, as at first. Any thread.
void SetSimulatorStarter(SimulatorStarter starter);

/// Starts what SetSimulatorStarter() named. @param error  a sentence with what to do
[[nodiscard]] std::unique_ptr<SimulatedPort>
StartSimulatedPort(const std::string& scenario, const Clock& clock, std::string& error);

} // namespace fieldcore
