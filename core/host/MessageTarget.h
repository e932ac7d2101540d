#pragma once

#include <cstdint>

namespace fieldcore {

/// A window, or whatever stands for one, that is told something later: a message is queued and
/// handled on the thread that uses the library, after what runs there now.
class MessageTarget
{
public:
    virtual ~MessageTarget() = default;

    /// Queues a message. Messages arrive in the order in which one thread posts them; those for a
    /// receiver that is gone are dropped. Any thread.
    /// @param message  number of the kind of message
    /// @param wParam   first value, its meaning belongs to the kind
    /// @param lParam   second value
    virtual void Post(unsigned message, std::intptr_t wParam, std::intptr_t lParam) = 0;
};

} // namespace fieldcore
