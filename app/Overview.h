#pragma once

#include "app/StatusStrip.h"

#include <QFrame>

class QLabel;

namespace fieldcore {

/// How the receiver is, large: fills the window where the buttons leave room. Values that are not
/// fresh are grey. User-interface thread only.
class Overview : public QFrame
{
    Q_OBJECT

public:
    explicit Overview(QWidget* parent = nullptr);

    /// @param nowUtc  by the controller's clock
    void Show(const ReceiverState& state, const QDateTime& nowUtc);

private:
    QLabel* m_headline; // owned by the widget, as are the next
    QLabel* m_satellites;
    QLabel* m_pdop;
    QLabel* m_battery;
    QLabel* m_received;
};

} // namespace fieldcore
