#include "ui/controls/QtHost.h"

#include "ui/controls/BusyStrip.h"
#include "ui/controls/Dialog.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/PropertyPage.h"
#include "ui/controls/PropertySheet.h"
#include "ui/controls/UiText.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>

namespace fieldcore {

namespace {

constexpr const char* kCancelButton = "fieldcoreCancelsWaits";

/// The window that the user has in front of him; null if there is none.
QWidget* FrontWindow()
{
    if (QWidget* const modal = QApplication::activeModalWidget()) {
        return modal;
    }
    if (QWidget* const active = QApplication::activeWindow()) {
        return active;
    }
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

bool IsInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

QtHost::QtHost(const Options& options)
    : m_isQ77(options.isQ77), m_icon(options.icon),
      m_clock(options.clock != nullptr ? *options.clock : SystemClock::Instance())
{
    m_back.setSingleShot(true);
    connect(&m_back, &QTimer::timeout, this, &QtHost::EndWait);
}

QtHost::~QtHost()
{
    EndWait();
    for (; m_waitCursors > 0; --m_waitCursors) {
        QApplication::restoreOverrideCursor();
    }
}

BoxAnswer QtHost::ShowMessage(std::wstring_view text, std::wstring_view caption, BoxStyle style)
{
    EndWait(); // whoever asks is not waiting for the receiver meanwhile
    MessageDlg message(ToQt(text), ToQt(caption), style, FrontWindow());
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    const BoxAnswer answer = message.Ask();
    QApplication::restoreOverrideCursor();
    return answer;
}

void QtHost::FocusControl(int controlId)
{
    QWidget* const window = FrontWindow();
    QWidget* const control = window != nullptr ? Dialog::FindControl(window, controlId) : nullptr;
    if (control != nullptr) {
        GiveFocus(control);
    }
}

void QtHost::GiveFocus(QWidget* control)
{
    for (QWidget* around = control->parentWidget(); around != nullptr;
         around = around->parentWidget()) {
        if (auto* const page = qobject_cast<PropertyPage*>(around); page != nullptr) {
            if (page->Sheet() != nullptr && page->Sheet()->SetActivePage(page) == 0) {
                return; // the page in front does not let go
            }
        }
        if (auto* const area = qobject_cast<QScrollArea*>(around)) {
            area->ensureWidgetVisible(control);
        }
    }
    control->setFocus(Qt::OtherFocusReason);
    if (auto* const edit = qobject_cast<QLineEdit*>(control)) {
        edit->selectAll(); // what is wrong is typed over
    }
}

bool QtHost::HasActiveWindow() const
{
    return QApplication::activeWindow() != nullptr;
}

void QtHost::SetControlText(int controlId, std::wstring_view text)
{
    const QWidget* const window = QApplication::activeWindow();
    QWidget* const control = window != nullptr ? Dialog::FindControl(window, controlId) : nullptr;
    if (auto* const label = qobject_cast<QLabel*>(control)) {
        label->setText(ToQt(text));
    } else if (auto* const button = qobject_cast<QAbstractButton*>(control)) {
        button->setText(ToQt(text));
    } else if (auto* const edit = qobject_cast<QLineEdit*>(control)) {
        edit->setText(ToQt(text));
    }
}

void QtHost::ShowWaitCursor(bool on)
{
    if (on) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        ++m_waitCursors;
    } else if (m_waitCursors > 0) {
        QApplication::restoreOverrideCursor();
        --m_waitCursors;
    }
}

void QtHost::UseForCancel(QAbstractButton* button)
{
    button->setProperty(kCancelButton, true);
}

QAbstractButton* QtHost::WindowsOwnCancel()
{
    const QWidget* const window = FrontWindow();
    if (window == nullptr) {
        return nullptr;
    }
    for (QAbstractButton* const button : window->findChildren<QAbstractButton*>()) {
        if (button->property(kCancelButton).toBool() && button->isVisible() &&
            button->isEnabled()) {
            return button;
        }
    }
    return nullptr;
}

bool QtHost::Breathe()
{
    if (m_isBreathing) {
        return true;
    }
    m_back.stop();
    const Clock::Duration now = m_clock.Steady();
    if (!m_isWaiting) {
        m_isWaiting = true;
        m_isCancelled = false;
        m_waitBegan = now;
    }
    m_cancel = WindowsOwnCancel();
    if (m_cancel != nullptr) {
        delete m_strip;
    } else if (now - m_waitBegan >= kStripDelay) {
        ShowStrip(now - m_waitBegan);
    }
    QMetaObject::Connection cancelled;
    if (m_cancel != nullptr) {
        cancelled =
            connect(m_cancel, &QAbstractButton::clicked, this, [this] { m_isCancelled = true; });
    }
    m_modalBefore = QApplication::activeModalWidget();
    m_isBreathing = true;
    qApp->installEventFilter(this);
    QCoreApplication::processEvents();
    qApp->removeEventFilter(this);
    disconnect(cancelled);
    m_isBreathing = false;
    m_back.start(0);
    if (!m_isCancelled) {
        return true;
    }
    m_isCancelled = false;
    return false;
}

void QtHost::ShowStrip(Clock::Duration lasted)
{
    QWidget* const window = FrontWindow();
    if (window == nullptr) {
        return;
    }
    if (m_strip == nullptr || m_strip->parentWidget() != window) {
        delete m_strip;
        m_strip = new BusyStrip(window);
        connect(m_strip->CancelButton(), &QPushButton::clicked, m_strip,
                &BusyStrip::ShowCancelling);
    }
    m_cancel = m_strip->CancelButton();
    m_strip->Update(
        static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(lasted).count()));
}

void QtHost::EndWait()
{
    m_back.stop();
    m_isWaiting = false;
    delete m_strip;
}

bool QtHost::eventFilter(QObject* watched, QEvent* event)
{
    // Only what reaches a widget: before, the window has to find out which widget that is.
    const bool reaches = watched->isWidgetType() || event->type() == QEvent::Shortcut;
    if (!reaches || !IsInput(event->type())) {
        return false;
    }
    if (event->type() == QEvent::Close && !event->spontaneous()) {
        return false; // the program closes it, not the user
    }
    if (QApplication::activeModalWidget() != m_modalBefore) {
        return false; // a timer has opened a dialog over the wait: it has to be answered
    }
    if (m_cancel != nullptr) {
        const bool isEscape = event->type() == QEvent::KeyPress &&
                              static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
        if (isEscape) {
            m_cancel->click();
        } else if (watched == m_cancel) {
            return false;
        }
    }
    event->setAccepted(event->type() != QEvent::Close);
    return true;
}

} // namespace fieldcore
