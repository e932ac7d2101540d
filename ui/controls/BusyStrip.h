#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

namespace fieldcore {

/// The strip over the foot of a window while the library waits for the receiver: what is going on,
/// for how long already, and a button that ends it. User-interface thread only.
class BusyStrip : public QFrame
{
    Q_OBJECT

public:
    /// @param window  under the strip; owns it
    explicit BusyStrip(QWidget* window);

    /// Shows the time so far and lies down along the foot of the window.
    /// @param seconds  whole seconds, 0 or more
    void Update(int seconds);

    /// Says that the wait is being ended.
    void ShowCancelling();

    [[nodiscard]] QPushButton* CancelButton() const { return m_cancel; }

private:
    QLabel* m_what; // owned by the strip, as are the next two
    QLabel* m_seconds;
    QPushButton* m_cancel;
};

} // namespace fieldcore
