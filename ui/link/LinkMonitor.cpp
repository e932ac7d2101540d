#include "ui/link/LinkMonitor.h"

namespace fieldcore {

namespace {

constexpr std::chrono::milliseconds kInterval{250};

} // namespace

LinkMonitor::LinkMonitor(ReceiverLink& link, QObject* parent) : QObject(parent), m_link(link)
{
    m_link.SetObserver([this] { Q_EMIT Changed(); });
    connect(&m_timer, &QTimer::timeout, this, &LinkMonitor::Tick);
    m_timer.start(kInterval);
}

LinkMonitor::~LinkMonitor()
{
    m_link.SetObserver({});
}

void LinkMonitor::Tick()
{
    m_link.Tick();
    Q_EMIT Aged();
}

} // namespace fieldcore
