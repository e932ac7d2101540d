#pragma once

#include "core/platform/Clock.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace fieldcore::simulator {

/// The port that a receiver answers on, seen from the receiver. All of it belongs to the thread of
/// the simulator but for the first Open(), which comes before that thread starts, and Wake().
class Port
{
public:
    virtual ~Port() = default;

    /// Plugs it in; nothing happens if it is.
    /// @param error  what went wrong, in words for the user
    [[nodiscard]] virtual bool Open(std::string& error) = 0;
    /// Hangs up: who has the port open on the other side reads its end from now on.
    virtual void Close() = 0;
    [[nodiscard]] virtual bool IsOpen() const = 0;
    /// What the controller opens; the same however often the port is plugged in.
    [[nodiscard]] virtual std::string Path() const = 0;

    /// Takes what has come; never waits. @return the number of bytes
    [[nodiscard]] virtual std::size_t Read(std::span<std::uint8_t> buffer) = 0;
    /// @return how many bytes had room; never waits
    [[nodiscard]] virtual std::size_t Write(std::span<const std::uint8_t> bytes) = 0;

    /// Waits for bytes, for a Wake(), and if @p forRoom for room to write, at most @p limit of
    /// real time; nothing: without limit.
    /// @return whether a write may be tried again
    virtual bool Wait(std::optional<Clock::Duration> limit, bool forRoom) = 0;
    /// Ends a wait, the one under way or the next. Any thread.
    virtual void Wake() = 0;
    /// Waits until the controller has read everything that was sent, at most @p limit.
    virtual void WaitUntilRead(std::chrono::milliseconds limit) = 0;

    /// The rate that the controller has set its end to, bit/s; 0 if it is none of the usual ones.
    [[nodiscard]] virtual std::uint32_t ControllerRate() const = 0;
};

} // namespace fieldcore::simulator
