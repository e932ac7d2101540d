#pragma once

#include <QWidget>

class QFrame;
class QLabel;
class QPushButton;

namespace fieldcore {

/// What lies over a window while the library waits for the receiver and takes no input: a veil that
/// greys the page, and a strip along its foot that says what is going on and for how long already,
/// with a button that ends it. User-interface thread only.
class BusyStrip : public QWidget
{
    Q_OBJECT

public:
    /// @param window  under the strip; owns it
    explicit BusyStrip(QWidget* window);

    /// Shows the time so far and lies down over the window.
    /// @param seconds  whole seconds, 0 or more
    void Update(int seconds);

    /// Says that the wait is being ended.
    void ShowCancelling();

    [[nodiscard]] QPushButton* CancelButton() const { return m_cancel; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QFrame* m_bar; // owned by the strip, as are the next three
    QLabel* m_what;
    QLabel* m_seconds;
    QPushButton* m_cancel;
};

} // namespace fieldcore
