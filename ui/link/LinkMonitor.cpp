#include "ui/link/LinkMonitor.h"

#include <utility>

namespace fieldcore {

namespace {

constexpr std::chrono::milliseconds kInterval{250};

} // namespace

LinkMonitor::LinkMonitor(CCommand& command, ReceiverLink& link, std::function<void()> more,
                         QObject* parent)
    : QObject(parent), m_link(link),
      m_question(
          command, Rhythm{kInterval, kInterval}, // the link has a patience of its own
          [&link, more = std::move(more)](CCommand& asking) {
              link.Tick(asking);
              if (more) {
                  more();
              }
              return std::pair(true, 0);
          },
          [](int) {})
{
    const Questions::Quiet quiet(command);
    m_link.SetObserver(
        [this] { QMetaObject::invokeMethod(this, &LinkMonitor::Changed, Qt::AutoConnection); });
    connect(&m_timer, &QTimer::timeout, this, &LinkMonitor::Aged);
    m_timer.start(kInterval);
}

LinkMonitor::~LinkMonitor()
{
    m_question.Stop();
    m_link.SetObserver({});
}

} // namespace fieldcore
