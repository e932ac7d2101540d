#pragma once

#include <QDialog>
#include <QHash>

#include <functional>
#include <utility>

class QBoxLayout;
class QPushButton;

namespace fieldcore {

/// Base of all dialogs: gives each the hooks that the controller's dialogs are written in, once,
/// and numbers to its controls. User-interface thread only.
///
/// A dialog builds its controls in the constructor, fills them in OnInitDialog() and leaves what it
/// keeps in OnDestroy(). One that is as large as a page carries the program's head, above its own
/// layout: see SetPageHead(). Keys are those of every dialog: Esc cancels, Enter presses the
/// default button.
class Dialog : public QDialog
{
    Q_OBJECT

public:
    /// How large a dialog opens, unless it was given a size before.
    enum class Extent
    {
        Natural, ///< as its contents wish
        Form,    ///< over its parent's window, but no larger than a form reads well
        Whole,   ///< over all of its parent's window
    };

    /// @param extent  how large it opens
    explicit Dialog(QWidget* parent = nullptr, Extent extent = Extent::Natural);
    /// A derived class whose OnDestroy() does something calls Destroy() in its own destructor: here
    /// it is too late for that.
    ~Dialog() override = default;

    /// Shows the dialog and waits until it is closed.
    /// @return what Close() was given; kCancelled if the user cancelled
    int DoModal();

    /// Results of DoModal() as the library counts them.
    static constexpr int kOk = 1;
    static constexpr int kCancelled = 2;

    /// Numbers a control, so that the library can name it.
    static void SetControlId(QWidget* control, int id);
    /// The number of a control, 0 if it has none.
    [[nodiscard]] static int ControlId(const QWidget* control);
    /// The control with that number in @p window, itself not among them; null if there is none.
    [[nodiscard]] static QWidget* FindControl(const QWidget* window, int id);

    /// A row for the foot of the dialog: Cancel and, at the right, OK, which Enter presses.
    [[nodiscard]] QBoxLayout* MakeOkCancel();
    /// The OK of that row; null without one.
    [[nodiscard]] QPushButton* DefaultButton() const { return m_default; }

    /// Ends the dialog with @p result for DoModal(), unless OnCommand() keeps it open.
    void Close(int result);

    void reject() override;

    /// Whether the head offers to connect while there is no receiver.
    [[nodiscard]] bool OffersConnection() const { return m_connected != nullptr; }
    /// The head has connected.
    void Connected() const { m_connected(); }

protected:
    /// The page is of use with a receiver only, or more so.
    /// @param connected  asks again what was asked while there was no receiver
    void OfferConnection(std::function<void()> connected = [] {})
    {
        m_connected = std::move(connected);
    }

    /// Fills the controls. Called once, before the dialog is first seen.
    /// @return false: the focus has been set; true: it goes to the first control
    virtual bool OnInitDialog() { return true; }

    /// The user asks to leave the dialog.
    /// @param result  kOk or kCancelled, or what a button of the dialog gave Close()
    /// @return false to stay
    virtual bool OnClose(int result)
    {
        static_cast<void>(result);
        return true;
    }

    /// The dialog has been shown and is over. Called once for every OnInitDialog().
    virtual void OnDestroy() {}

    /// A timer that SetTimer() started has run off; it goes on until KillTimer().
    virtual void OnTimer(int id) { static_cast<void>(id); }
    /// Starts a timer of the dialog's own, or starts it again.
    void SetTimer(int id, int milliseconds);
    void KillTimer(int id);
    [[nodiscard]] bool IsTimerRunning(int id) const;

    /// Calls OnDestroy() if that is still due.
    void Destroy();

    void showEvent(QShowEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void done(int result) override;

private:
    void OpenOverParent();

    const Extent m_extent;
    std::function<void()> m_connected; // empty: nothing is offered
    bool m_initialised = false;
    QPushButton* m_default = nullptr;
    QHash<int, int> m_timers; // by the dialog's number: Qt's
};

} // namespace fieldcore
