#pragma once

#include "core/host/Host.h"

#include <functional>
#include <memory>

class QObject;

namespace fieldcore {

/// Posts messages through the event queue of a window, or any other object, to a function that runs
/// on the window's thread. May outlive the window: what has not arrived by then is dropped.
class QtMessageTarget : public MessageTarget
{
public:
    /// Is given the message and its two values.
    using Handler =
        std::function<void(unsigned message, std::intptr_t wParam, std::intptr_t lParam)>;

    /// @param receiver  on whose thread @p handler runs, and without which it does not; made and
    ///                  destroyed on the user-interface thread, as is the target
    QtMessageTarget(QObject* receiver, Handler handler);
    ~QtMessageTarget() override;

    void Post(unsigned message, std::intptr_t wParam, std::intptr_t lParam) override;

private:
    struct State;
    const std::shared_ptr<State> m_state; // the receiver holds on to it too
};

} // namespace fieldcore
