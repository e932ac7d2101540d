#pragma once

#include "core/link/ReceiverLink.h"

#include <QObject>
#include <QTimer>

namespace fieldcore {

/// Keeps a ReceiverLink ticking, and tells the screens of it. User-interface thread only.
class LinkMonitor : public QObject
{
    Q_OBJECT

public:
    /// @param link  not owned, must outlive the monitor, which is its only observer
    explicit LinkMonitor(ReceiverLink& link, QObject* parent = nullptr);
    ~LinkMonitor() override;

    [[nodiscard]] const ReceiverLink& Link() const { return m_link; }

Q_SIGNALS:
    /// The state is another one, or the same with another status.
    void Changed();
    /// A quarter of a second has passed: ages and countdowns have moved on.
    void Aged();

private:
    void Tick();

    ReceiverLink& m_link;
    QTimer m_timer;
};

} // namespace fieldcore
