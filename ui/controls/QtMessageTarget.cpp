#include "ui/controls/QtMessageTarget.h"

#include <QMetaObject>
#include <QObject>

#include <mutex>
#include <utility>

namespace fieldcore {

struct QtMessageTarget::State
{
    std::mutex mutex;
    QObject* receiver = nullptr; // guarded by mutex
    Handler handler;
};

QtMessageTarget::QtMessageTarget(QObject* receiver, Handler handler)
    : m_state(std::make_shared<State>())
{
    m_state->receiver = receiver;
    m_state->handler = std::move(handler);
    // The signal comes before the queue of the receiver is emptied, and waits here for a Post()
    // that is under way: no message can enter the queue of an object that is gone.
    QObject::connect(receiver, &QObject::destroyed, [state = m_state] {
        const std::scoped_lock lock(state->mutex);
        state->receiver = nullptr;
    });
}

QtMessageTarget::~QtMessageTarget() = default;

void QtMessageTarget::Post(unsigned message, std::intptr_t wParam, std::intptr_t lParam)
{
    const std::scoped_lock lock(m_state->mutex);
    if (m_state->receiver == nullptr) {
        return;
    }
    QMetaObject::invokeMethod(
        m_state->receiver,
        [state = m_state, message, wParam, lParam] { state->handler(message, wParam, lParam); },
        Qt::QueuedConnection);
}

} // namespace fieldcore
