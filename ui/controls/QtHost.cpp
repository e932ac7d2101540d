#include "ui/controls/QtHost.h"

#include "ui/controls/BusyStrip.h"
#include "ui/controls/Dialog.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/PropertyPage.h"
#include "ui/controls/PropertySheet.h"
#include "ui/controls/UiText.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QThread>
#include <QWindow>

#include <algorithm>
#include <array>
#include <utility>

namespace fieldcore {

namespace {

constexpr const char* kCancelButton = "fieldcoreCancelsWaits";

/// The window that the user has in front of him; null if there is none.
QWidget* FrontWindow()
{
    if (QWidget* const modal = QApplication::activeModalWidget()) {
        return modal;
    }
    if (QWidget* const active = QApplication::activeWindow();
        active != nullptr && active->windowType() != Qt::Tool) {
        return active;
    }
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowType() != Qt::Tool) { // not the bubble
            return window;
        }
    }
    return nullptr;
}

/// The control of that number in the active window; null if there is none.
QWidget* ActiveControl(int id)
{
    const QWidget* const window = QApplication::activeWindow();
    return window != nullptr ? Dialog::FindControl(window, id) : nullptr;
}

constexpr std::array kTouches{QEvent::TouchBegin,  QEvent::TouchUpdate, QEvent::TouchEnd,
                              QEvent::TabletPress, QEvent::TabletMove,  QEvent::TabletRelease};
constexpr std::array kOtherInput{QEvent::MouseButtonPress,
                                 QEvent::MouseButtonRelease,
                                 QEvent::MouseButtonDblClick,
                                 QEvent::MouseMove,
                                 QEvent::Wheel,
                                 QEvent::KeyPress,
                                 QEvent::KeyRelease,
                                 QEvent::ShortcutOverride,
                                 QEvent::Shortcut,
                                 QEvent::InputMethod,
                                 QEvent::ContextMenu,
                                 QEvent::Close};

bool IsTouch(QEvent::Type type)
{
    return std::ranges::count(kTouches, type) > 0;
}

bool IsInput(QEvent::Type type)
{
    return IsTouch(type) || std::ranges::count(kOtherInput, type) > 0;
}

/// The widget that @p object is, has drawn in it or belongs to; null if there is none.
QWidget* WidgetOf(QObject* object)
{
    for (; object != nullptr; object = object->parent()) {
        if (object->isWidgetType()) {
            return static_cast<QWidget*>(object);
        }
        if (object->isWindowType()) {
            return QWidget::find(static_cast<QWindow*>(object)->winId());
        }
    }
    return nullptr;
}

/// Whether a modal dialog lies over the window of @p receiver.
bool IsBlocked(QObject* receiver)
{
    const QWidget* const modal = QApplication::activeModalWidget();
    const QWidget* widget = WidgetOf(receiver);
    if (modal == nullptr || widget == nullptr) {
        return false;
    }
    while (widget != nullptr && widget != modal) {
        widget = widget->parentWidget();
    }
    return widget == nullptr;
}

/// What a mouse did, at another place. It still comes from the user: only his press moves the
/// focus.
class MovedMouseEvent : public QMouseEvent
{
public:
    MovedMouseEvent(const QMouseEvent& was, const QPointF& at, const QPointF& inWindow,
                    const QPointF& global)
        : QMouseEvent(was.type(), at, inWindow, global, was.button(), was.buttons(),
                      was.modifiers(), was.pointingDevice())
    {
        QEvent::operator=(was);
        setTimestamp(was.timestamp());
    }
};

} // namespace

QtHost::QtHost(const Options& options)
    : m_isQ77(options.isQ77), m_icon(options.icon),
      m_clock(options.clock != nullptr ? *options.clock : SystemClock::Instance())
{
    m_back.setSingleShot(true);
    connect(&m_back, &QTimer::timeout, this, &QtHost::HandOn);
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

std::unique_ptr<FocusTarget> QtHost::FindControl(int controlId)
{
    QWidget* const control = ActiveControl(controlId);
    return control != nullptr ? std::make_unique<WidgetFocus>(control) : nullptr;
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
    if (!control->isActiveWindow()) {
        control->activateWindow();
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
    QWidget* const control = ActiveControl(controlId);
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
        if (m_strip == nullptr) {
            LookForEvents(); // what came before the strip can be seen is not refused
        }
        ShowStrip(now - m_waitBegan);
    }
    QMetaObject::Connection cancelled;
    if (m_cancel != nullptr) {
        cancelled =
            connect(m_cancel, &QAbstractButton::clicked, this, [this] { m_isCancelled = true; });
    }
    LookForEvents();
    disconnect(cancelled);
    m_back.start(0);
    if (!m_isCancelled) {
        return true;
    }
    m_isCancelled = false;
    return false;
}

void QtHost::LookForEvents()
{
    m_modalBefore = QApplication::activeModalWidget();
    m_isBreathing = true;
    qApp->installEventFilter(this);
    QCoreApplication::processEvents();
    if (m_kept.empty()) {
        qApp->removeEventFilter(this);
    }
    m_isBreathing = false;
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
    m_refused = {};
    delete m_strip;
    if (!m_isBreathing && !m_kept.empty()) {
        m_back.start(0);
    }
}

bool QtHost::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    const bool reaches =
        watched->isWidgetType() || watched->isWindowType() || type == QEvent::Shortcut;
    if (!reaches || !IsInput(type)) {
        return false;
    }
    if (type == QEvent::Close && !event->spontaneous()) {
        return false; // the program closes it, not the user
    }
    if (m_isBreathing) {
        if (QApplication::activeModalWidget() != m_modalBefore) {
            return false; // a timer has opened a dialog over the wait: it has to be answered
        }
    } else if (!IsInputDue()) {
        return false;
    }
    if (IsTouch(type)) {
        event->ignore(); // it comes once more, as what a mouse does
        return true;
    }
    const bool isRefused = m_isBreathing && m_cancel != nullptr;
    if (isRefused || m_kept.size() >= kMostKept) {
        return Refuse(watched, event);
    }
    if (type == QEvent::ShortcutOverride) {
        return false; // nothing happens yet: it only asks whose key it is
    }
    event->setAccepted(type != QEvent::Close);
    return Keep(watched, *event);
}

bool QtHost::Keep(QObject* receiver, const QEvent& event)
{
    Kept kept{receiver, std::unique_ptr<QEvent>(event.clone()), nullptr, {}};
    QWidget* const widget = WidgetOf(receiver);
    const auto* const mouse = dynamic_cast<const QMouseEvent*>(&event);
    if (mouse != nullptr && widget != nullptr) {
        QWidget* const under =
            receiver->isWindowType() ? widget->childAt(mouse->position().toPoint()) : nullptr;
        const bool isStrip =
            m_strip != nullptr && (under == m_strip || m_strip->isAncestorOf(under));
        kept.under = under == nullptr || isStrip ? widget : under;
        kept.at = kept.under->mapFrom(widget, mouse->position());
        if (event.type() == QEvent::MouseMove && !m_kept.empty() &&
            m_kept.back().receiver == receiver &&
            m_kept.back().event->type() == QEvent::MouseMove) {
            m_kept.pop_back(); // only where a movement ends matters
        }
    }
    m_kept.push_back(std::move(kept));
    return true;
}

bool QtHost::IsForCancel(QObject* watched, const QEvent& event) const
{
    if (watched == m_cancel) {
        return true;
    }
    const auto* const mouse = dynamic_cast<const QMouseEvent*>(&event);
    if (mouse == nullptr || !watched->isWindowType()) {
        return watched->isWindowType() && QApplication::focusWidget() == m_cancel;
    }
    const QWidget* const widget = WidgetOf(watched);
    return m_cancel->isDown() ||
           (widget != nullptr && widget->childAt(mouse->position().toPoint()) == m_cancel);
}

bool QtHost::Refuse(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    event->setAccepted(type != QEvent::Close);
    if (m_isBreathing && m_cancel != nullptr) {
        if (type == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            m_cancel->click();
            return true;
        }
        if (IsForCancel(watched, *event)) {
            return false;
        }
    }
    if (type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick) {
        m_refused.setFlag(static_cast<QMouseEvent*>(event)->button());
    } else if (type == QEvent::MouseButtonRelease) {
        const Qt::MouseButton button = static_cast<QMouseEvent*>(event)->button();
        if (!m_refused.testFlag(button)) {
            return Keep(watched, *event);
        }
        m_refused.setFlag(button, false);
    } else if (type == QEvent::KeyRelease && m_kept.size() < 2 * kMostKept) {
        return Keep(watched, *event);
    }
    return true;
}

bool QtHost::IsInputDue() const
{
    // What is handed on itself comes by here, but for that in the loop of a dialog that it opens.
    return m_handingOn != QThread::currentThread()->loopLevel() &&
           std::any_of(m_kept.begin(), m_kept.end(),
                       [](const Kept& kept) { return !IsBlocked(kept.receiver); });
}

void QtHost::HandOn()
{
    EndWait();
    std::erase_if(m_kept, [](const Kept& kept) {
        return kept.receiver == nullptr || (kept.isBehind && IsBlocked(kept.receiver));
    });
    const auto next = std::find_if(m_kept.begin(), m_kept.end(),
                                   [](const Kept& kept) { return !IsBlocked(kept.receiver); });
    Kept kept;
    if (next != m_kept.end()) {
        kept = std::move(*next);
        m_kept.erase(next);
    } else if (!m_kept.empty()) {
        constexpr int kUntilAnswered = 50; // ms
        m_back.start(kUntilAnswered);
        return;
    }
    if (m_kept.empty()) {
        m_back.stop();
        qApp->removeEventFilter(this);
    }
    const auto mark = [this](bool isBehind) {
        for (Kept& other : m_kept) {
            other.isBehind = isBehind;
        }
    };
    mark(true);
    const int before = std::exchange(m_handingOn, QThread::currentThread()->loopLevel());
    Send(kept);
    m_handingOn = before;
    mark(false);
}

void QtHost::Send(const Kept& kept)
{
    QObject* receiver = kept.receiver;
    const bool isWindow = receiver != nullptr && receiver->isWindowType();
    const QWidget* const widget = WidgetOf(receiver);
    if (widget == nullptr || !widget->isVisible()) {
        return;
    }
    // Not by sendEvent(), after which it would no longer come from the user.
    const auto* const mouse = dynamic_cast<const QMouseEvent*>(kept.event.get());
    if (mouse == nullptr) {
        if (kept.event->type() == QEvent::InputMethod && QApplication::focusWidget() != nullptr) {
            receiver = QApplication::focusWidget();
        }
        qApp->notify(receiver, kept.event.get());
        return;
    }
    const bool isThere = kept.under != nullptr && kept.under->isVisible();
    if (!isThere && mouse->type() != QEvent::MouseButtonRelease) {
        return;
    }
    const QPointF beside(-1.0, -1.0); // where nothing is clicked by letting go
    const QPointF inWindow = isThere ? kept.under->mapTo(kept.under->window(), kept.at) : beside;
    MovedMouseEvent moved(*mouse, isWindow ? inWindow : kept.at, inWindow,
                          widget->window()->mapToGlobal(inWindow));
    qApp->notify(receiver, &moved);
}

} // namespace fieldcore
