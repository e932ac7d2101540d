#pragma once

#include "core/link/ReceiverLink.h"
#include "ui/controls/BackgroundQuestion.h"

#include <QObject>
#include <QTimer>

#include <functional>

namespace fieldcore {

/// Keeps a ReceiverLink ticking in the background, and tells the screens of it. User-interface
/// thread only.
class LinkMonitor : public QObject
{
    Q_OBJECT

public:
    /// @param command  of the link; must outlive the monitor, as must the link, whose only observer
    ///                 this is
    /// @param more     is done behind each tick, on the thread that asks in the background
    LinkMonitor(CCommand& command, ReceiverLink& link, std::function<void()> more = {},
                QObject* parent = nullptr);
    ~LinkMonitor() override;

    [[nodiscard]] const ReceiverLink& Link() const { return m_link; }

Q_SIGNALS:
    /// The state is another one, or the same with another status.
    void Changed();
    /// A quarter of a second has passed: ages and countdowns have moved on.
    void Aged();

private:
    ReceiverLink& m_link;
    QTimer m_timer;
    BackgroundQuestion m_question;
};

} // namespace fieldcore
