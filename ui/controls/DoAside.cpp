#include "ui/controls/DoAside.h"

#include <QEventLoop>
#include <QThread>
#include <QWidget>

#include <memory>

namespace fieldcore {

void DoAside(QWidget& window, const std::function<void()>& work)
{
    QWidget* const focus = window.focusWidget();
    window.setEnabled(false);
    const std::unique_ptr<QThread> thread(QThread::create(work));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    loop.exec();
    thread->wait(); // a program that ends has left the loop before
    window.setEnabled(true);
    if (focus != nullptr) {
        focus->setFocus();
    }
}

} // namespace fieldcore
