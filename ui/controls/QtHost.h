#pragma once

#include "core/host/Host.h"
#include "core/platform/Clock.h"

#include <QAbstractButton>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <deque>
#include <memory>

namespace fieldcore {

class BusyStrip;

/// The host of a program with windows. User-interface thread only.
///
/// While the library waits, the windows go on repainting and timers go on ticking. What is tapped
/// or typed meanwhile is kept and handed on in the order in which it came, one event at a time,
/// when the program is back in its event loop: to the widget that was under the finger, wherever
/// that is by then, and to the one that has the focus by then. A wait that one of them begins keeps
/// the rest back. Nothing is left of what was meant for a widget that has gone, or for a window
/// that what was handed on before it has put a dialog over; a box that the program itself puts over
/// a window keeps back what was for that window until it is answered.
///
/// Input is refused only while a Cancel button can be seen: that of the strip, which lies over the
/// greyed page, or the window's own. Esc presses that button. A button that was pressed before is
/// still let go.
class QtHost : public QObject, public Host
{
    Q_OBJECT

public:
    /// What the program wants of its host.
    struct Options
    {
        bool isQ77 = false;
        const Clock* clock =
            nullptr;       ///< that waits are measured on; nullptr: the system's. Not owned
        QString icon = {}; ///< that all windows carry: file or resource; empty: none
    };

    /// How long a wait may last before the strip appears.
    static constexpr std::chrono::milliseconds kStripDelay{300};
    /// How much input is kept; what comes after is refused.
    static constexpr std::size_t kMostKept = 256;

    QtHost() : QtHost(Options{}) {}
    /// @param options  what is pointed to must outlive the host
    explicit QtHost(const Options& options);
    /// Takes back the wait cursors that are still on.
    ~QtHost() override;

    BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                          BoxStyle style) override;
    /// A control on a page that is not in front brings its page to the front.
    [[nodiscard]] std::unique_ptr<FocusTarget> FindControl(int controlId) override;
    /// Puts the input focus into a control and brings it into sight: its page, and the part of the
    /// page. What an edit box holds is selected.
    static void GiveFocus(QWidget* control);
    [[nodiscard]] bool HasActiveWindow() const override;
    /// A label, a button or an edit shows the text.
    void SetControlText(int controlId, std::wstring_view text) override;
    void ShowWaitCursor(bool on) override;
    /// A window that itself shows what is waited for brings its own Cancel: while @p button can be
    /// pressed in the front window, it ends the wait, and no strip appears.
    static void UseForCancel(QAbstractButton* button);

    /// The strip appears when the wait, counted from its first breath, has lasted kStripDelay, and
    /// goes when the program is back in its event loop. A breath within a breath does nothing.
    /// @return false once for every time that the user cancels, so that the receiver can still be
    ///         told
    bool Breathe() override;
    [[nodiscard]] bool IsQ77() const override { return m_isQ77; }
    [[nodiscard]] std::string CommonIcon() const override { return m_icon.toStdString(); }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Input that waits for its turn.
    struct Kept
    {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
        QPointer<QWidget> under; // what was under the finger; null for keys
        QPointF at;              // of the finger, on that widget
        bool isBehind = false;   // what came before it is being handed on
    };

    void EndWait();
    void LookForEvents();
    bool Keep(QObject* receiver, const QEvent& event);
    bool Refuse(QObject* watched, QEvent* event);
    [[nodiscard]] bool IsForCancel(QObject* watched, const QEvent& event) const;
    [[nodiscard]] bool IsInputDue() const;
    void HandOn();
    static void Send(const Kept& kept);
    /// @return null if the front window has none of its own
    [[nodiscard]] static QAbstractButton* WindowsOwnCancel();
    void ShowStrip(Clock::Duration lasted);

    const bool m_isQ77;
    const QString m_icon;
    const Clock& m_clock;
    int m_waitCursors = 0;
    QTimer m_back; // runs off when the program is back in its event loop
    std::deque<Kept> m_kept;
    Qt::MouseButtons m_refused; // pressed, and not let go yet
    int m_handingOn = -1;       // the event loop that hands input on; negative: none
    bool m_isWaiting = false;
    bool m_isBreathing = false;
    bool m_isCancelled = false;
    Clock::Duration m_waitBegan{};
    QPointer<BusyStrip> m_strip;        // owned by its window
    QPointer<QAbstractButton> m_cancel; // ends the wait; of the strip or of the window
    QPointer<QWidget> m_modalBefore;    // modal window when the breath began
};

/// A widget as the control that a CCheck goes back to. User-interface thread only.
class WidgetFocus final : public FocusTarget
{
public:
    /// @param widget  nothing happens once it is gone
    explicit WidgetFocus(QWidget* widget) : m_widget(widget) {}

    void TakeFocus() override
    {
        if (m_widget != nullptr) {
            QtHost::GiveFocus(m_widget);
        }
    }

private:
    const QPointer<QWidget> m_widget;
};

} // namespace fieldcore
